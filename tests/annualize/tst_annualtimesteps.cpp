#include <utility>

#include <QLocale>
#include <QtTest>

#include "annualize/annualizehts.h"
#include "hts/datetimetext.h"
#include "tests/annualize/conversioncompare.h"
#include "tests/hts/htstext.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"
#include "tests/support/timezone.h"

namespace {

const QString kStarting = QStringLiteral("Starting calculation of new annual timesteps ");
const QString kPartialBeginning =
    QStringLiteral("Ignoring partial year at beginning of timesteps ");
const QString kPartialEnd = QStringLiteral("Ignoring partial year at end of timesteps ");

HtsRun makeRun(const char* unit, const QStringList& timesteps)
{
    HtsRun run;
    run.timeStepUnit = QString::fromLatin1(unit);
    run.unitQuantity = 1;
    run.timesteps = timesteps;
    run.timeStepCount = timesteps.size();
    if (!timesteps.isEmpty()) {
        run.start = textToDateTime(timesteps.first());
        run.end = textToDateTime(timesteps.last());
    }
    return run;
}

HtsRun monthlyRun(int year, int month, int count)
{
    return makeRun("month", monthlyTimesteps(year, month, count));
}

// A run whose fields all differ from the default, to see which are kept.
HtsRun fullRun()
{
    HtsRun run = makeRun("decade", texts("1900-1-1 6:00"));
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
    return QStringList{QString::number(run.complete),
                       QString::number(run.trace),
                       run.start.toString(Qt::ISODateWithMs),
                       run.end.toString(Qt::ISODateWithMs),
                       run.timeStepUnit,
                       QString::number(run.unitQuantity),
                       QString::number(run.timeStepCount),
                       QString::number(run.consecutive),
                       run.slotSet,
                       run.ruleSet,
                       QString::number(run.idxSequential),
                       run.timesteps.join(QLatin1Char(','))}
        .join(QLatin1Char('|'));
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

// `run`: as it is before.
Outcome calculate(int endMonth, const HtsRun& input, HtsRun run = {})
{
    const LogCollector log;
    AnnualizeHts engine;
    if (!engine.setEndMonth(endMonth).ok())
        qFatal("refused");
    AnnualizeHts::ValueMap map;
    const Status status = engine.calculateAnnualTimesteps(input, map, run);
    if (status.flag)
        qFatal("the flag is set");
    return {status.message, textOf(map), run, log.lines()};
}

// The log up to the search for years.
QStringList openingLog(int month, bool isEndPartial)
{
    const QString name = QLocale::c().monthName(month);
    QStringList lines{kStarting,
                      QStringLiteral("Using %1 as the year end for calculations. ").arg(name),
                      kPartialBeginning};
    if (isEndPartial)
        lines.append(kPartialEnd);
    return lines;
}

QStringList successLog(int month, bool isEndPartial, const QStringList& annual)
{
    return openingLog(month, isEndPartial) +
           QStringList{QStringLiteral("New annual start timestep is %1 ").arg(annual.first()),
                       QStringLiteral("New annual end timestep is %1 ").arg(annual.last()),
                       QStringLiteral("Finished calculation of new annual timesteps ")};
}

// A run that is refused, before anything is logged if `log` is empty.
void isRefused(const Outcome& outcome, const char* message, const QStringList& log)
{
    QCOMPARE(outcome.message, QString::fromLatin1(message));
    QCOMPARE(textOf(outcome.run), textOf(HtsRun()));
    QCOMPARE(outcome.log, log);
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
        const HtsRun input = monthlyRun(2000, 1, 27);
        QCOMPARE(input.timesteps.last(), QStringLiteral("2002-3-31 24:00"));
        const Status status = engine.calculateAnnualTimesteps(input, map, run);

        QCOMPARE(status.message, QString());
        QVERIFY(!status.flag);
        const AnnualizeHts::ValueMap expected{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2,
                                              2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 3};
        QCOMPARE(map, expected);
        QCOMPARE(textOf(run), QStringLiteral("0|-1|2001-01-01T00:00:00.000Z|2002-01-01T00:00:00."
                                             "000Z|year|1|2|-1|||-1|2000-12-31 24:00,2001-12-31 "
                                             "24:00"));
        const QStringList lines = texts("Starting calculation of new annual timesteps |"
                                        "Using December as the year end for calculations. |"
                                        "Ignoring partial year at beginning of timesteps |"
                                        "Ignoring partial year at end of timesteps |"
                                        "New annual start timestep is 2000-12-31 24:00 |"
                                        "New annual end timestep is 2001-12-31 24:00 |"
                                        "Finished calculation of new annual timesteps ");
        QCOMPARE(log.lines(), lines);
        QCOMPARE(log.levels(), QVector<QsLogging::Level>(lines.size(), QsLogging::InfoLevel));
    }

    void findsCompleteYears_data()
    {
        addColumns<int, QStringList, QString, QString, bool>("endMonth", "timesteps", "map",
                                                             "annual", "isEndPartial");
        const auto months = monthlyTimesteps;
        const auto days = [](int year, int month, int day, int count) {
            return dailyTimesteps(QDate(year, month, day), count);
        };
        const auto weeks = [](int year, int month, int day, int count) {
            return dailyTimesteps(QDate(year, month, day), count, 7);
        };
        const auto hours = [](int day, int first, int count) {
            return hourlyTimesteps(QDate(2001, 1, day), first, count);
        };
        // A name begins with the unit: that of "month: ..." is "month".
        addRows<int, QStringList, const char*, const char*, bool>({
            {"month: exactly one year", 12, months(2000, 1, 12), "1x12", "2000-12-31 24:00", false},
            {"month: one step after the year", 12, months(2000, 1, 13), "1x12 2x1",
             "2000-12-31 24:00", true},
            {"month: from the year's end", 12, months(1999, 12, 13), "0x1 1x12", "2000-12-31 24:00",
             false},
            {"month: without the year's first", 12, months(2000, 2, 23), "0x11 1x12",
             "2001-12-31 24:00", false},
            {"month: water year from March", 9, months(2000, 3, 19), "0x7 1x12", "2001-9-30 24:00",
             false},
            {"month: water year from October", 9, months(2000, 10, 26), "1x12 2x12 3x2",
             "2001-9-30 24:00|2002-9-30 24:00", true},
            {"month: water year from November", 9, months(2000, 11, 23), "0x11 1x12",
             "2002-9-30 24:00", false},
            // The first step ends with the calendar year, so that the search starts in the next.
            {"month: from the December of a year that ends in November", 11, months(2000, 12, 24),
             "0x12 1x12", "2002-11-30 24:00", false},
            {"day: exactly one leap year", 12, days(2000, 1, 1, 366), "1x366", "2000-12-31 24:00",
             false},
            {"day: from the year's second", 12, days(2000, 1, 2, 365 + 365), "0x365 1x365",
             "2001-12-31 24:00", false},
            {"day: up to the last but one", 12, days(2000, 1, 1, 366 + 364), "1x366 2x364",
             "2000-12-31 24:00", true},
            {"day: year that ends in February", 2, days(2000, 2, 28, 2 + 365), "0x2 1x365",
             "2001-2-28 24:00", false},
            {"day: year that ends on a leap day", 2, days(1999, 3, 1, 366 + 1), "1x366 2x1",
             "2000-2-29 24:00", true},
            {"hour: exactly one year", 12, hours(1, 1, 8760), "1x8760", "2001-12-31 24:00", false},
            {"hour: from the end of the year's first day", 12, hours(1, 24, 8760 - 23), "1x8737",
             "2001-12-31 24:00", false},
            {"hour: from the year's second day", 12, hours(2, 1, 8736 + 8760), "0x8736 1x8760",
             "2002-12-31 24:00", false},
            {"hour: up to the last but one", 12, hours(1, 1, 2 * 8760 - 1), "1x8760 2x8759",
             "2001-12-31 24:00", true},
            {"hour: one after the year", 12, hours(1, 1, 8761), "1x8760 2x1", "2001-12-31 24:00",
             true},
            // 2001-12-29 is a Saturday, the last within 2001; the next ends with 2002-1-5.
            {"week: up to the last within the year", 12, weeks(2001, 1, 6, 52), "1x52",
             "2001-12-29 24:00", false},
            {"week: from the eighth day", 12, weeks(2001, 1, 8, 52 + 52), "0x52 1x52",
             "2002-12-30 24:00", false},
            {"week: from the end of the seventh day", 12, weeks(2001, 1, 7, 52), "1x52",
             "2001-12-30 24:00", false},
            {"week: those that end with the year count only when more follow", 12,
             weeks(2001, 1, 1, 2 * 52 + 2), "1x53 2x52 3x1", "2001-12-31 24:00|2002-12-30 24:00",
             true},
            {"week: ends within an hour of the year's end", 12,
             texts("2001-1-7 23:00|2001-12-31 23:00"), "1x2", "2001-12-31 23:00", false},
            {"week: ends seven days less an hour before the year's end", 12,
             texts("2001-1-7 23:00|2001-12-25 1:00"), "1x2", "2001-12-25 1:00", false},
            {"Month: is a day", 12, months(2000, 1, 24), "0x12 1x12", "2001-12-31 24:00", false},
            {"Year: is a day", 12, texts("2000-12-31 24:00|2001-12-31 24:00|2002-12-31 24:00"),
             "0x1 1x1 2x1", "2001-12-31 24:00|2002-12-31 24:00", false},
            {"Week: is a day", 12, texts("2001-1-1 24:00|2001-12-31 24:00"), "1x2",
             "2001-12-31 24:00", false},
        });
    }
    void findsCompleteYears()
    {
        QFETCH(int, endMonth);
        QFETCH(QStringList, timesteps);
        QFETCH(QString, annual);
        QFETCH(bool, isEndPartial);
        const QByteArray unit = QByteArray(QTest::currentDataTag()).split(':').first();
        const Outcome outcome = calculate(endMonth, makeRun(unit, timesteps));
        QCOMPARE(outcome.message, QString());
        QTEST(outcome.map, "map");
        const HtsRun expected = makeRun("year", annual.split(QLatin1Char('|')));
        QCOMPARE(textOf(outcome.run), textOf(expected));
        QCOMPARE(outcome.log, successLog(endMonth, isEndPartial, expected.timesteps));
    }

    void findsNoCompleteYear_data()
    {
        addColumns<int, QStringList, QString, bool>("endMonth", "timesteps", "map", "isEndPartial");
        const auto months = monthlyTimesteps;
        const QDate newYear(2001, 1, 1);
        addRows<int, QStringList, const char*, bool>({
            {"month: eleven", 12, months(2000, 1, 11), "1x11", true},
            {"month: two years, none complete", 12, months(2000, 2, 22), "0x11 1x11", true},
            // The counter goes below zero.
            {"month: before the first year", 9, months(2000, 1, 5), "0x5", true},
            {"month: up to the first year", 9, months(2000, 1, 9), "0x9", false},
            {"month: one step that ends with the year", 12, months(2000, 12, 1), "0x1", false},
            {"month: one step", 12, months(2000, 1, 1), "1x1", true},
            {"week: before the first year", 12, texts("2000-12-31 24:00"), "0x1", true},
            {"week: last one ends with the year", 12, dailyTimesteps(newYear, 53, 7), "1x53", true},
            {"week: last one ends seven days before the year", 12, dailyTimesteps(newYear, 52, 7),
             "1x52", true},
            {"day: at noon never ends with the year", 12, texts("2001-1-1 12:00|2001-12-31 12:00"),
             "1x2", true},
        });
    }
    void findsNoCompleteYear()
    {
        QFETCH(int, endMonth);
        QFETCH(QStringList, timesteps);
        QFETCH(bool, isEndPartial);
        const QByteArray unit = QByteArray(QTest::currentDataTag()).split(':').first();
        const Outcome outcome = calculate(endMonth, makeRun(unit, timesteps));
        QTEST(outcome.map, "map");
        isRefused(outcome, kNoCompleteYear, openingLog(endMonth, isEndPartial));
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
        const Outcome outcome = calculate(12, monthlyRun(year, 1, 27));
        QCOMPARE(outcome.message, QString());
        QCOMPARE(outcome.map, QStringLiteral("1x12 2x12 3x3"));
        QCOMPARE(outcome.run.timesteps, (QStringList{lastOf(0), lastOf(1)}));
        QCOMPARE(outcome.run.start, utc(year + 1, 1, 1));
        QCOMPARE(outcome.run.end, utc(year + 2, 1, 1));
        QCOMPARE(outcome.log, successLog(12, true, outcome.run.timesteps));

        // Without its first month, the calendar year is not complete.
        const Outcome later = calculate(12, monthlyRun(year, 2, 23));
        QCOMPARE(later.message, QString());
        QCOMPARE(later.map, QStringLiteral("0x11 1x12"));
        QCOMPARE(later.run.timesteps, QStringList{lastOf(1)});
    }

    void namesEndMonth_data()
    {
        addColumns<QString, QString, QString>("name", "map", "annual");
        addRows<const char*, const char*, const char*>(
            {{"1", "January", "0x1 1x12 2x11", "2001-1-31 24:00"},
             {"2", "February", "0x2 1x12 2x10", "2001-2-28 24:00"},
             {"3", "March", "0x3 1x12 2x9", "2001-3-31 24:00"},
             {"4", "April", "0x4 1x12 2x8", "2001-4-30 24:00"},
             {"5", "May", "0x5 1x12 2x7", "2001-5-31 24:00"},
             {"6", "June", "0x6 1x12 2x6", "2001-6-30 24:00"},
             {"7", "July", "0x7 1x12 2x5", "2001-7-31 24:00"},
             {"8", "August", "0x8 1x12 2x4", "2001-8-31 24:00"},
             {"9", "September", "0x9 1x12 2x3", "2001-9-30 24:00"},
             {"10", "October", "0x10 1x12 2x2", "2001-10-31 24:00"},
             {"11", "November", "0x11 1x12 2x1", "2001-11-30 24:00"},
             {"12", "December", "1x12 2x12", "2000-12-31 24:00|2001-12-31 24:00"}});
    }
    void namesEndMonth()
    {
        QFETCH(QString, name);
        QFETCH(QString, annual);
        const int endMonth = QByteArray(QTest::currentDataTag()).toInt();
        const Outcome outcome = calculate(endMonth, monthlyRun(2000, 1, 24));
        QCOMPARE(outcome.message, QString());
        QTEST(outcome.map, "map");
        QCOMPARE(outcome.run.timesteps.join(QLatin1Char('|')), annual);
        QCOMPARE(outcome.log.value(1),
                 QStringLiteral("Using %1 as the year end for calculations. ").arg(name));
        QCOMPARE(outcome.log, successLog(endMonth, endMonth != 12, annual.split(QLatin1Char('|'))));
    }

    // An engine that has not been given a month.
    void leavesOutNameOfMonthOutOfRange()
    {
        const LogCollector log;
        AnnualizeHts::ValueMap map;
        HtsRun run;
        const Status status =
            AnnualizeHts().calculateAnnualTimesteps(monthlyRun(2000, 1, 12), map, run);
        QCOMPARE(status.message, QString());
        QCOMPARE(textOf(map), QStringLiteral("1x12"));
        QCOMPARE(log.lines().value(1), QStringLiteral("Using  as the year end for calculations. "));
    }

    void refusesAnnualRunAndListShorterThanCount()
    {
        HtsRun input = monthlyRun(2000, 1, 12);
        input.timeStepCount = 13;
        isRefused(calculate(12, input), "Cannot read run preamble", {});
        isRefused(calculate(12, makeRun("year", input.timesteps)), kAlreadyAnnual, {});
        QCOMPARE(calculate(12, input).map, QString());
    }

    void ignoresTimestepsBeyondCount()
    {
        HtsRun input = monthlyRun(2000, 1, 14);
        input.timeStepCount = 12;
        const Outcome outcome = calculate(12, input);
        QCOMPARE(outcome.message, QString());
        QCOMPARE(outcome.map, QStringLiteral("1x12"));
        QCOMPARE(outcome.log, successLog(12, false, texts("2000-12-31 24:00")));
        input.timeStepCount = -1;
        QCOMPARE(calculate(12, input).message, QString::fromLatin1(kNoCompleteYear));
    }

    void findsNoYearWithoutTimesteps()
    {
        // The last is the instant that an invalid one compares as.
        for (const QString& start : texts("|2001-1-1 24:00|1970-1-1 0:00")) {
            for (const char* unit : {"", "month", "week", "day"}) {
                HtsRun input = makeRun(unit, {});
                input.start = textToDateTime(start);
                QStringList log = openingLog(12, true);
                log.removeAll(kPartialBeginning);
                isRefused(calculate(12, input), kNoCompleteYear, log);
                QCOMPARE(calculate(12, input).map, QString());
            }
        }
    }

    void refusesInvalidStart()
    {
        HtsRun input = monthlyRun(2000, 1, 12);
        input.start = QDateTime();
        isRefused(calculate(12, input), kNoCompleteYear, openingLog(12, true));
        QCOMPARE(calculate(12, input).map, QString());
    }

    void refusesInvalidTimestep()
    {
        const std::pair<const char*, int> kTimesteps[] = {
            {"2000-13-1 0:00", 5},   {"2000-13-45 99:99", 5}, {"2001-2-29 6:00", 5},
            {"2000-13-1 24:00", 5},  {"2001-2-29 24:00", 5},  {"2000-13-45 99:99", 0},
            {"2000-13-45 99:99", 11}};
        for (const auto& [text, position] : kTimesteps) {
            HtsRun input = monthlyRun(2000, 1, 24);
            input.timesteps[position] = QString::fromLatin1(text);
            isRefused(calculate(12, input), kNoCompleteYear, openingLog(12, true));
        }
    }

    void formsOfMidnightMeanTheSame()
    {
        for (const QString& last : texts("2000-12-31 24:00|2001-1-1 0:00|2001-01-01 00:00")) {
            const QStringList timesteps = monthlyTimesteps(2000, 1, 11) + QStringList{last};
            const Outcome outcome = calculate(12, makeRun("month", timesteps));
            QCOMPARE(outcome.message, QString());
            QCOMPARE(outcome.map, QStringLiteral("1x12"));
            // Copied unchanged.
            QCOMPARE(outcome.run.timesteps, QStringList{last});
            QCOMPARE(outcome.run.start, utc(2001, 1, 1));
            QCOMPARE(outcome.log, successLog(12, false, {last}));
        }
    }

    void unitQuantityDoesNotMatter()
    {
        HtsRun input = monthlyRun(2000, 1, 27);
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
        HtsRun input = monthlyRun(2000, 1, 27);
        input.trace = 1;
        input.consecutive = 0;
        input.slotSet = QStringLiteral("input slots");
        input.ruleSet = QStringLiteral("input rules");
        input.idxSequential = 2;
        QCOMPARE(textOf(calculate(12, input, fullRun()).run),
                 QStringLiteral("1|7|2001-01-01T00:00:00.000Z|2002-01-01T00:00:00.000Z|year|1|2|0|"
                                "input slots|input rules|2|2000-12-31 24:00,2001-12-31 24:00"));
    }

    void failureLeavesRunUnchanged()
    {
        const QStringList invalid = monthlyTimesteps(2000, 1, 14) + texts("x");
        for (const HtsRun& input :
             {makeRun("year", monthlyTimesteps(2000, 1, 24)), monthlyRun(2000, 2, 20),
              makeRun("month", {}), makeRun("month", invalid)}) {
            const Outcome outcome = calculate(12, input, fullRun());
            QVERIFY(!outcome.message.isEmpty());
            QCOMPARE(textOf(outcome.run), textOf(fullRun()));
        }
    }

    void appendsToValueMap()
    {
        AnnualizeHts engine;
        QCOMPARE(engine.setEndMonth(12).message, QString());
        AnnualizeHts::ValueMap map{5, 5};
        HtsRun run;
        const HtsRun input = monthlyRun(2000, 1, 13);
        QCOMPARE(engine.calculateAnnualTimesteps(input, map, run).message, QString());
        QCOMPARE(engine.calculateAnnualTimesteps(input, map, run).message, QString());
        QCOMPARE(textOf(map), QStringLiteral("5x2 1x12 2x1 1x12 2x1"));
    }

    void timeZoneDoesNotMatter_data()
    {
        QTest::addColumn<QByteArray>("zone");
        // Only Denver needs a table of zones on the host.
        addRows<QByteArray>(
            {{"UTC", "UTC"},
             {"Denver", "America/Denver"},
             {"Denver by rule", "MST7MDT,M3.2.0,M11.1.0"},
             {"daylight-saving time starts with the water year", "AAA3BBB,J274/0,J90/0"},
             {"daylight-saving time starts on the water year's first noon",
              "AAA-9BBB,J274/12,J90/3"},
             {"daylight-saving time ends with the water year", "AAA3BBB,J90/0,J274/0"}});
    }
    void timeZoneDoesNotMatter()
    {
        QFETCH(QByteArray, zone);
        const TimeZone timeZone(zone);

        // From the water year's first hour on: a start that moves by an hour moves the years.
        const QStringList hours = hourlyTimesteps(QDate(2010, 10, 1), 1, 8760 + 8784 + 1);
        const Outcome whole = calculate(9, makeRun("hour", hours));
        QCOMPARE(whole.message, QString());
        QCOMPARE(whole.map, QStringLiteral("1x8760 2x8784 3x1"));
        QCOMPARE(
            textOf(whole.run),
            QStringLiteral("0|-1|2011-10-01T00:00:00.000Z|2012-10-01T00:00:00.000Z|year|1|2|-1|||"
                           "-1|2011-9-30 24:00,2012-9-30 24:00"));

        // A first timestep that ends at the end of the first day, and one an hour later.
        const Outcome atLimit = calculate(9, makeRun("hour", hours.mid(23)));
        QCOMPARE(atLimit.map, QStringLiteral("1x8737 2x8784 3x1"));
        const Outcome beyondLimit = calculate(9, makeRun("hour", hours.mid(24)));
        QCOMPARE(beyondLimit.map, QStringLiteral("0x8736 1x8784 2x1"));
    }
};

HTS_TEST(AnnualTimestepsTest, QCoreApplication)

#include "tst_annualtimesteps.moc"
