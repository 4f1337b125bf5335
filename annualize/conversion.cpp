#include "annualize/conversion.h"

#include <utility>

#include "QsLog.h"
#include "annualize/months.h"
#include "hts/htsreader.h"
#include "hts/htswalk.h"
#include "hts/shareifequal.h"

Conversion::Conversion(RuleSource ruleSource, int endMonth, Purpose purpose)
    : m_ruleSource(std::move(ruleSource)), m_endMonth(endMonth), m_purpose(purpose)
{
    Q_ASSERT(isMonth(endMonth));
}

void Conversion::take(HtsWalk& walk)
{
    Q_ASSERT(walk.status().ok() && !m_isFinished);
    m_outcome = {};
    if (walk.place() == HtsWalk::Place::Run)
        beginRun(walk.run(), walk.runIndex());
    else if (walk.place() == HtsWalk::Place::Slot)
        takeSlot(walk);
    else if (walk.place() == HtsWalk::Place::EndOfRun)
        finishRun(walk.runIndex(), walk.slotCount());
}

void Conversion::finish(const HtsWalk& walk, const HtsPackage& preamble)
{
    Q_ASSERT(!m_isFinished);
    m_isFinished = true;
    m_readStatus = walk.status();
    if (m_runCount == 0)
        m_firstYears = findCompleteYears(HtsRun(), m_endMonth);
    // Not earlier: it allocates memory for the number of runs that the file announces.
    if (m_readStatus.ok() && !isJudging())
        m_annual.copyPreamble(preamble);
}

void Conversion::beginRun(const HtsRun& run, int runIndex)
{
    ++m_runCount;
    if (runIndex == 0)
        beginFirstRun(run);
    else if (isAnnualizing())
        beginLaterRun(run, runIndex);
    if (!isAnnualizing() || isJudging())
        return;
    m_annual.runs.append(m_annualRun);
    m_annual.values.emplace_back();
    m_annual.values.back().reserve(static_cast<std::size_t>(m_annual.numSlots()));
}

// The first run determines the years; without any the control file is not opened for a result.
void Conversion::beginFirstRun(const HtsRun& run)
{
    m_firstYears = findCompleteYears(run, m_endMonth);
    m_start = run.start;
    m_end = run.end;
    m_timeStepCount = run.timeStepCount;
    if (m_firstYears.status.ok())
        setAnnualTiming(run, m_firstYears, m_annualRun);
    else // a search that fails may leave timesteps without a number
        m_firstYears.valueMap.resize(static_cast<std::size_t>(run.timesteps.size()));
    m_firstStretches = YearStretches(m_firstYears.valueMap, m_firstYears.count());
    if (isAnnualizing())
        m_control = m_ruleSource();
}

// A run of the same timing has the same years. For any other run the value map deliberately grows
// by the numbers of its timesteps, so that the aggregation refuses the run.
void Conversion::beginLaterRun(const HtsRun& run, int runIndex)
{
    m_hasFirstTiming =
        run.start == m_start && run.end == m_end && run.timeStepCount == m_timeStepCount;
    if (m_hasFirstTiming)
        return;
    m_ownYears = findCompleteYears(run, m_endMonth);
    ValueMap grownMap = m_firstYears.valueMap;
    grownMap.insert(grownMap.end(), m_ownYears.valueMap.begin(), m_ownYears.valueMap.end());
    m_grownStretches = YearStretches(grownMap, m_ownYears.count());
    if (m_ownYears.status.ok())
        setAnnualTiming(run, m_ownYears, m_annualRun);
    if (m_failure.run >= 0 || m_annualizedCount == 0)
        return;
    m_failure.years = m_ownYears;
    if (!m_ownYears.status.ok()) {
        m_failure.run = runIndex;
        m_failure.status = m_ownYears.status;
    }
}

Status Conversion::timingFailure() const
{
    if (m_hasFirstTiming)
        return {};
    return m_ownYears.status.ok() ? failure(AggValues::kSizesDiffer) : m_ownYears.status;
}

void Conversion::takeSlot(HtsWalk& walk)
{
    const int index = walk.slotCount() - 1;
    if (walk.runIndex() == 0 && isAnnualizing())
        planSlot(walk.slot());
    // In a later run its own slot determines how many values follow, and the first run's slot
    // whether they are used.
    if (isAnnualizing() && isAnnualized(index))
        annualizeSlot(walk.values(), walk.runIndex(), index);
}

