// The findings about the timesteps of a run. They are the first run of a file with one slot.

#include <QtTest>

#include "check/steplength.h"
#include "hts/datetimetext.h"
#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"

namespace {

struct Timing
{
    const char* unit;
    int quantity;
    QStringList steps;
    const char* start = nullptr; // null for the first timestep
};

// Timesteps every so many minutes, from `first` to `last`.
QStringList every(qint64 minutes, const char* first, const char* last)
{
    constexpr qint64 kSecondsPerMinute = 60;
    QStringList steps;
    const QDateTime end = textToDateTime(QString::fromLatin1(last));
    for (QDateTime step = textToDateTime(QString::fromLatin1(first)); step <= end;
         step = step.addSecs(minutes * kSecondsPerMinute))
        steps.append(dateTimeToText(step));
    return steps;
}

QStringList months(const char* first, int count)
{
    QStringList steps;
    const QDateTime start = textToDateTime(QString::fromLatin1(first));
    for (int i = 0; i < count; ++i)
        steps.append(dateTimeToText(start.addMonths(i)));
    return steps;
}

QByteArray fileOf(const Timing& timing)
{
    const QString start =
        timing.start == nullptr ? timing.steps.first() : QString::fromLatin1(timing.start);
    const QString text =
        QStringLiteral("number_of_runs:1\nEND_PACKAGE_PREAMBLE\nstart:%1\nend:%2\ntime_step_unit:%"
                       "3\nunit_quantity:%4\ntime_steps:%5\nEND_RUN_PREAMBLE\n")
            .arg(start, timing.steps.last(), QLatin1String(timing.unit))
            .arg(timing.quantity)
            .arg(timing.steps.size()) +
        timing.steps.join(QLatin1Char('\n')) +
        QStringLiteral("\nobject_type: R\nobject_name: L\nslot_name: F\nEND_SLOT_PREAMBLE\nunits: "
                       "cms\nscale: 1\n");
    return text.toUtf8() + QByteArray("1\n").repeated(timing.steps.size()) +
           "END_COLUMN\nEND_SLOT\nEND_RUN\n";
}

QStringList texts(std::initializer_list<const char*> steps)
{
    QStringList list;
    for (const char* step : steps)
        list.append(QString::fromLatin1(step));
    return list;
}

QStringList without(QStringList steps, int index, int count = 1)
{
    for (int i = 0; i < count; ++i)
        steps.removeAt(index);
    return steps;
}

} // namespace

class TimeCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsInTimesteps_data();
    void findsInTimesteps();
    void stepsBetween_data();
    void stepsBetween();
    void stepsOfYear_data();
    void stepsOfYear();
    void plansCompleteYears();
};

