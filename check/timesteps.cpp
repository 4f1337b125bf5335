#include <algorithm>
#include <utility>
#include <vector>

#include <QDateTime>

#include "annualize/timestepunit.h"
#include "check/knownlines.h"
#include "check/nearwords.h"
#include "check/runsteps.h"
#include "check/shortyears.h"
#include "check/stamps.h"
#include "check/topiccheck.h"
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
constexpr FindingKind kStepCount = {
    Severity::Warning, "step-count",
    "There are more or fewer timestep lines than `time_steps:` announces, so that lines after them "
    "are misread.",
    "Correct the number, or look for a timestep line that is missing or there twice."};
constexpr FindingKind kNoCompleteYear = {
    Severity::Error, "no-complete-year", "The timesteps contain no complete year.",
    "Look at the end month, at `start:`, and at the first and the last timestep."};
constexpr FindingKind kStepGap = {
    Severity::Warning, "step-gap",
    "Timesteps are missing between two others, and years count as complete without them. After a "
    "gap of a year or more each timestep counts as a year of its own, until the years have caught "
    "up with it.",
    "Add the timesteps, with `NaN` for their values; after a gap of years, put what follows in "
    "another file."};
constexpr FindingKind kStepMissing = {
    Severity::Warning, "step-missing",
    "Timesteps are missing between two others. No complete year lacks them.",
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
constexpr FindingKind kBeginStamp = {
    Severity::Warning, "begin-stamp",
    "The timesteps seem to be stamped at their beginning, but a stamp counts as the end: each year "
    "is a timestep late, and the last may be left out. Noticed where no midnight is written "
    "`24:00`, if the run starts or ends with a year (of the end month or of the calendar) when "
    "stamps are beginnings, but not when they are ends; months must do both, or start with "
    "January. Also for months stamped on a first day after 0:00 that lose the last year. Not for "
    "weeks.",
    "Write the end of each timestep, for January `2000-1-31 24:00`."};
constexpr FindingKind kYearLeftOut = {
    Severity::Warning, "year-left-out",
    "A year at the start or the end of the run does not count as complete, although it has all "
    "timesteps: its last is not the end of the year, or a week that ends there; its first is more "
    "than one unit after the beginning; or `start:` is in a later year.",
    "Stamp the timesteps at their end; correct `start:`."};
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

// Checks the timesteps of the first run: their unit, whether they follow each other by it, whether
// start and end agree with them, whether they are stamped at their ends, and whether the years that
// count as complete have all their timesteps, and those that do not lack some.
class TimestepsOfRun
{
public:
    explicit TimestepsOfRun(CheckContext& context);

    void checkUnit();
    void checkCompleteYears();
    void checkSteps();
    void checkYearLengths();
    void checkStart();
    void checkStamps();
    void checkFirstYears();
    bool hasOtherEnd() const;

private:
    qint64 lineOfStep(std::size_t index) const
    {
        return m_context.lineOfStep(static_cast<qint64>(index));
    }
    void checkStep(std::size_t index);
    void reportGap(std::size_t index, const ShortYears& years);
    bool isStartEarly() const;
    void checkLastYear();
    void reportLeftOut(qint64 line, const WholeYears& years, const QString& reason);

    CheckContext& m_context;
    FindingList& m_findings;
    const HtsRun& m_run;
    const CompleteYears& m_years;
    const RunSteps& m_steps;
    // Indexes of the timesteps after gaps; 0 if `start:` lies too early.
    std::vector<std::size_t> m_gaps;
    bool m_hasEarlyStart = false;
};

TimestepsOfRun::TimestepsOfRun(CheckContext& context)
    : m_context(context), m_findings(context.findings), m_run(context.walk.run()),
      m_years(context.conversion.runYears()), m_steps(context.firstSteps.value())
{
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
    } else if (m_steps.count() < count) {
        line = lineOfStep(m_steps.count());
        reason = worded("%1 is not a date-time", quoted(m_steps.text(m_steps.count())));
    }
    m_findings.add(kNoCompleteYear, line, "%1%2", reason, conversionFails(status.message));
}

void TimestepsOfRun::checkSteps()
{
    if (isStartEarly())
        m_gaps.push_back(0);
    for (std::size_t i = 1; i < m_steps.count(); ++i)
        checkStep(i);
}

