#include <algorithm>
#include <cstddef>
#include <random>
#include <utility>

#include <QDateTime>
#include <QLocale>
#include <QObject>
#include <QRegularExpression>
#include <QtTest>

#include "annualize/annualizehts.h"
#include "hts/datetimetext.h"
#include "tests/hts/htstext.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"
#include "tests/support/timezone.h"

namespace {

const QString kAlreadyAnnual = QStringLiteral("Source HTS File already in annual timestep");
const QString kNoCompleteYear =
    QStringLiteral("Cannot create a complete year from the input HTS file");

const QString kStarting = QStringLiteral("Starting calculation of new annual timesteps ");
const QString kUsingDecember = QStringLiteral("Using December as the year end for calculations. ");
const QString kPartialBeginning =
    QStringLiteral("Ignoring partial year at beginning of timesteps ");
const QString kPartialEnd = QStringLiteral("Ignoring partial year at end of timesteps ");
const QString kFinished = QStringLiteral("Finished calculation of new annual timesteps ");

HtsRun makeRun(const QString& unit, const QStringList& timesteps)
{
    HtsRun run;
    run.timeStepUnit = unit;
    run.unitQuantity = 1;
    run.timesteps = timesteps;
    run.timeStepCount = timesteps.size();
    if (!timesteps.isEmpty()) {
        run.start = textToDateTime(timesteps.first());
        run.end = textToDateTime(timesteps.last());
    }
    return run;
}

// A run whose fields all differ from the default, to see which are kept.
HtsRun fullRun()
{
    HtsRun run = makeRun(QStringLiteral("decade"), {QStringLiteral("1900-1-1 6:00")});
    run.complete = true;
    run.trace = 7;
    run.unitQuantity = 3;
    run.timeStepCount = 17;
    run.consecutive = 5;
    run.slotSet = QStringLiteral("slots");
    run.ruleSet = QStringLiteral("rules");
    run.idxSequential = 6;
    return run;
}

// Every field of a run.
QString textOf(const HtsRun& run)
{
    return QStringLiteral("%1|%2|").arg(run.complete).arg(run.trace) +
           run.start.toString(Qt::ISODateWithMs) + QLatin1Char('|') +
           run.end.toString(Qt::ISODateWithMs) + QLatin1Char('|') + run.timeStepUnit +
           QStringLiteral("|%1|%2|%3|")
               .arg(run.unitQuantity)
               .arg(run.timeStepCount)
               .arg(run.consecutive) +
           run.slotSet + QLatin1Char('|') + run.ruleSet +
           QStringLiteral("|%1|").arg(run.idxSequential) + run.timesteps.join(QLatin1Char(','));
}

// The whole map, stretch by stretch: "0x2 1x12".
QString textOf(const AnnualizeHts::ValueMap& map)
{
    QStringList stretches;
    std::size_t i = 0;
    while (i < map.size()) {
        std::size_t end = i;
        while (end < map.size() && map[end] == map[i])
            ++end;
        stretches.append(QStringLiteral("%1x%2").arg(map[i]).arg(end - i));
        i = end;
    }
    return stretches.join(QLatin1Char(' '));
}

struct Outcome
{
    QString message;
    QString map;
    HtsRun run;
    QStringList log;
};

Outcome calculate(int endMonth, const HtsRun& input)
{
    const LogCollector log;
    AnnualizeHts engine;
    if (!engine.setEndMonth(endMonth).ok())
        return {QStringLiteral("refused"), QString(), HtsRun(), QStringList()};
    AnnualizeHts::ValueMap map;
    HtsRun run;
    const Status status = engine.calculateAnnualTimesteps(input, map, run);
    return {status.message, textOf(map), run, log.lines()};
}

QString usingMonth(int month)
{
    return QLatin1String("Using ") + QLocale::c().monthName(month) +
           QLatin1String(" as the year end for calculations. ");
}

QStringList successLog(int month, bool isEndPartial, const QStringList& annual)
{
    QStringList lines{kStarting, usingMonth(month), kPartialBeginning};
    if (isEndPartial)
        lines.append(kPartialEnd);
    lines.append(QLatin1String("New annual start timestep is ") + annual.first() +
                 QLatin1Char(' '));
    lines.append(QLatin1String("New annual end timestep is ") + annual.last() + QLatin1Char(' '));
    lines.append(kFinished);
    return lines;
}

// A series with equal steps, for the reference.
struct Series
{
    QString unit;
    QVector<QDateTime> instants;
    QStringList texts;
};

// How many weeks from `first` on end not far from a year's end: `years` years later, and `days`
// days after the day that is a week before it.
int weeksUpToAYearEnd(const QDate& first, int endMonth, int years, int days)
{
    const QDate yearEnd(first.year() + years, endMonth % 12 + 1, 1);
    return std::max<int>(1, static_cast<int>(first.daysTo(yearEnd.addDays(days))) / 7);
}

Series randomSeries(const QString& unit, int endMonth, std::mt19937& random)
{
    const auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    const int year = 1990 + below(20);
    // Weeks start close after a year's start half of the time: the first few days decide.
    const bool isNearStart = unit == QLatin1String("week") && below(2) == 0;
    const QDate day = isNearStart ? QDate(year, endMonth % 12 + 1, 1).addDays(below(10))
                                  : QDate(year, 1, 1).addDays(below(366));
    Series series;
    series.unit = unit;
    if (unit == QLatin1String("month"))
        series.texts = monthlyTimesteps(day.year(), day.month(), 1 + below(70));
    else if (unit == QLatin1String("week"))
        series.texts = dailyTimesteps(day, weeksUpToAYearEnd(day, endMonth, below(4), below(9)), 7);
    else if (unit == QLatin1String("day"))
        series.texts = dailyTimesteps(day, 1 + below(1900));
    else
        series.texts = hourlyTimesteps(day, 1 + below(24), 1 + below(24 * 900));
    for (const QString& text : series.texts) {
        const QStringList parts = text.split(QRegularExpression(QStringLiteral("[- :]")));
        const QDate date(parts[0].toInt(), parts[1].toInt(), parts[2].toInt());
        const qint64 seconds = parts[3].toInt() * 3600;
        series.instants.append(QDateTime(date, QTime(0, 0), Qt::UTC).addSecs(seconds));
    }
    return series;
}

// The instant at which the year that is named after the calendar year of its first day starts.
QDateTime yearStart(int year, int endMonth)
{
    return QDateTime(QDate(year, endMonth % 12 + 1, 1), QTime(0, 0), Qt::UTC);
}

// Whether the last step of a series completes the year that ends at `yearEnd`.
bool completes(const QDateTime& last, const QDateTime& yearEnd, const QString& unit)
{
    const qint64 left = last.secsTo(yearEnd);
    constexpr qint64 kWeek = 7 * 24 * 3600;
    return unit == QLatin1String("week") ? left > 0 && left < kWeek : left == 0;
}

// The reference: counts calendar years instead of walking along with a boundary.
Outcome reference(const Series& series, int endMonth)
{
    const auto nextStep = [&](const QDateTime& time) {
        return series.unit == QLatin1String("month")  ? time.addMonths(1)
               : series.unit == QLatin1String("week") ? time.addDays(7)
                                                      : time.addDays(1);
    };
    // The first year that has its first step; none starts before the calendar year of the series.
    int firstYear = series.instants.first().date().year();
    while (nextStep(yearStart(firstYear, endMonth)) < series.instants.first())
        ++firstYear;
    // The year in whose course, its end included, a step ends.
    const auto yearOf = [&](const QDateTime& instant) {
        int year = instant.date().year() + 1;
        while (yearStart(year, endMonth) >= instant)
            --year;
        return year;
    };

    Outcome outcome;
    AnnualizeHts::ValueMap map;
    for (int i = 0; i < series.instants.size(); ++i) {
        const QDateTime& instant = series.instants[i];
        const int year = yearOf(instant);
        map.push_back(std::max(0, year - firstYear + 1));
        const bool isLast = i + 1 == series.instants.size();
        const bool isYearEnd = isLast
                                   ? completes(instant, yearStart(year + 1, endMonth), series.unit)
                                   : yearOf(series.instants[i + 1]) != year;
        if (isYearEnd && year >= firstYear)
            outcome.run.timesteps.append(series.texts[i]);
    }
    outcome.map = textOf(map);
    outcome.run.timeStepCount = outcome.run.timesteps.size();
    if (outcome.run.timesteps.isEmpty())
        outcome.message = kNoCompleteYear;
    return outcome;
}

// The rows by unit.

void addCompleteMonths()
{
    QTest::newRow("months of exactly one year")
        << 12 << "month" << monthlyTimesteps(2000, 1, 12) << "1x12"
        << "2000-12-31 24:00" << false;
    QTest::newRow("months with one step after the year")
        << 12 << "month" << monthlyTimesteps(2000, 1, 13) << "1x12 2x1"
        << "2000-12-31 24:00" << true;
    QTest::newRow("months from the year's end")
        << 12 << "month" << monthlyTimesteps(1999, 12, 13) << "0x1 1x12"
        << "2000-12-31 24:00" << false;
    QTest::newRow("months without the year's first")
        << 12 << "month" << monthlyTimesteps(2000, 2, 23) << "0x11 1x12"
        << "2001-12-31 24:00" << false;
    QTest::newRow("months of a water year from March")
        << 9 << "month" << monthlyTimesteps(2000, 3, 19) << "0x7 1x12"
        << "2001-9-30 24:00" << false;
    QTest::newRow("months of a water year from October")
        << 9 << "month" << monthlyTimesteps(2000, 10, 26) << "1x12 2x12 3x2"
        << "2001-9-30 24:00,2002-9-30 24:00" << true;
    QTest::newRow("months of a water year from November")
        << 9 << "month" << monthlyTimesteps(2000, 11, 23) << "0x11 1x12"
        << "2002-9-30 24:00" << false;
    // The first step ends with the calendar year, so that the search starts in the next.
    QTest::newRow("months from the December of a year that ends in November")
        << 11 << "month" << monthlyTimesteps(2000, 12, 24) << "0x12 1x12"
        << "2002-11-30 24:00" << false;
}

void addCompleteDays()
{
    QTest::newRow("days of exactly one leap year")
        << 12 << "day" << dailyTimesteps(QDate(2000, 1, 1), 366) << "1x366"
        << "2000-12-31 24:00" << false;
    QTest::newRow("days from the year's second")
        << 12 << "day" << dailyTimesteps(QDate(2000, 1, 2), 365 + 365) << "0x365 1x365"
        << "2001-12-31 24:00" << false;
    QTest::newRow("days up to the last but one")
        << 12 << "day" << dailyTimesteps(QDate(2000, 1, 1), 366 + 364) << "1x366 2x364"
        << "2000-12-31 24:00" << true;
    QTest::newRow("days of a year that ends in February")
        << 2 << "day" << dailyTimesteps(QDate(2000, 2, 28), 2 + 365) << "0x2 1x365"
        << "2001-2-28 24:00" << false;
    QTest::newRow("days of a year that ends on a leap day")
        << 2 << "day" << dailyTimesteps(QDate(1999, 3, 1), 366 + 1) << "1x366 2x1"
        << "2000-2-29 24:00" << true;
}

void addCompleteHours()
{
    QTest::newRow("hours of exactly one year")
        << 12 << "hour" << hourlyTimesteps(QDate(2001, 1, 1), 1, 365 * 24) << "1x8760"
        << "2001-12-31 24:00" << false;
    QTest::newRow("hours from the end of the year's first day")
        << 12 << "hour" << hourlyTimesteps(QDate(2001, 1, 1), 24, 365 * 24 - 23) << "1x8737"
        << "2001-12-31 24:00" << false;
    QTest::newRow("hours from the year's second day")
        << 12 << "hour" << hourlyTimesteps(QDate(2001, 1, 2), 1, (364 + 365) * 24)
        << "0x8736 1x8760"
        << "2002-12-31 24:00" << false;
    QTest::newRow("hours up to the last but one")
        << 12 << "hour" << hourlyTimesteps(QDate(2001, 1, 1), 1, 2 * 8760 - 1) << "1x8760 2x8759"
        << "2001-12-31 24:00" << true;
    QTest::newRow("hours with one after the year")
        << 12 << "hour" << hourlyTimesteps(QDate(2001, 1, 1), 1, 8761) << "1x8760 2x1"
        << "2001-12-31 24:00" << true;
}

void addCompleteWeeks()
{
    // 2001-12-29 is a Saturday, the last within 2001; the next ends with 2002-1-5.
    QTest::newRow("weeks up to the last within the year")
        << 12 << "week" << dailyTimesteps(QDate(2001, 1, 6), 52, 7) << "1x52"
        << "2001-12-29 24:00" << false;
    QTest::newRow("weeks from the eighth day")
        << 12 << "week" << dailyTimesteps(QDate(2001, 1, 8), 52 + 52, 7) << "0x52 1x52"
        << "2002-12-30 24:00" << false;
    QTest::newRow("weeks from the end of the seventh day")
        << 12 << "week" << dailyTimesteps(QDate(2001, 1, 7), 52, 7) << "1x52"
        << "2001-12-30 24:00" << false;
    QTest::newRow("weeks that end with the year count only when more follow")
        << 12 << "week" << dailyTimesteps(QDate(2001, 1, 1), 2 * 52 + 2, 7) << "1x53 2x52 3x1"
        << "2001-12-31 24:00,2002-12-30 24:00" << true;
    QTest::newRow("week that ends within an hour of the year's end")
        << 12 << "week"
        << QStringList{QStringLiteral("2001-1-7 23:00"), QStringLiteral("2001-12-31 23:00")}
        << "1x2"
        << "2001-12-31 23:00" << false;
    QTest::newRow("week that ends seven days less an hour before the year's end")
        << 12 << "week"
        << QStringList{QStringLiteral("2001-1-7 23:00"), QStringLiteral("2001-12-25 1:00")} << "1x2"
        << "2001-12-25 1:00" << false;
}

void addWordsThatAreDays()
{
    QTest::newRow("unit Month is a day")
        << 12 << "Month" << monthlyTimesteps(2000, 1, 24) << "0x12 1x12"
        << "2001-12-31 24:00" << false;
    QTest::newRow("unit Year is a day")
        << 12 << "Year"
        << QStringList{QStringLiteral("2000-12-31 24:00"), QStringLiteral("2001-12-31 24:00"),
                       QStringLiteral("2002-12-31 24:00")}
        << "0x1 1x1 2x1"
        << "2001-12-31 24:00,2002-12-31 24:00" << false;
    QTest::newRow("unit Week is a day")
        << 12 << "Week"
        << QStringList{QStringLiteral("2001-1-1 24:00"), QStringLiteral("2001-12-31 24:00")}
        << "1x2"
        << "2001-12-31 24:00" << false;
}

} // namespace

class AnnualTimestepsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void worksOutExample()
    {
        const LogCollector log;
        AnnualizeHts engine;
        QCOMPARE(engine.setEndMonth(12).message, QString());
        AnnualizeHts::ValueMap map;
        HtsRun run;
        const HtsRun input = makeRun(QStringLiteral("month"), monthlyTimesteps(2000, 1, 27));
        QCOMPARE(input.timesteps.last(), QStringLiteral("2002-3-31 24:00"));
        const Status status = engine.calculateAnnualTimesteps(input, map, run);

        QCOMPARE(status.message, QString());
        QVERIFY(!status.flag);
        const AnnualizeHts::ValueMap expected{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2,
                                              2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 3};
        QCOMPARE(map, expected);
        QCOMPARE(
            textOf(run),
            QStringLiteral("0|-1|2001-01-01T00:00:00.000Z|2002-01-01T00:00:00.000Z|year|1|2|-1|||"
                           "-1|2000-12-31 24:00,2001-12-31 24:00"));
        const QStringList lines{kStarting,
                                kUsingDecember,
                                kPartialBeginning,
                                kPartialEnd,
                                QStringLiteral("New annual start timestep is 2000-12-31 24:00 "),
                                QStringLiteral("New annual end timestep is 2001-12-31 24:00 "),
                                kFinished};
        QCOMPARE(log.lines(), lines);
        QCOMPARE(log.levels(), QVector<QsLogging::Level>(lines.size(), QsLogging::InfoLevel));
    }

    void findsCompleteYears_data()
    {
        addColumns<int, QString, QStringList, QString>("endMonth", "unit", "timesteps", "map");
        QTest::addColumn<QString>("annual"); // the timesteps, separated by commas
        QTest::addColumn<bool>("isEndPartial");

        addCompleteMonths();
        addCompleteDays();
        addCompleteHours();
        addCompleteWeeks();
        addWordsThatAreDays();
    }

    void findsCompleteYears()
    {
        QFETCH(int, endMonth);
        QFETCH(QString, unit);
        QFETCH(QStringList, timesteps);
        QFETCH(QString, annual);
        QFETCH(bool, isEndPartial);

        const Outcome outcome = calculate(endMonth, makeRun(unit, timesteps));
        QCOMPARE(outcome.message, QString());
        QTEST(outcome.map, "map");
        HtsRun expected = makeRun(QStringLiteral("year"), annual.split(QLatin1Char(',')));
        QCOMPARE(textOf(outcome.run), textOf(expected));
        QCOMPARE(outcome.log, successLog(endMonth, isEndPartial, expected.timesteps));
    }

    void findsNoCompleteYear_data()
    {
        addColumns<int, QString, QStringList, QString, bool>("endMonth", "unit", "timesteps", "map",
                                                             "isEndPartial");

        QTest::newRow("eleven months")
            << 12 << "month" << monthlyTimesteps(2000, 1, 11) << "1x11" << true;
        QTest::newRow("months of two years, none complete")
            << 12 << "month" << monthlyTimesteps(2000, 2, 22) << "0x11 1x11" << true;
        // The counter goes below zero.
        QTest::newRow("months before the first year")
            << 9 << "month" << monthlyTimesteps(2000, 1, 5) << "0x5" << true;
        QTest::newRow("months up to the first year")
            << 9 << "month" << monthlyTimesteps(2000, 1, 9) << "0x9" << false;
        QTest::newRow("one step that ends with the year")
            << 12 << "month" << monthlyTimesteps(2000, 12, 1) << "0x1" << false;
        QTest::newRow("one step") << 12 << "month" << monthlyTimesteps(2000, 1, 1) << "1x1" << true;
        QTest::newRow("weeks before the first year")
            << 12 << "week" << QStringList{QStringLiteral("2000-12-31 24:00")} << "0x1" << true;
        QTest::newRow("last week ends with the year")
            << 12 << "week" << dailyTimesteps(QDate(2001, 1, 1), 53, 7) << "1x53" << true;
        QTest::newRow("last week ends seven days before the year")
            << 12 << "week" << dailyTimesteps(QDate(2001, 1, 1), 52, 7) << "1x52" << true;
        QTest::newRow("days at noon never end with the year")
            << 12 << "day"
            << QStringList{QStringLiteral("2001-1-1 12:00"), QStringLiteral("2001-12-31 12:00")}
            << "1x2" << true;
    }

    void findsNoCompleteYear()
    {
        QFETCH(int, endMonth);
        QFETCH(QString, unit);
        QFETCH(QStringList, timesteps);
        QFETCH(bool, isEndPartial);

        const Outcome outcome = calculate(endMonth, makeRun(unit, timesteps));
        QCOMPARE(outcome.message, kNoCompleteYear);
        QTEST(outcome.map, "map");
        QCOMPARE(textOf(outcome.run), textOf(HtsRun()));
        QStringList log{kStarting, usingMonth(endMonth), kPartialBeginning};
        if (isEndPartial)
            log.append(kPartialEnd);
        QCOMPARE(outcome.log, log);
    }

    void earlyYearsAreYears_data()
    {
        QTest::addColumn<int>("year");
        for (const int year : {1, 2, 9, 10, 69, 70, 98, 99, 100, 101, 499, 998, 999})
            QTest::addRow("year %d", year) << year;
    }

    // A year of fewer than four digits is no year of this century or the last.
    void earlyYearsAreYears()
    {
        QFETCH(int, year);
        const auto lastOf = [&](int yearsLater) {
            return timestepText(QDate(year + yearsLater, 12, 31), 24);
        };
        const Outcome outcome =
            calculate(12, makeRun(QStringLiteral("month"), monthlyTimesteps(year, 1, 27)));
        QCOMPARE(outcome.message, QString());
        QCOMPARE(outcome.map, QStringLiteral("1x12 2x12 3x3"));
        QCOMPARE(outcome.run.timesteps, (QStringList{lastOf(0), lastOf(1)}));
        QCOMPARE(outcome.run.start, QDateTime(QDate(year + 1, 1, 1), QTime(0, 0), Qt::UTC));
        QCOMPARE(outcome.run.end, QDateTime(QDate(year + 2, 1, 1), QTime(0, 0), Qt::UTC));
        QCOMPARE(outcome.log, successLog(12, true, outcome.run.timesteps));

        // Without its first month, the calendar year is not complete.
        const Outcome later =
            calculate(12, makeRun(QStringLiteral("month"), monthlyTimesteps(year, 2, 23)));
        QCOMPARE(later.message, QString());
        QCOMPARE(later.map, QStringLiteral("0x11 1x12"));
        QCOMPARE(later.run.timesteps, QStringList{lastOf(1)});
    }

    void namesEndMonth_data()
    {
        addColumns<int, QString, QString, QString>("endMonth", "name", "map", "annual");

        QTest::newRow("1") << 1 << "January"
                           << "0x1 1x12 2x11"
                           << "2001-1-31 24:00";
        QTest::newRow("2") << 2 << "February"
                           << "0x2 1x12 2x10"
                           << "2001-2-28 24:00";
        QTest::newRow("3") << 3 << "March"
                           << "0x3 1x12 2x9"
                           << "2001-3-31 24:00";
        QTest::newRow("4") << 4 << "April"
                           << "0x4 1x12 2x8"
                           << "2001-4-30 24:00";
        QTest::newRow("5") << 5 << "May"
                           << "0x5 1x12 2x7"
                           << "2001-5-31 24:00";
        QTest::newRow("6") << 6 << "June"
                           << "0x6 1x12 2x6"
                           << "2001-6-30 24:00";
        QTest::newRow("7") << 7 << "July"
                           << "0x7 1x12 2x5"
                           << "2001-7-31 24:00";
        QTest::newRow("8") << 8 << "August"
                           << "0x8 1x12 2x4"
                           << "2001-8-31 24:00";
        QTest::newRow("9") << 9 << "September"
                           << "0x9 1x12 2x3"
                           << "2001-9-30 24:00";
        QTest::newRow("10") << 10 << "October"
                            << "0x10 1x12 2x2"
                            << "2001-10-31 24:00";
        QTest::newRow("11") << 11 << "November"
                            << "0x11 1x12 2x1"
                            << "2001-11-30 24:00";
        QTest::newRow("12") << 12 << "December"
                            << "1x12 2x12"
                            << "2000-12-31 24:00,2001-12-31 24:00";
    }

    void namesEndMonth()
    {
        QFETCH(int, endMonth);
        QFETCH(QString, name);
        QFETCH(QString, annual);

        const Outcome outcome =
            calculate(endMonth, makeRun(QStringLiteral("month"), monthlyTimesteps(2000, 1, 24)));
        QCOMPARE(outcome.message, QString());
        QTEST(outcome.map, "map");
        QCOMPARE(outcome.run.timesteps.join(QLatin1Char(',')), annual);
        QCOMPARE(outcome.log.value(1),
                 QString(QLatin1String("Using ") + name +
                         QLatin1String(" as the year end for calculations. ")));
        QCOMPARE(outcome.log, successLog(endMonth, endMonth != 12, annual.split(QLatin1Char(','))));
    }

    // An engine that has not been given a month.
    void leavesOutNameOfMonthOutOfRange()
    {
        const LogCollector log;
        const AnnualizeHts engine;
        AnnualizeHts::ValueMap map;
        HtsRun run;
        const Status status = engine.calculateAnnualTimesteps(
            makeRun(QStringLiteral("month"), monthlyTimesteps(2000, 1, 12)), map, run);
        QCOMPARE(status.message, QString());
        QCOMPARE(textOf(map), QStringLiteral("1x12"));
        QCOMPARE(log.lines().value(1), QStringLiteral("Using  as the year end for calculations. "));
    }

    void refusesAnnualRun()
    {
        const Outcome outcome =
            calculate(12, makeRun(QStringLiteral("year"), monthlyTimesteps(2000, 1, 12)));
        QCOMPARE(outcome.message, kAlreadyAnnual);
        QCOMPARE(outcome.map, QString());
        QCOMPARE(textOf(outcome.run), textOf(HtsRun()));
        QCOMPARE(outcome.log, QStringList());
    }

    void refusesListShorterThanCount()
    {
        HtsRun input = makeRun(QStringLiteral("month"), monthlyTimesteps(2000, 1, 12));
        input.timeStepCount = 13;
        const Outcome outcome = calculate(12, input);
        QCOMPARE(outcome.message, QStringLiteral("Cannot read run preamble"));
        QCOMPARE(outcome.map, QString());
        QCOMPARE(textOf(outcome.run), textOf(HtsRun()));
        QCOMPARE(outcome.log, QStringList());
    }

    void ignoresTimestepsBeyondCount()
    {
        HtsRun input = makeRun(QStringLiteral("month"), monthlyTimesteps(2000, 1, 14));
        input.timeStepCount = 12;
        const Outcome outcome = calculate(12, input);
        QCOMPARE(outcome.message, QString());
        QCOMPARE(outcome.map, QStringLiteral("1x12"));
        QCOMPARE(outcome.log, successLog(12, false, {QStringLiteral("2000-12-31 24:00")}));

        input.timeStepCount = -1;
        QCOMPARE(calculate(12, input).message, kNoCompleteYear);
    }

    void findsNoYearWithoutTimesteps_data()
    {
        QTest::addColumn<QString>("start");
        QTest::newRow("no start") << "";
        QTest::newRow("start") << "2001-1-1 24:00";
        // The instant that an invalid one compares as.
        QTest::newRow("start of 1970") << "1970-1-1 0:00";
    }

    void findsNoYearWithoutTimesteps()
    {
        QFETCH(QString, start);
        for (const char* unit : {"", "month", "week", "day"}) {
            HtsRun input = makeRun(QString::fromLatin1(unit), {});
            input.start = textToDateTime(start);
            const Outcome outcome = calculate(12, input);
            QCOMPARE(outcome.message, kNoCompleteYear);
            QCOMPARE(outcome.map, QString());
            QCOMPARE(textOf(outcome.run), textOf(HtsRun()));
            const QStringList expected{kStarting, kUsingDecember, kPartialEnd};
            QCOMPARE(outcome.log, expected);
        }
    }

    void refusesInvalidStart()
    {
        HtsRun input = makeRun(QStringLiteral("month"), monthlyTimesteps(2000, 1, 12));
        input.start = QDateTime();
        const Outcome outcome = calculate(12, input);
        QCOMPARE(outcome.message, kNoCompleteYear);
        QCOMPARE(outcome.map, QString());
        QCOMPARE(textOf(outcome.run), textOf(HtsRun()));
        const QStringList expected{kStarting, kUsingDecember, kPartialBeginning, kPartialEnd};
        QCOMPARE(outcome.log, expected);
    }

    void refusesInvalidTimestep_data()
    {
        addColumns<QString, int>("text", "position");
        QTest::newRow("month out of range") << "2000-13-1 0:00" << 5;
        QTest::newRow("all out of range") << "2000-13-45 99:99" << 5;
        QTest::newRow("no such day") << "2001-2-29 6:00" << 5;
        QTest::newRow("midnight of a month out of range") << "2000-13-1 24:00" << 5;
        QTest::newRow("midnight of no such day") << "2001-2-29 24:00" << 5;
        QTest::newRow("at the beginning") << "2000-13-45 99:99" << 0;
        QTest::newRow("at the end") << "2000-13-45 99:99" << 11;
    }

    void refusesInvalidTimestep()
    {
        QFETCH(QString, text);
        QFETCH(int, position);

        HtsRun input = makeRun(QStringLiteral("month"), monthlyTimesteps(2000, 1, 24));
        input.timesteps[position] = text;
        const Outcome outcome = calculate(12, input);
        QCOMPARE(outcome.message, kNoCompleteYear);
        QCOMPARE(textOf(outcome.run), textOf(HtsRun()));
        const QStringList expected{kStarting, kUsingDecember, kPartialBeginning, kPartialEnd};
        QCOMPARE(outcome.log, expected);
    }

    void formsOfMidnightMeanTheSame_data()
    {
        QTest::addColumn<QString>("last");
        QTest::newRow("end of the last day") << "2000-12-31 24:00";
        QTest::newRow("beginning of the next") << "2001-1-1 0:00";
        QTest::newRow("with leading zeros") << "2001-01-01 00:00";
    }

    void formsOfMidnightMeanTheSame()
    {
        QFETCH(QString, last);
        QStringList timesteps = monthlyTimesteps(2000, 1, 11);
        timesteps.append(last);
        const Outcome outcome = calculate(12, makeRun(QStringLiteral("month"), timesteps));
        QCOMPARE(outcome.message, QString());
        QCOMPARE(outcome.map, QStringLiteral("1x12"));
        // Copied unchanged.
        QCOMPARE(outcome.run.timesteps, QStringList{last});
        QCOMPARE(outcome.run.start, QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC));
        QCOMPARE(outcome.log, successLog(12, false, {last}));
    }

    void unitQuantityDoesNotMatter()
    {
        HtsRun input = makeRun(QStringLiteral("month"), monthlyTimesteps(2000, 1, 27));
        const Outcome expected = calculate(12, input);
        for (const int quantity : {-1, 0, 2, 6}) {
            input.unitQuantity = quantity;
            const Outcome outcome = calculate(12, input);
            QCOMPARE(outcome.map, expected.map);
            QCOMPARE(textOf(outcome.run), textOf(expected.run));
        }
    }

    void fillsRunAndKeepsTraceAndComplete()
    {
        HtsRun input = makeRun(QStringLiteral("month"), monthlyTimesteps(2000, 1, 27));
        input.trace = 1;
        input.consecutive = 0;
        input.slotSet = QStringLiteral("input slots");
        input.ruleSet = QStringLiteral("input rules");
        input.idxSequential = 2;

        AnnualizeHts engine;
        QCOMPARE(engine.setEndMonth(12).message, QString());
        AnnualizeHts::ValueMap map;
        HtsRun run = fullRun();
        QCOMPARE(engine.calculateAnnualTimesteps(input, map, run).message, QString());
        QCOMPARE(textOf(run),
                 QStringLiteral("1|7|2001-01-01T00:00:00.000Z|2002-01-01T00:00:00.000Z|year|1|2|0|"
                                "input slots|input rules|2|2000-12-31 24:00,2001-12-31 24:00"));
    }

    void failureLeavesRunUnchanged_data()
    {
        addColumns<QString, QStringList>("unit", "timesteps");
        QTest::newRow("annual") << "year" << monthlyTimesteps(2000, 1, 24);
        QTest::newRow("no complete year") << "month" << monthlyTimesteps(2000, 2, 20);
        QTest::newRow("no timesteps") << "month" << QStringList();
        QTest::newRow("invalid timestep after a complete year")
            << "month" << monthlyTimesteps(2000, 1, 14) + QStringList{QStringLiteral("x")};
    }

    void failureLeavesRunUnchanged()
    {
        QFETCH(QString, unit);
        QFETCH(QStringList, timesteps);

        AnnualizeHts engine;
        QCOMPARE(engine.setEndMonth(12).message, QString());
        AnnualizeHts::ValueMap map;
        HtsRun run = fullRun();
        const Status status = engine.calculateAnnualTimesteps(makeRun(unit, timesteps), map, run);
        QVERIFY(!status.ok());
        QVERIFY(!status.flag);
        QCOMPARE(textOf(run), textOf(fullRun()));
    }

    void appendsToValueMap()
    {
        AnnualizeHts engine;
        QCOMPARE(engine.setEndMonth(12).message, QString());
        AnnualizeHts::ValueMap map{5, 5};
        HtsRun run;
        const HtsRun input = makeRun(QStringLiteral("month"), monthlyTimesteps(2000, 1, 13));
        QCOMPARE(engine.calculateAnnualTimesteps(input, map, run).message, QString());
        QCOMPARE(engine.calculateAnnualTimesteps(input, map, run).message, QString());
        QCOMPARE(textOf(map), QStringLiteral("5x2 1x12 2x1 1x12 2x1"));
    }

    void timeZoneDoesNotMatter_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::newRow("UTC") << QByteArray("UTC");
        QTest::newRow("Denver") << QByteArray("America/Denver");
        // The rest needs no table of zones on the host.
        QTest::newRow("Denver by rule") << QByteArray("MST7MDT,M3.2.0,M11.1.0");
        QTest::newRow("daylight-saving time starts with the water year")
            << QByteArray("AAA3BBB,J274/0,J90/0");
        QTest::newRow("daylight-saving time starts on the water year's first noon")
            << QByteArray("AAA-9BBB,J274/12,J90/3");
        QTest::newRow("daylight-saving time ends with the water year")
            << QByteArray("AAA3BBB,J90/0,J274/0");
    }

    void timeZoneDoesNotMatter()
    {
        QFETCH(QByteArray, zone);
        const TimeZone timeZone(zone);

        // From the water year's first hour on: a start that moves by an hour moves the years.
        const QStringList hours = hourlyTimesteps(QDate(2010, 10, 1), 1, 8760 + 8784 + 1);
        const Outcome whole = calculate(9, makeRun(QStringLiteral("hour"), hours));
        QCOMPARE(whole.message, QString());
        QCOMPARE(whole.map, QStringLiteral("1x8760 2x8784 3x1"));
        QCOMPARE(
            textOf(whole.run),
            QStringLiteral("0|-1|2011-10-01T00:00:00.000Z|2012-10-01T00:00:00.000Z|year|1|2|-1|||"
                           "-1|2011-9-30 24:00,2012-9-30 24:00"));

        // A first timestep that ends at the end of the first day, and one an hour later.
        const Outcome atLimit = calculate(9, makeRun(QStringLiteral("hour"), hours.mid(23)));
        QCOMPARE(atLimit.map, QStringLiteral("1x8737 2x8784 3x1"));
        const Outcome beyondLimit = calculate(9, makeRun(QStringLiteral("hour"), hours.mid(24)));
        QCOMPARE(beyondLimit.map, QStringLiteral("0x8736 1x8784 2x1"));
    }

    void agreesWithSlowReference_data()
    {
        addColumns<QString, unsigned>("unit", "seed");
        const std::pair<QString, unsigned> kSeries[] = {{QStringLiteral("month"), 25u},
                                                        {QStringLiteral("week"), 200u},
                                                        {QStringLiteral("day"), 25u},
                                                        {QStringLiteral("hour"), 25u}};
        for (const auto& [unit, count] : kSeries) {
            for (unsigned seed = 1; seed <= count; ++seed)
                QTest::newRow(qPrintable(QStringLiteral("%1 series %2").arg(unit).arg(seed)))
                    << unit << seed;
        }
    }

    void agreesWithSlowReference()
    {
        QFETCH(QString, unit);
        QFETCH(unsigned, seed);
        std::mt19937 random(seed);
        const int endMonth = static_cast<int>(random() % 12) + 1;
        const Series series = randomSeries(unit, endMonth, random);

        const Outcome outcome = calculate(endMonth, makeRun(unit, series.texts));
        const Outcome expected = reference(series, endMonth);
        QCOMPARE(outcome.message, expected.message);
        QCOMPARE(outcome.map, expected.map);
        QCOMPARE(outcome.run.timesteps, expected.run.timesteps);
        QCOMPARE(outcome.run.timeStepCount, expected.run.timeStepCount);
    }
};

HTS_TEST(AnnualTimestepsTest, QCoreApplication)

#include "tst_annualtimesteps.moc"
