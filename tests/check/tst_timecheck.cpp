// The findings about the timesteps of a run, which are in timesteps.txt, and lengths of steps.

#include <QtTest>

#include "check/steplength.h"
#include "hts/datetimetext.h"
#include "tests/check/checkedtext.h"
#include "tests/check/stepfile.h"
#include "tests/support/testmain.h"

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
    for (const TextCase& row : textCases(QStringLiteral("timesteps.txt"))) {
        const QString month =
            row.lines.at(0).section(QStringLiteral("month="), 1).section(QLatin1Char(';'), 0, 0);
        QTest::newRow(row.name) << stepFile(row.lines.at(0), row.lines.at(1))
                                << (month.isEmpty() ? 12 : month.toInt())
                                << QStringList(row.lines.mid(2));
    }
}

void TimeCheckTest::findsInTimesteps()
{
    QFETCH(QByteArray, text);
    QFETCH(int, endMonth);
    QFETCH(QStringList, findings);
    QCOMPARE(findingTexts(checkedText(text, {}, endMonth).findings), findings);
}

void TimeCheckTest::stepsBetween_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<int>("quantity");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<qint64>("steps");
    const struct
    {
        const char* name;
        const char* unit;
        int quantity;
        const char* from;
        const char* to;
        qint64 steps;
    } rows[] = {
        {"month", "month", 1, "2000-1-31 24:00", "2000-2-29 24:00", 1},
        {"last days of months", "month", 1, "2001-1-31 6:00", "2001-2-28 6:00", 1},
        {"same day of months", "month", 1, "2001-1-15 0:00", "2001-3-15 0:00", 2},
        {"other day", "month", 1, "2001-1-15 0:00", "2001-2-16 0:00", 0},
        {"other hour", "month", 1, "2001-1-31 6:00", "2001-2-28 7:00", 0},
        {"quarter", "month", 3, "2000-3-31 24:00", "2000-6-30 24:00", 1},
        {"no quarter", "month", 3, "2000-3-31 24:00", "2000-5-31 24:00", 0},
        {"over the year", "month", 1, "2000-12-31 24:00", "2001-1-31 24:00", 1},
        {"two weeks", "week", 1, "2000-1-1 24:00", "2000-1-15 24:00", 2},
        {"half a week", "week", 1, "2000-1-1 24:00", "2000-1-4 24:00", 0},
        {"minute", "minute", 15, "2000-1-1 0:00", "2000-1-1 0:45", 3},
        {"unknown unit", "fortnight", 1, "2000-1-1 0:00", "2003-1-1 0:45", 1},
    };
    for (const auto& row : rows)
        QTest::newRow(row.name) << row.unit << row.quantity << row.from << row.to << row.steps;
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
    const struct
    {
        const char* unit;
        int quantity;
        const char* step;
        qint64 steps;
    } rows[] = {
        {"month", 1, "2000-12-31 24:00", 12},
        {"month", 0, "2000-12-31 24:00", 12},
        {"month", 3, "2000-12-31 24:00", 4},
        {"month", 5, "2000-12-31 24:00", 2},
        {"month", 12, "2000-12-31 24:00", 1},
        {"month", 24, "2000-12-31 24:00", 1},
        {"year", 1, "2000-12-31 24:00", 0},
        {"fortnight", 1, "2000-12-31 24:00", 0},
        {"day", 1, "2000-12-31 24:00", 366},
        {"day", 1, "2000-1-1 0:01", 366},
        {"day", 2, "2000-12-31 24:00", 183},
        {"day", -1, "2000-12-31 24:00", 366},
        // In a leap year there may be 52 or 53 weeks.
        {"week", 1, "2000-1-1 24:00", 53},
        {"week", 1, "2000-1-2 24:00", 53},
        {"week", 1, "2000-1-3 24:00", 52},
        {"hour", 6, "2000-1-1 6:00", 1464},
        {"minute", 30, "2000-1-1 0:30", 17568},
    };
    for (const auto& [unit, quantity, step, steps] : rows)
        QTest::addRow("%d %s, %s", quantity, unit, step) << unit << quantity << step << steps;
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
    const QByteArray text =
        stepFile(QStringLiteral("month"), QStringLiteral("2000-3-31 24:00 .. 2003-8-31 24:00"));
    const YearPlan plan = checkedText(text).years;
    QCOMPARE(plan.count, 2);
    QCOMPARE(plan.first, QStringLiteral("2001-12-31 24:00"));
    QCOMPARE(plan.last, QStringLiteral("2002-12-31 24:00"));
    QCOMPARE(plan.leftOutAtStart, qint64(10));
    QCOMPARE(plan.leftOutAtEnd, qint64(8));
}

HTS_TEST(TimeCheckTest, NoApplication)

#include "tst_timecheck.moc"