void TimestepsOfRun::checkStep(std::size_t index)
{
    const QDateTime& previous = m_steps.at(index - 1);
    const QDateTime& step = m_steps.at(index);
    const qint64 line = lineOfStep(index);
    if (step == previous) {
        m_findings.add(kStepRepeated, line, "the timestep %1 occurs twice", m_steps.text(index));
        return;
    }
    if (step < previous) {
        m_findings.add(kStepBackwards, line,
                       "the timestep %1 is earlier than the one before it, %2", m_steps.text(index),
                       m_steps.text(index - 1));
        return;
    }
    // A timestep out of order leaves gaps on both sides, which are not reported separately.
    const qint64 steps = m_steps.length().stepsBetween(previous, step);
    if (steps == 1 || m_steps.isBackwards(index - 1) || m_steps.isBackwards(index + 1))
        return;
    if (steps > 1)
        m_gaps.push_back(index);
    else
        m_findings.add(kStepIrregular, line, "the timestep %1 does not follow %2 by %3 %4",
                       m_steps.text(index), m_steps.text(index - 1),
                       std::max(m_run.unitQuantity, 1), m_run.timeStepUnit);
}

void TimestepsOfRun::checkYearLengths()
{
    const ShortYears years(m_steps, std::move(m_gaps));
    for (const std::size_t gap : years.gaps())
        reportGap(gap, years);
    for (const ShortYear& year : years.list()) {
        if (!year.isExplained)
            m_findings.add(kShortYear, lineOfStep(year.end - 1),
                           [&] { return years.textOf(year); });
    }
}

void TimestepsOfRun::reportGap(std::size_t index, const ShortYears& years)
{
    const ShortYears::Range range = years.yearsOf(index);
    if (index == 0) {
        m_hasEarlyStart = !range.isEmpty();
        if (m_hasEarlyStart)
            m_findings.add(kEarlyStart, m_context.lines.lineOf(kStartKey), [&] {
                const ShortYear& first = years.list().front();
                const ShortYears::Range others = {range.begin + 1, range.end};
                return worded("start: lies in an earlier year than the first timestep, %1, so that "
                              "the first year counts as complete with %2 of %3 timesteps%4%5",
                              m_steps.text(0), first.count(), first.expected,
                              others.isEmpty() ? "" : "; ", years.textOf(others));
            });
        return;
    }
    m_findings.add(range.isEmpty() ? kStepMissing : kStepGap, lineOfStep(index), [&] {
        const qint64 missing =
            m_steps.length().stepsBetween(m_steps.at(index - 1), m_steps.at(index)) - 1;
        return worded("%1 %2 missing between %3 and %4%5%6", missing,
                      missing == 1 ? "timestep is" : "timesteps are", m_steps.text(index - 1),
                      m_steps.text(index), range.isEmpty() ? "" : ": ", years.textOf(range));
    });
}

bool TimestepsOfRun::isStartEarly() const
{
    return m_steps.count() > 0 && m_run.start.isValid() &&
           m_steps.yearEndAfter(m_run.start) < m_steps.yearEndAfter(m_steps.first());
}

void TimestepsOfRun::checkStart()
{
    if (m_steps.isWhole() && m_run.start.isValid() && m_run.start != m_steps.first() &&
        !m_hasEarlyStart)
        m_findings.add(kStartDiffers, m_context.lines.lineOf(kStartKey),
                       "start: %1 is not the first timestep, %2", dateTimeToText(m_run.start),
                       m_steps.text(0));
}

bool TimestepsOfRun::hasOtherEnd() const
{
    return m_steps.isWhole() && m_run.end.isValid() && m_run.end != m_steps.last();
}

void TimestepsOfRun::checkStamps()
{
    if (!seemToBeBeginnings(m_steps)) {
        checkLastYear();
        return;
    }
    const QDateTime end = m_steps.length().moved(m_steps.last(), 1);
    m_findings.add(kBeginStamp, lineOfStep(0),
                   "the timesteps, %1 to %2, seem to be stamped at their beginning; a stamp counts "
                   "as the end, so that each year is a timestep late%3",
                   m_steps.text(0), m_steps.text(m_steps.count() - 1),
                   m_steps.yearEndAfter(end) == end ? ", and the last is left out" : "");
}

// The last year, if it is left out although it has all timesteps.
void TimestepsOfRun::checkLastYear()
{
    const WholeYears year = wholeYearLeftOutAtEnd(m_steps);
    if (year.count == 0)
        return;
    const qint64 line = lineOfStep(year.end - 1);
    const QDateTime yearEnd = m_steps.yearEndAfter(m_steps.last());
    const bool isFirstOfMonth = m_steps.last().date().day() == 1;
    if (m_steps.length().isMonths() && isFirstOfMonth)
        m_findings.add(kBeginStamp, lineOfStep(0),
                       "the timesteps, %1 to %2, seem to be stamped at their beginning; a stamp "
                       "counts as the end, so that the last year is left out",
                       m_steps.text(0), m_steps.text(year.end - 1));
    else if (m_steps.last() == yearEnd)
        reportLeftOut(line, year, QStringLiteral("the last week must end before the year does"));
    else
        reportLeftOut(line, year,
                      worded("the last is not the end of the year, %1", dateTimeToText(yearEnd)));
}