void TimeCheckTest::findsInTimesteps_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("endMonth");
    QTest::addColumn<QStringList>("findings");

    const auto row = [](const char* name, const Timing& timing, int endMonth,
                        const QStringList& findings) {
        QTest::newRow(name) << fileOf(timing) << endMonth << findings;
    };
    constexpr int kHour = 60, kDay = 1440, kWeek = 7 * kDay;
    const QStringList twoYears = months("2000-1-31 24:00", 24);
    const QStringList days = every(kDay, "2000-1-1 24:00", "2001-12-31 24:00");

    row("months", {"month", 1, twoYears}, 12, {});
    row("months of water years", {"month", 1, months("1999-10-31 24:00", 24)}, 9, {});
    row("months, partial years at both ends", {"month", 1, months("2000-3-31 24:00", 30)}, 12, {});
    row("quarters",
        {"month", 3,
         texts({"2000-3-31 24:00", "2000-6-30 24:00", "2000-9-30 24:00", "2000-12-31 24:00"})},
        12,
        {QStringLiteral(
            "12: no-complete-year: the timesteps contain no complete year; a conversion fails: "
            "\"Cannot create a complete year from the input HTS file\"")});
    row("days", {"day", 1, days}, 12, {});
    row("weeks", {"week", 1, every(kWeek, "2000-1-7 24:00", "2001-12-30 24:00")}, 12, {});
    row("six hours", {"hour", 6, every(6 * kHour, "2000-1-1 6:00", "2000-12-31 24:00")}, 12, {});
    row("minutes", {"minute", 30, every(30, "2000-1-1 0:30", "2000-12-31 24:00")}, 12, {});
    row("unit without a quantity", {"month", 0, twoYears}, 12, {});
    row("month missing in a complete year", {"month", 1, without(twoYears, 5)}, 12,
        {QStringLiteral("14: step-missing: 1 timestep is missing between 2000-5-31 24:00 and "
                        "2000-7-31 24:00; the year still counts as complete"),
         QStringLiteral("19: short-year: the year that ends 2000-12-31 24:00 counts as complete "
                        "with 11 of 12 timesteps")});
    row("three days missing", {"day", 1, without(days, 40, 3)}, 12,
        {QStringLiteral("49: step-missing: 3 timesteps are missing between 2000-2-9 24:00 and "
                        "2000-2-13 24:00; the year still counts as complete"),
         QStringLiteral("371: short-year: the year that ends 2000-12-31 24:00 counts as complete "
                        "with 363 of 366 timesteps")});
    row("leap day left out", {"day", 1, without(days, 59)}, 12,
        {QStringLiteral("68: step-missing: 1 timestep is missing between 2000-2-28 24:00 and "
                        "2000-3-1 24:00; the year still counts as complete"),
         QStringLiteral("373: short-year: the year that ends 2000-12-31 24:00 counts as complete "
                        "with 365 of 366 timesteps")});
    row("hours of a first day missing",
        {"hour", 1, every(kHour, "2000-1-1 24:00", "2000-12-31 24:00")}, 12,
        {QStringLiteral("8769: short-year: the year that ends 2000-12-31 24:00 counts as complete "
                        "with 8761 of 8784 timesteps")});
    row("start in an earlier year", {"month", 1, months("2000-7-31 24:00", 18), "1999-7-31 24:00"},
        12,
        {QStringLiteral(
            "3: early-start: start: lies in an earlier year than the first timestep, 2000-7-31 "
            "24:00, so that the first year counts as complete with 6 of 12 timesteps")});
    row("start of another day in the same year", {"month", 1, twoYears, "2000-1-1 0:00"}, 12,
        {QStringLiteral("3: start-differs: start: 1999-12-31 24:00 is not the first timestep, "
                        "2000-1-31 24:00")});
    row("unit in upper case", {"Month", 1, twoYears}, 12,
        {QStringLiteral("5: unknown-unit: time_step_unit: \"Month\" is not known and counts as "
                        "\"day\"; is \"month\" meant?")});
    row("unit in the plural", {"days", 1, days}, 12,
        {QStringLiteral(
            "5: unknown-unit: time_step_unit: \"days\" is not known and counts as \"day\"")});
    row("irregular", {"day", 1, texts({"2000-1-1 24:00", "2000-1-2 12:00"})}, 12,
        {QStringLiteral(
             "10: no-complete-year: the timesteps contain no complete year; a conversion fails: "
             "\"Cannot create a complete year from the input HTS file\""),
         QStringLiteral("10: step-irregular: the timestep 2000-1-2 12:00 does not follow 2000-1-1 "
                        "24:00 by 1 day")});
    const QString noYear = QStringLiteral(
        "; a conversion fails: \"Cannot create a complete year from the input HTS file\"");
    row("no start", {"month", 1, twoYears, ""}, 12,
        {QStringLiteral("3: bad-date: start: \"\" is not a date-time"),
         QStringLiteral("3: no-complete-year: the run has no valid \"start:\"") + noYear});
    QTest::newRow("no timesteps")
        << QByteArray("number_of_runs:1\nEND_PACKAGE_PREAMBLE\nstart:2000-1-31 "
                      "24:00\ntime_step_unit:month\ntime_steps:0\nEND_RUN_PREAMBLE\nEND_RUN\n")
        << 12
        << QStringList{QStringLiteral("6: no-complete-year: the run has no timesteps") + noYear};
    row("no unit", {"", 1, days}, 12,
        {QStringLiteral("5: unknown-unit: no \"time_step_unit:\"; the timesteps count as days")});
    row("no word for a unit", {"fortnight", 1, days}, 12,
        {QStringLiteral(
            "5: unknown-unit: time_step_unit: \"fortnight\" is not known and counts as \"day\"")});
    row("timestep twice", {"month", 1, twoYears.mid(0, 6) + twoYears.mid(5)}, 12,
        {QStringLiteral("15: step-repeated: the timestep 2000-6-30 24:00 occurs twice")});
    row("timesteps changed over",
        {"month", 1,
         twoYears.mid(0, 5) + QStringList{twoYears.at(6), twoYears.at(5)} + twoYears.mid(7)},
        12,
        {QStringLiteral("15: step-backwards: the timestep 2000-6-30 24:00 is earlier than the one "
                        "before it, 2000-7-31 24:00")});
    row("month missing before the first complete year",
        {"month", 1, without(months("2000-3-31 24:00", 30), 2)}, 12,
        {QStringLiteral("11: step-missing: 1 timestep is missing between 2000-4-30 24:00 and "
                        "2000-6-30 24:00")});
    row("month missing in a water year", {"month", 1, without(months("1999-10-31 24:00", 24), 3)},
        9,
        {QStringLiteral("12: step-missing: 1 timestep is missing between 1999-12-31 24:00 and "
                        "2000-2-29 24:00; the year still counts as complete"),
         QStringLiteral("19: short-year: the year that ends 2000-9-30 24:00 counts as complete "
                        "with 11 of 12 timesteps")});
    row("week missing", {"week", 1, without(every(kWeek, "2000-1-7 24:00", "2001-12-30 24:00"), 9)},
        12,
        {QStringLiteral("18: step-missing: 1 timestep is missing between 2000-3-3 24:00 and "
                        "2000-3-17 24:00; the year still counts as complete"),
         QStringLiteral("59: short-year: the year that ends 2000-12-29 24:00 counts as complete "
                        "with 51 of 52 timesteps")});
    row("start in an earlier water year",
        {"month", 1, months("2000-7-31 24:00", 15), "1998-7-31 24:00"}, 9,
        {QStringLiteral(
            "3: early-start: start: lies in an earlier year than the first timestep, 2000-7-31 "
            "24:00, so that the first year counts as complete with 3 of 12 timesteps")});
    row("start in an earlier water year, which is left out",
        {"month", 1, months("2000-7-31 24:00", 15), "1999-7-31 24:00"}, 9,
        {QStringLiteral("3: start-differs: start: 1999-7-31 24:00 is not the first timestep, "
                        "2000-7-31 24:00")});
    row("irregular, of a quantity of 0", {"day", 0, texts({"2000-1-1 24:00", "2000-1-2 12:00"})},
        12,
        {QStringLiteral("10: no-complete-year: the timesteps contain no complete year") + noYear,
         QStringLiteral("10: step-irregular: the timestep 2000-1-2 12:00 does not follow 2000-1-1 "
                        "24:00 by 1 day")});
    row("no such day", {"month", 1, texts({"2000-1-31 24:00", "2000-2-30 24:00"})}, 12,
        {QStringLiteral(
             "10: no-complete-year: \"2000-2-30 24:00\" is not a date-time; a conversion fails: "
             "\"Cannot create a complete year from the input HTS file\""),
         QStringLiteral("4: bad-date: end: \"2000-2-30 24:00\" is not a date-time")});
}

