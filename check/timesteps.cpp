#include <algorithm>
#include <vector>

#include <QDateTime>

#include "annualize/timestepunit.h"
#include "check/nearwords.h"
#include "check/runyears.h"
#include "check/steplength.h"
#include "check/topic.h"
#include "hts/datetimetext.h"
#include "hts/htskeys.h"
#include "hts/quotedtext.h"

namespace {

constexpr FindingKind kUnknownUnit = {
    Severity::Warning, "unknown-unit",
    "`time_step_unit:` is missing or not a known word (`minute`, `hour`, `day`, `week`, `month`, "
    "`year`, in lower case); it counts as a day.",
    "Write the word as the format has it."};
constexpr FindingKind kAlreadyAnnual = {Severity::Error, "already-annual",
                                        "The unit of the timesteps is the year.",
                                        "There is nothing to convert."};
constexpr FindingKind kNoCompleteYear = {
    Severity::Error, "no-complete-year", "The timesteps contain no complete year.",
    "Look at the end month, at `start:`, and at the first and the last timestep."};
constexpr FindingKind kStepMissing = {
    Severity::Warning, "step-missing",
    "Timesteps are missing between two others. Their year still counts as complete.",
    "Add the timesteps, with `NaN` for their values."};
constexpr FindingKind kStepRepeated = {Severity::Warning, "step-repeated",
                                       "A timestep occurs twice.",
                                       "Remove one of them, with its values."};
constexpr FindingKind kStepBackwards = {Severity::Warning, "step-backwards",
                                        "A timestep is earlier than the one before it.",
                                        "Put the timesteps in order, with their values."};
constexpr FindingKind kStepIrregular = {
    Severity::Warning, "step-irregular",
    "A timestep does not follow the one before it by the unit and `unit_quantity:`.",
    "Correct the timestep or the unit."};
constexpr FindingKind kStartDiffers = {Severity::Warning, "start-differs",
                                       "`start:` is not the first timestep.",
                                       "Correct it: the years are counted from there."};
constexpr FindingKind kEarlyStart = {
    Severity::Warning, "early-start",
    "`start:` lies in an earlier year than the first timestep, so that a partial first year "
    "counts as complete.",
    "Write the first timestep as `start:`."};
constexpr FindingKind kEndDiffers = {Severity::Warning, "end-differs",
                                     "`end:` is not the last timestep.",
                                     "Check whether timesteps are missing; correct it."};
constexpr FindingKind kShortYear = {
    Severity::Warning, "short-year",
    "A year counts as complete with fewer timesteps than it should have.",
    "Add the timesteps, or do not use the year of the result."};

// Checks the timesteps of one run: their unit, whether they follow each other by it, whether start
// and end agree with them, and whether the years that count as complete have all their timesteps.
class TimestepsOfRun
{
public:
    explicit TimestepsOfRun(CheckContext& context);

    void checkUnit();
    void checkCompleteYears();
    void checkSteps();
    void checkEnds();
    void checkYearLengths();

private:
    const QString& text(std::size_t index) const
    {
        return m_run.timesteps.at(static_cast<int>(index));
    }
    qint64 lineOfStep(std::size_t index) const
    {
        return m_context.lineOfStep(static_cast<qint64>(index));
    }
    bool isBackwards(std::size_t index) const;
    void checkStep(std::size_t index);
    bool isInCompleteYear(std::size_t index) const;
    void reportGap(std::size_t index, qint64 missing);
    void checkYear(std::size_t first, std::size_t last);
    bool isYearOfEarlyStart(std::size_t first) const;

