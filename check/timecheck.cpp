#include "check/timecheck.h"

#include <algorithm>
#include <vector>

#include <QDateTime>

#include "annualize/timestepunit.h"
#include "check/findings.h"
#include "check/nearwords.h"
#include "check/quotedtext.h"
#include "check/stepunit.h"
#include "hts/datetimetext.h"

namespace {

// Checks the timing of one run.
class TimeCheck
{
public:
    TimeCheck(const HtsRun& run, const RunLines& lines, const RunYears& years, int endMonth,
              Findings& findings);

    void checkUnit();
    void checkCompleteYears();
    void checkSteps();
    void checkEnds();
    void checkYearLengths();

private:
    qint64 lineOfStep(std::size_t index) const;
    const QString& text(std::size_t index) const
    {
        return m_run.timesteps.at(static_cast<int>(index));
    }
    bool isBackwards(std::size_t index) const;
    void checkStep(std::size_t index);
    bool isInCompleteYear(std::size_t index) const;
    void reportGap(std::size_t index, qint64 missing);
    void checkYear(std::size_t first, std::size_t last);
    bool isYearOfEarlyStart(std::size_t first) const;
    QDateTime yearEndAfter(const QDateTime& step) const;

    const HtsRun& m_run;
    const RunLines& m_lines;
    const RunYears& m_years;
    const int m_endMonth;
    Findings& m_findings;
    const StepUnit m_unit;
    std::vector<QDateTime> m_steps; // up to the first that is not a date-time
    bool m_hasEarlyStart = false;
};

TimeCheck::TimeCheck(const HtsRun& run, const RunLines& lines, const RunYears& years, int endMonth,
                     Findings& findings)
    : m_run(run), m_lines(lines), m_years(years), m_endMonth(endMonth), m_findings(findings),
      m_unit(run.timeStepUnit, run.unitQuantity)
{
    m_steps.reserve(static_cast<std::size_t>(run.timesteps.size()));
    for (const QString& timestep : run.timesteps) {
        const QDateTime step = textToDateTime(timestep);
        if (!step.isValid())
            break;
        m_steps.push_back(step);
    }
}

qint64 TimeCheck::lineOfStep(std::size_t index) const
{
    return m_lines.endOfPreamble + static_cast<qint64>(index) + 1;
}

void TimeCheck::checkUnit()
{
    const QString& word = m_run.timeStepUnit;
    if (findTimestepUnit(word) != nullptr)
        return;
    const qint64 line = m_lines.unit > 0 ? m_lines.unit : m_lines.endOfPreamble;
    m_findings.add(Code::UnknownUnit, line, [&]() -> QString {
        if (word.isEmpty())
            return QStringLiteral("no \"time_step_unit:\"; the timesteps count as days");
        std::vector<QLatin1String> words;
        for (const TimestepUnit& unit : timestepUnits())
            words.push_back(unit.word);
        const QLatin1String near = nearestWord(word, words);
        return QStringLiteral("time_step_unit: %1 is not known and counts as \"day\"%2")
            .arg(quoted(word), near.isEmpty() || near == QLatin1String("day")
                                   ? QString()
                                   : QStringLiteral("; is \"%1\" meant?").arg(near));
    });
}

void TimeCheck::checkCompleteYears()
{
    const Status& status = m_years.years.status;
    if (status.ok())
        return;
    if (!m_years.years.isSearched) {
        m_findings.add(Code::AlreadyAnnual, m_lines.unit, [&]() -> QString {
            return QStringLiteral("the timesteps are years already") +
                   conversionFails(status.message);
        });
        return;
    }
    const auto count = static_cast<std::size_t>(std::max(m_run.timeStepCount, 0));
    const bool hasBadStep = m_steps.size() < count;
    qint64 line = lineOfStep(count) - 1;
    QString reason = QStringLiteral("the timesteps contain no complete year");
    if (!m_run.start.isValid()) {
        line = m_lines.start > 0 ? m_lines.start : m_lines.endOfPreamble;
        reason = QStringLiteral("the run has no valid \"start:\"");
    } else if (count == 0) {
        reason = QStringLiteral("the run has no timesteps");
    } else if (hasBadStep) {
        line = lineOfStep(m_steps.size());
        reason = QStringLiteral("%1 is not a date-time").arg(quoted(text(m_steps.size())));
    }
    m_findings.add(Code::NoCompleteYear, line,
                   [&]() -> QString { return reason + conversionFails(status.message); });
}

void TimeCheck::checkSteps()
{
    for (std::size_t i = 1; i < m_steps.size(); ++i)
        checkStep(i);
}

bool TimeCheck::isBackwards(std::size_t index) const
{
    return index > 0 && index < m_steps.size() && m_steps[index] < m_steps[index - 1];
}

void TimeCheck::checkStep(std::size_t index)
{
    const QDateTime& previous = m_steps[index - 1];
    const QDateTime& step = m_steps[index];
    if (step == previous) {
        m_findings.add(Code::StepRepeated, lineOfStep(index), [&]() -> QString {
            return QStringLiteral("the timestep %1 occurs twice").arg(text(index));
        });
        return;
    }
    if (step < previous) {
        m_findings.add(Code::StepBackwards, lineOfStep(index), [&]() -> QString {
            return QStringLiteral("the timestep %1 is earlier than the one before it, %2")
                .arg(text(index), text(index - 1));
        });
        return;
    }
    // A timestep out of order leaves gaps on both sides, which are not reported separately.
    const qint64 steps = m_unit.stepsBetween(previous, step);
    if (steps == 1 || isBackwards(index - 1) || isBackwards(index + 1))
        return;
    if (steps > 1)
        reportGap(index, steps - 1);
    else
        m_findings.add(Code::StepIrregular, lineOfStep(index), [&]() -> QString {
            return QStringLiteral("the timestep %1 does not follow %2 by %3 %4")
                .arg(text(index), text(index - 1), QString::number(std::max(m_run.unitQuantity, 1)),
                     shown(m_run.timeStepUnit));
        });
}

bool TimeCheck::isInCompleteYear(std::size_t index) const
{
    const std::int32_t year = index < m_years.valueMap.size() ? m_years.valueMap[index] : 0;
    return year >= 1 && year <= m_years.yearCount();
}

void TimeCheck::reportGap(std::size_t index, qint64 missing)
{
    m_findings.add(Code::StepMissing, lineOfStep(index), [&]() -> QString {
        const bool isCounted = isInCompleteYear(index) || isInCompleteYear(index - 1);
        return QStringLiteral("%1 missing between %2 and %3%4")
            .arg(missing == 1 ? QStringLiteral("1 timestep is")
                              : QStringLiteral("%1 timesteps are").arg(missing),
                 text(index - 1), text(index),
                 isCounted ? QStringLiteral("; the year still counts as complete") : QString());
    });
}

// The end of the year that a timestep belongs to.
QDateTime TimeCheck::yearEndAfter(const QDateTime& step) const
{
    const int month = m_endMonth == 12 ? 1 : m_endMonth + 1;
    const QDateTime end(QDate(step.date().year(), month, 1), QTime(0, 0), Qt::UTC);
    return end < step ? end.addYears(1) : end;
}

void TimeCheck::checkYearLengths()
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
void TimeCheck::checkYear(std::size_t first, std::size_t last)
{
    const QDateTime& end = m_steps[last - 1];
    const QDateTime yearEnd = yearEndAfter(end);
    const qint64 expected = m_unit.stepsOfYear(yearEnd.addYears(-1), yearEnd, end);
    const auto count = static_cast<qint64>(last - first);
    if (count >= expected)
        return;
    if (isYearOfEarlyStart(first)) {
        m_hasEarlyStart = true;
        m_findings.add(Code::EarlyStart, m_lines.start, [&]() -> QString {
            return QStringLiteral("start: lies in an earlier year than the first timestep, %1, so "
                                  "that the first year counts as complete with %2 of %3 timesteps")
                .arg(text(first), QString::number(count), QString::number(expected));
        });
        return;
    }
    m_findings.add(Code::ShortYear, lineOfStep(last - 1), [&]() -> QString {
        return QStringLiteral("the year that ends %1 counts as complete with %2 of %3 timesteps")
            .arg(text(last - 1), QString::number(count), QString::number(expected));
    });
}

bool TimeCheck::isYearOfEarlyStart(std::size_t first) const
{
    return first == 0 && m_run.start < m_steps.front() &&
           yearEndAfter(m_run.start) < yearEndAfter(m_steps.front());
}

void TimeCheck::checkEnds()
{
    if (m_steps.empty() || m_steps.size() < static_cast<std::size_t>(m_run.timesteps.size()))
        return;
    if (m_run.start.isValid() && m_run.start != m_steps.front() && !m_hasEarlyStart) {
        m_findings.add(Code::StartDiffers, m_lines.start, [&]() -> QString {
            return QStringLiteral("start: %1 is not the first timestep, %2")
                .arg(dateTimeToText(m_run.start), text(0));
        });
    }
    if (!m_run.end.isValid() || m_run.end == m_steps.back())
        return;
    m_findings.add(Code::EndDiffers, m_lines.end, [&]() -> QString {
        return QStringLiteral("end: %1 is not the last timestep, %2")
            .arg(dateTimeToText(m_run.end), text(m_steps.size() - 1));
    });
}

} // namespace

qint64 RunYears::leftOutAtStart() const
{
    return std::count(valueMap.begin(), valueMap.end(), 0);
}

qint64 RunYears::leftOutAtEnd() const
{
    const int last = yearCount();
    return std::count_if(valueMap.begin(), valueMap.end(),
                         [last](int year) { return year > last; });
}

RunYears yearsOf(const HtsRun& run, int endMonth)
{
    RunYears result;
    result.years = findCompleteYears(run, endMonth, result.valueMap);
    return result;
}

void checkTiming(const HtsRun& run, const RunLines& lines, const RunYears& years, int endMonth,
                 Findings& findings)
{
    TimeCheck check(run, lines, years, endMonth, findings);
    check.checkUnit();
    check.checkCompleteYears();
    check.checkSteps();
    check.checkYearLengths();
    check.checkEnds();
}