void TimeCheckTest::findsInTimesteps()
{
    QFETCH(QByteArray, text);
    QFETCH(int, endMonth);
    QFETCH(QStringList, findings);
    QStringList found = findingTexts(checkedText(text, {}, endMonth).findings);
    found.sort();
    findings.sort();
    QCOMPARE(found, findings);
}

void TimeCheckTest::stepsBetween_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<int>("quantity");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<qint64>("steps");
    QTest::newRow("month") << "month" << 1 << "2000-1-31 24:00"
                           << "2000-2-29 24:00" << qint64(1);
    QTest::newRow("last days of months") << "month" << 1 << "2001-1-31 6:00"
                                         << "2001-2-28 6:00" << qint64(1);
    QTest::newRow("same day of months") << "month" << 1 << "2001-1-15 0:00"
                                        << "2001-3-15 0:00" << qint64(2);
    QTest::newRow("other day") << "month" << 1 << "2001-1-15 0:00"
                               << "2001-2-16 0:00" << qint64(0);
    QTest::newRow("other hour") << "month" << 1 << "2001-1-31 6:00"
                                << "2001-2-28 7:00" << qint64(0);
    QTest::newRow("quarter") << "month" << 3 << "2000-3-31 24:00"
                             << "2000-6-30 24:00" << qint64(1);
    QTest::newRow("no quarter") << "month" << 3 << "2000-3-31 24:00"
                                << "2000-5-31 24:00" << qint64(0);
    QTest::newRow("over the year") << "month" << 1 << "2000-12-31 24:00"
                                   << "2001-1-31 24:00" << qint64(1);
    QTest::newRow("two weeks") << "week" << 1 << "2000-1-1 24:00"
                               << "2000-1-15 24:00" << qint64(2);
    QTest::newRow("half a week") << "week" << 1 << "2000-1-1 24:00"
                                 << "2000-1-4 24:00" << qint64(0);
    QTest::newRow("minute") << "minute" << 15 << "2000-1-1 0:00"
                            << "2000-1-1 0:45" << qint64(3);
    QTest::newRow("unknown unit") << "fortnight" << 1 << "2000-1-1 0:00"
                                  << "2003-1-1 0:45" << qint64(1);
}