void Conversion::planSlot(const HtsSlot& slot)
{
    m_plans.append(SlotPlan(slot, m_control.rules));
    const SlotPlan& plan = m_plans.constLast();
    if (!plan.isAnnualized())
        return;
    ++m_annualizedCount;
    m_annualizedEnd = static_cast<int>(m_plans.size());
    if (isJudging())
        return;
    HtsSlot annualSlot = plan.annualSlot(slot);
    // Of totals; the reader shares equal texts of neighbours itself.
    if (!m_annual.slots.isEmpty())
        shareIfEqual(annualSlot.units, m_annual.slots.constLast().units);
    m_annual.slots.append(std::move(annualSlot));
}

void Conversion::annualizeSlot(const HtsColumn& values, int runIndex, int slotIndex)
{
    Q_ASSERT(isAnnualizing() && isAnnualized(slotIndex));
    const SlotPlan& plan = m_plans.at(slotIndex);
    const YearStretches& stretches = m_hasFirstTiming ? m_firstStretches : m_grownStretches;
    m_outcome = {slotIndex, plan.aggregate(values, stretches, m_aggValues), &m_aggValues.years()};
    if (!m_outcome.status.ok()) {
        if (m_failure.run < 0)
            m_failure = {runIndex, slotIndex, m_outcome.status, std::move(m_failure.years)};
        return;
    }
    if (!isJudging())
        m_annual.values.back().emplace_back().push_back(m_aggValues.results(*plan.method));
}

// Slots that the first run has and this one lacks have no values.
void Conversion::finishRun(int runIndex, int slotCount)
{
    for (int s = slotCount; s < m_annualizedEnd && isAnnualizing() && m_outcome.status.ok(); ++s) {
        if (isAnnualized(s))
            annualizeSlot({}, runIndex, s);
    }
}

// Whether there can still be a result, or everything is judged.
bool Conversion::isAnnualizing() const
{
    const bool hasSlots = m_runCount == 1 || m_annualizedCount > 0;
    return isJudging() || (m_firstYears.status.ok() && hasSlots && m_failure.run < 0);
}

bool Conversion::isAnnualized(int slotIndex) const
{
    return slotIndex < m_plans.size() && m_plans.at(slotIndex).isAnnualized();
}

Status Conversion::verdict() const
{
    Q_ASSERT(m_isFinished);
    if (!m_readStatus.ok())
        return m_readStatus;
    if (!m_firstYears.status.ok())
        return m_firstYears.status;
    return m_annualizedCount == 0 ? failure(kNoSlots) : m_failure.status;
}

Status Conversion::report() const
{
    Q_ASSERT(m_isFinished && m_readStatus.ok() && !isJudging());
    logCompleteYears(m_firstYears, m_endMonth);
    if (m_firstYears.status.ok())
        logAssignments();
    if (m_annualizedCount == 0)
        return verdict();

    QLOG_INFO() << "Starting to annualize slot data";
    const bool hasFailed = m_failure.run >= 0;
    const int wholeRuns = hasFailed ? m_failure.run : m_runCount;
    // Not even looked for if nobody listens: it is the product of two numbers of the file.
    const bool isLogged = QsLogging::Logger::instance().loggingLevel() <= QsLogging::InfoLevel;
    for (int r = 0; isLogged && r < wholeRuns; ++r)
        logSkippedSlots(static_cast<int>(m_plans.size()));
    if (hasFailed) {
        logCompleteYears(m_failure.years, m_endMonth);
        logSkippedSlots(m_failure.slot);
    }
    return verdict();
}

// The control file's status is deliberately reported nowhere: without methods there are no slots to
// annualize, and that is the failure that the user sees.
void Conversion::logAssignments() const
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
void Conversion::logSkippedSlots(int slotCount) const
{
    for (int s = 0; s < slotCount; ++s)
        m_plans.at(s).logSkipped();
}

Status readConversion(QIODevice& source, Conversion& conversion)
{
    HtsReader reader(source);
    HtsPackage preamble;
    HtsWalk walk(reader, preamble);
    while (walk.next())
        conversion.take(walk);
    conversion.finish(walk, preamble);
    return walk.status();
}