    CheckContext& m_context;
    FindingList& m_findings;
    const HtsRun& m_run;
    const CompleteYears& m_years;
    const StepLength m_length;
    std::vector<QDateTime> m_steps; // up to the first that is not a date-time
    bool m_hasEarlyStart = false;
};

TimestepsOfRun::TimestepsOfRun(CheckContext& context)
    : m_context(context), m_findings(context.findings), m_run(context.walk.run()),
      m_years(context.conversion.runYears()), m_length(m_run.timeStepUnit, m_run.unitQuantity)
{
    m_steps.reserve(static_cast<std::size_t>(m_run.timesteps.size()));
    for (const QString& timestep : m_run.timesteps) {
        const QDateTime step = textToDateTime(timestep);
        if (!step.isValid())
            break;
        m_steps.push_back(step);
    }
}

void TimestepsOfRun::checkUnit()
{
    const QString& word = m_run.timeStepUnit;
    if (findTimestepUnit(word) != nullptr)
        return;
    const qint64 line = m_context.lineOfRunKey(kUnitKey);
    if (word.isEmpty()) {
        m_findings.add(kUnknownUnit, line, "no \"time_step_unit:\"; the timesteps count as days");
        return;
    }
    std::vector<QLatin1String> words;
    for (const TimestepUnit& unit : timestepUnits())
        words.push_back(unit.word);
    const QLatin1String near = nearestWord(word, words);
    const bool isHinted = !near.isEmpty() && near != QLatin1String("day");
    m_findings.add(kUnknownUnit, line, "time_step_unit: %1 is not known and counts as \"day\"%2",
                   quoted(word), isHinted ? worded("; is \"%1\" meant?", near) : QString());
}

void TimestepsOfRun::checkCompleteYears()
{
    const Status& status = m_years.status;
    if (status.ok())
        return;
    if (!m_years.isSearched) {
        m_findings.add(kAlreadyAnnual, m_context.lines.lineOf(kUnitKey),
                       "the timesteps are years already%1", conversionFails(status.message));
        return;
    }
    const auto count = static_cast<std::size_t>(std::max(m_run.timeStepCount, 0));
    qint64 line = lineOfStep(count) - 1;
    QString reason = QStringLiteral("the timesteps contain no complete year");
    if (!m_run.start.isValid()) {
        line = m_context.lineOfRunKey(kStartKey);
        reason = QStringLiteral("the run has no valid \"start:\"");
    } else if (count == 0) {
        reason = QStringLiteral("the run has no timesteps");
    } else if (m_steps.size() < count) {
        line = lineOfStep(m_steps.size());
        reason = worded("%1 is not a date-time", quoted(text(m_steps.size())));
    }
    m_findings.add(kNoCompleteYear, line, "%1%2", reason, conversionFails(status.message));
}

void TimestepsOfRun::checkSteps()
{
    for (std::size_t i = 1; i < m_steps.size(); ++i)
        checkStep(i);
}

bool TimestepsOfRun::isBackwards(std::size_t index) const
{
    return index > 0 && index < m_steps.size() && m_steps[index] < m_steps[index - 1];
}

void TimestepsOfRun::checkStep(std::size_t index)
{
    const QDateTime& previous = m_steps[index - 1];
    const QDateTime& step = m_steps[index];
    const qint64 line = lineOfStep(index);
    if (step == previous) {
        m_findings.add(kStepRepeated, line, "the timestep %1 occurs twice", text(index));
        return;
    }
    if (step < previous) {
        m_findings.add(kStepBackwards, line,
                       "the timestep %1 is earlier than the one before it, %2", text(index),
                       text(index - 1));
        return;
    }
    // A timestep out of order leaves gaps on both sides, which are not reported separately.
    const qint64 steps = m_length.stepsBetween(previous, step);
    if (steps == 1 || isBackwards(index - 1) || isBackwards(index + 1))
        return;
    if (steps > 1)
        reportGap(index, steps - 1);
    else
        m_findings.add(kStepIrregular, line, "the timestep %1 does not follow %2 by %3 %4",
                       text(index), text(index - 1), std::max(m_run.unitQuantity, 1),
                       m_run.timeStepUnit);
}

bool TimestepsOfRun::isInCompleteYear(std::size_t index) const
{
    const std::int32_t year = index < m_years.valueMap.size() ? m_years.valueMap[index] : 0;
    return year >= 1 && year <= m_years.count();
}

void TimestepsOfRun::reportGap(std::size_t index, qint64 missing)
{
    const bool isCounted = isInCompleteYear(index) || isInCompleteYear(index - 1);
    m_findings.add(kStepMissing, lineOfStep(index), "%1 %2 missing between %3 and %4%5", missing,
                   missing == 1 ? "timestep is" : "timesteps are", text(index - 1), text(index),
                   isCounted ? "; the year still counts as complete" : "");
}

void TimestepsOfRun::checkYearLengths()
{
    std::size_t first = 0;
    const std::size_t count = std::min(m_steps.size(), m_years.valueMap.size());
    for (std::size_t i = 1; i <= count; ++i) {
        if (i < count && m_years.valueMap[i] == m_years.valueMap[first])
            continue;
        if (isInCompleteYear(first))
            checkYear(first, i);
        first = i;
    }
}

// Checks the complete year of the timesteps with the indexes `first` to `last` - 1.
void TimestepsOfRun::checkYear(std::size_t first, std::size_t last)
{
    const QDateTime& end = m_steps[last - 1];
    const QDateTime yearEnd = yearEndAfter(end, m_context.endMonth);
    const qint64 expected = m_length.stepsOfYear(yearEnd.addYears(-1), yearEnd, end);
    const auto count = static_cast<qint64>(last - first);
    if (count >= expected)
        return;
    if (!isYearOfEarlyStart(first)) {
        m_findings.add(kShortYear, lineOfStep(last - 1),
                       "the year that ends %1 counts as complete with %2 of %3 timesteps",
                       text(last - 1), count, expected);
        return;
    }
    m_hasEarlyStart = true;
    m_findings.add(kEarlyStart, m_context.lines.lineOf(kStartKey),
                   "start: lies in an earlier year than the first timestep, %1, so that the first "
                   "year counts as complete with %2 of %3 timesteps",
                   text(first), count, expected);
}

bool TimestepsOfRun::isYearOfEarlyStart(std::size_t first) const
{
    return first == 0 && m_run.start < m_steps.front() &&
           yearEndAfter(m_run.start, m_context.endMonth) <
               yearEndAfter(m_steps.front(), m_context.endMonth);
}

void TimestepsOfRun::checkEnds()
{
    if (m_steps.empty() || m_steps.size() < static_cast<std::size_t>(m_run.timesteps.size()))
        return;
    if (m_run.start.isValid() && m_run.start != m_steps.front() && !m_hasEarlyStart)
        m_findings.add(kStartDiffers, m_context.lines.lineOf(kStartKey),
                       "start: %1 is not the first timestep, %2", dateTimeToText(m_run.start),
                       text(0));
    if (m_run.end.isValid() && m_run.end != m_steps.back())
        m_findings.add(kEndDiffers, m_context.lines.lineOf(kEndKey),
                       "end: %1 is not the last timestep, %2", dateTimeToText(m_run.end),
                       text(m_steps.size() - 1));
}

class TimestepCheck : public TopicCheck
{
public:
    using TopicCheck::TopicCheck;

    // Later runs are compared with the first.
    void runRead() override
    {
        if (m_context.walk.runIndex() > 0)
            return;
        TimestepsOfRun timesteps(m_context);
        timesteps.checkUnit();
        timesteps.checkCompleteYears();
        timesteps.checkSteps();
        timesteps.checkYearLengths();
        timesteps.checkEnds();
    }
};

} // namespace

const Topic& timestepTopic()
{
    static const Topic kTopic = {"Timesteps and years",
                                 {&kUnknownUnit, &kAlreadyAnnual, &kNoCompleteYear, &kStepMissing,
                                  &kStepRepeated, &kStepBackwards, &kStepIrregular, &kStartDiffers,
                                  &kEarlyStart, &kEndDiffers, &kShortYear},
                                 makeCheck<TimestepCheck>};
    return kTopic;
}