void TimeCheckTest::stepsBetween()
{
    QFETCH(QString, unit);
    QFETCH(int, quantity);
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(qint64, steps);
    QCOMPARE(StepLength(unit, quantity).stepsBetween(textToDateTime(from), textToDateTime(to)),
             steps);
}

void TimeCheckTest::stepsOfYear_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<int>("quantity");
    QTest::addColumn<QString>("step");
    QTest::addColumn<qint64>("steps");
    const auto row = [](const char* unit, int quantity, const char* step, qint64 steps) {
        QTest::addRow("%d %s, %s", quantity, unit, step)
            << QString::fromLatin1(unit) << quantity << QString::fromLatin1(step) << steps;
    };
    row("month", 1, "2000-12-31 24:00", 12);
    row("month", 0, "2000-12-31 24:00", 12);
    row("month", 3, "2000-12-31 24:00", 4);
    row("month", 5, "2000-12-31 24:00", 2);
    row("month", 12, "2000-12-31 24:00", 1);
    row("month", 24, "2000-12-31 24:00", 1);
    row("year", 1, "2000-12-31 24:00", 0);
    row("fortnight", 1, "2000-12-31 24:00", 0);
    row("day", 1, "2000-12-31 24:00", 366);
    row("day", 1, "2000-1-1 0:01", 366);
    row("day", 2, "2000-12-31 24:00", 183);
    row("day", -1, "2000-12-31 24:00", 366);
    // In a leap year there may be 52 or 53 weeks.
    row("week", 1, "2000-1-1 24:00", 53);
    row("week", 1, "2000-1-2 24:00", 53);
    row("week", 1, "2000-1-3 24:00", 52);
    row("hour", 6, "2000-1-1 6:00", 1464);
    row("minute", 30, "2000-1-1 0:30", 17568);
}

void TimeCheckTest::stepsOfYear()
{
    QFETCH(QString, unit);
    QFETCH(int, quantity);
    QFETCH(QString, step);
    QFETCH(qint64, steps);
    QCOMPARE(StepLength(unit, quantity)
                 .stepsOfYear(textToDateTime(QStringLiteral("1999-12-31 24:00")),
                              textToDateTime(QStringLiteral("2000-12-31 24:00")),
                              textToDateTime(step)),
             steps);
}

void TimeCheckTest::plansCompleteYears()
{
    const YearPlan plan =
        checkedText(fileOf({"month", 1, months("2000-3-31 24:00", 42)}), {}, 12).years;
    QCOMPARE(plan.count, 2);
    QCOMPARE(plan.first, QStringLiteral("2001-12-31 24:00"));
    QCOMPARE(plan.last, QStringLiteral("2002-12-31 24:00"));
    QCOMPARE(plan.leftOutAtStart, qint64(10));
    QCOMPARE(plan.leftOutAtEnd, qint64(8));
}

HTS_TEST(TimeCheckTest, NoApplication)

#include "tst_timecheck.moc"