// The years before the first that counts as complete, if they have all timesteps.
void TimestepsOfRun::checkFirstYears()
{
    const WholeYears years = wholeYearsLeftOutAtStart(m_steps);
    if (years.count == 0)
        return;
    const QDateTime begin = m_steps.yearEndAfter(m_steps.first()).addYears(-1);
    const TimestepUnit& unit = timestepUnitOrDay(m_run.timeStepUnit);
    if (unit.latestEndOfFirst(begin) < m_steps.first())
        reportLeftOut(lineOfStep(0), years,
                      worded("the first ends more than one %1 after the beginning of the year, %2",
                             unit.word, dateTimeToText(begin)));
    else
        reportLeftOut(m_context.lineOfRunKey(kStartKey), years,
                      worded("years are counted from start:, %1", dateTimeToText(m_run.start)));
}

// Not where there is no complete year: the conversion reports that.
void TimestepsOfRun::reportLeftOut(qint64 line, const WholeYears& years, const QString& reason)
{
    if (m_years.status.ok())
        m_findings.add(kYearLeftOut, line, "the timesteps %1 to %2 are all of %3: %4",
                       m_steps.text(years.first), m_steps.text(years.end - 1),
                       years.count == 1 ? QStringLiteral("a year, which is left out")
                                        : worded("%1 years, which are left out", years.count),
                       reason);
}

class TimestepCheck : public LineCheck
{
public:
    using LineCheck::LineCheck;

    void runRead() override;
    void unexpectedLine(QLatin1String expected, std::string_view line) override;
    void slotPreambleRead(const HtsSlot&) override { reportEnd(); }
    void runEnded() override { reportEnd(); }
    void finish() override { reportEnd(); }

private:
    qint64 lineOfStepCount() const;
    void reportEnd();

    // Of the run at hand.
    bool m_isEndReported = true;
    qint64 m_countLine = 0;
    // The line of an `end:` that is not the last timestep, else 0: whether that is reported depends
    // on the line after the timesteps.
    qint64 m_otherEndLine = 0;
};

// Of the key that counts, which is the last.
qint64 TimestepCheck::lineOfStepCount() const
{
    const PreambleLines& lines = m_context.lines;
    const qint64 line = std::max(lines.lineOf(kStepCountKey), lines.lineOf(kStepCountSecondKey));
    return line > 0 ? line : lines.endLine();
}

void TimestepCheck::runRead()
{
    m_isEndReported = false;
    m_otherEndLine = 0;
    m_countLine = lineOfStepCount();
    // Later runs are compared with the first.
    if (m_context.walk.runIndex() > 0)
        return;
    TimestepsOfRun timesteps(m_context);
    timesteps.checkUnit();
    timesteps.checkCompleteYears();
    timesteps.checkSteps();
    timesteps.checkYearLengths();
    timesteps.checkStart();
    timesteps.checkStamps();
    timesteps.checkFirstYears();
    if (timesteps.hasOtherEnd())
        m_otherEndLine = m_context.lines.lineOf(kEndKey);
}

// Fewer timesteps than announced.
void TimestepCheck::unexpectedLine(QLatin1String expected, std::string_view line)
{
    const HtsRun& run = m_context.walk.run();
    if (expected == ReaderObserver::kTimestepFormat && isSlotLine(line))
        add(kStepCount, lineOfStepCount(), "time_steps: announces %1 timesteps, and %2 follow",
            run.timeStepCount, run.timesteps.size());
}

// At the first line that is no timestep.
void TimestepCheck::reportEnd()
{
    if (m_isEndReported)
        return;
    m_isEndReported = true;
    const HtsRun& run = m_context.walk.run();
    const qint64 surplus = m_context.recovery.surplusSteps();
    if (surplus > 0)
        add(kStepCount, m_countLine, "time_steps: announces %1 timesteps, and %2 follow",
            run.timeStepCount, run.timesteps.size() + surplus);
    else if (m_otherEndLine > 0)
        add(kEndDiffers, m_otherEndLine, "end: %1 is not the last timestep, %2",
            dateTimeToText(run.end), run.timesteps.last());
}

} // namespace

const Topic& timestepTopic()
{
    static const Topic kTopic = {"Timesteps and years",
                                 {&kUnknownUnit, &kAlreadyAnnual, &kStepCount, &kNoCompleteYear,
                                  &kStepGap, &kStepMissing, &kStepRepeated, &kStepBackwards,
                                  &kStepIrregular, &kBeginStamp, &kYearLeftOut, &kStartDiffers,
                                  &kEarlyStart, &kEndDiffers, &kShortYear},
                                 makeCheck<TimestepCheck>};
    return kTopic;
}
