#include "annualize/annualization.h"

#include <utility>

#include "QsLog.h"
#include "annualize/months.h"
#include "hts/htsreader.h"

Annualization::Annualization(const QString& controlPath, int endMonth)
    : m_controlPath(controlPath), m_endMonth(endMonth)
{
    Q_ASSERT(!controlPath.isEmpty() && isMonth(endMonth));
}

Status Annualization::read(QIODevice& source)
{
    Q_ASSERT(m_runCount == 0 && !m_isRead);
    HtsReader reader(source);
    HtsPackage preamble;
    Status status = reader.readPackagePreamble(preamble);
    for (int r = 0; status.ok() && r < preamble.numberOfRuns; ++r)
        status = readRun(reader, r);
    if (m_runCount == 0)
        m_years = findCompleteYears(HtsRun(), m_endMonth, m_valueMap);
    // Not earlier: it allocates memory for the number of runs that the file announces.
    if (status.ok())
        m_annual.copyPreamble(preamble);
    m_isRead = status.ok();
    return status;
}

Status Annualization::readRun(HtsReader& reader, int runIndex)
{
    HtsRun run;
    Status status = reader.readRun(run);
    if (!status.ok())
        return status;
    ++m_runCount;
    if (runIndex == 0)
        startFirstRun(run);
    else if (isAnnualizing())
        startLaterRun(run, runIndex);
    if (isAnnualizing()) {
        m_annual.runs.append(m_annualRun);
        m_annual.values.emplace_back();
        m_annual.values.back().reserve(static_cast<std::size_t>(m_annual.numSlots()));
    }

    int slotCount = 0;
    for (; status.ok() && !reader.takeEndOfRun(); ++slotCount)
        status = readSlot(reader, run, runIndex, slotCount);
    if (status.ok())
        finishRun(runIndex, slotCount);
    return status;
}

// The first run determines the years; without any the control file is not opened.
void Annualization::startFirstRun(const HtsRun& run)
{
    m_years = findCompleteYears(run, m_endMonth, m_valueMap);
    if (!m_years.status.ok())
        return;
    setAnnualTiming(run, m_years, m_annualRun);
    m_start = run.start;
    m_end = run.end;
    m_timeStepCount = run.timeStepCount;
    m_control = readControlFile(m_controlPath);
}

// A run of the same timing has the same years. For any other run the value map deliberately keeps
// growing, so that the aggregation refuses the run.
void Annualization::startLaterRun(const HtsRun& run, int runIndex)
{
    if (run.start == m_start && run.end == m_end && run.timeStepCount == m_timeStepCount)
        return;
    m_failure.years = findCompleteYears(run, m_endMonth, m_valueMap);
    if (m_failure.years.status.ok()) {
        setAnnualTiming(run, m_failure.years, m_annualRun);
    } else {
        m_failure.run = runIndex;
        m_failure.status = m_failure.years.status;
    }
}

Status Annualization::readSlot(HtsReader& reader, const HtsRun& run, int runIndex, int slotIndex)
{
    HtsSlot slot;
    Status status = reader.readSlot(slot, HtsReader::TableRows::Skip);
    if (!status.ok())
        return status;
    if (runIndex == 0 && isAnnualizing())
        planSlot(slot);

    // In a later run its own slot determines how many values follow, and the first run's slot
    // whether they are used.
    const bool isUsed = isAnnualizing() && isAnnualized(slotIndex);
    if (slot.isTable()) {
        reader.skipTable();
        m_values.clear();
    } else {
        const int count = slot.valueCount(run);
        if (isUsed) {
            m_values.resize(static_cast<std::size_t>(count));
            reader.readValues(m_values);
        } else {
            reader.skipValues(count);
        }
        reader.readLine(); // "END_COLUMN", not checked
        reader.readLine(); // "END_SLOT", not checked
    }
    if (isUsed)
        annualizeSlot(runIndex, slotIndex);
    return status;
}

void Annualization::planSlot(const HtsSlot& slot)
{
    m_plans.append(SlotPlan(slot, m_control.rules.methodFor(slot)));
    const SlotPlan& plan = m_plans.constLast();
    if (!plan.isAnnualized())
        return;
    ++m_annualizedCount;
    m_annualizedEnd = m_plans.size();
    HtsSlot annualSlot = plan.annualSlot(slot);
    if (!m_annual.slots.isEmpty())
        annualSlot.shareTexts(m_annual.slots.constLast());
    m_annual.slots.append(std::move(annualSlot));
}

void Annualization::annualizeSlot(int runIndex, int slotIndex)
{
    Q_ASSERT(isAnnualizing() && isAnnualized(slotIndex));
    HtsColumn annualValues;
    const Status status = m_plans.at(slotIndex).annualize(
        m_values, m_valueMap, m_annualRun.timeStepCount, m_aggValues, annualValues);
    if (!status.ok()) {
        m_failure.run = runIndex;
        m_failure.slot = slotIndex;
        m_failure.status = status;
        return;
    }
    m_annual.values.back().emplace_back().push_back(std::move(annualValues));
}

// Slots that the first run has and this one lacks have no values.
void Annualization::finishRun(int runIndex, int slotCount)
{
    m_values.clear();
    for (int s = slotCount; s < m_annualizedEnd && isAnnualizing(); ++s) {
        if (isAnnualized(s))
            annualizeSlot(runIndex, s);
    }
}

// Whether there can still be a result.
bool Annualization::isAnnualizing() const
{
    const bool hasSlots = m_runCount == 1 || m_annualizedCount > 0;
    return m_years.status.ok() && hasSlots && m_failure.run < 0;
}

bool Annualization::isAnnualized(int slotIndex) const
{
    return slotIndex < m_plans.size() && m_plans.at(slotIndex).isAnnualized();
}

Status Annualization::report() const
{
    Q_ASSERT(m_isRead);
    logCompleteYears(m_years, m_endMonth);
    if (!m_years.status.ok())
        return m_years.status;
    logAssignments();
    if (m_annualizedCount == 0)
        return failure(kNoSlots);

    QLOG_INFO() << "Starting to annualize slot data";
    const bool hasFailed = m_failure.run >= 0;
    const int wholeRuns = hasFailed ? m_failure.run : m_runCount;
    // Not even looked for if nobody listens: it is the product of two numbers of the file.
    const bool isLogged = QsLogging::Logger::instance().loggingLevel() <= QsLogging::InfoLevel;
    for (int r = 0; isLogged && r < wholeRuns; ++r)
        logSkippedSlots(m_plans.size());
    if (!hasFailed)
        return {};
    logCompleteYears(m_failure.years, m_endMonth);
    logSkippedSlots(m_failure.slot);
    return m_failure.status;
}

// The control file's status is deliberately reported nowhere: without methods there are no slots to
// annualize, and that is the failure that the user sees.
void Annualization::logAssignments() const
{
    if (m_control.isRead)
        logAssignmentStart();
    if (!m_control.status.ok())
        return;
    for (const SlotPlan& plan : m_plans)
        logAssignment(plan.objectName, plan.slotName, plan.methodWord);
    logAssignmentEnd();
}

// For the first `slotCount` slots of a run.
void Annualization::logSkippedSlots(int slotCount) const
{
    for (int s = 0; s < slotCount; ++s)
        m_plans.at(s).logSkipped();
}
