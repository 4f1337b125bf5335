// The findings about the timesteps of a run, which are in timesteps.txt, and lengths of steps.

#include <QtTest>

#include "check/steplength.h"
#include "hts/datetimetext.h"
#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"

namespace {

using Settings = QHash<QString, QString>;

// "2000-1-31 24:00 .. 2000-12-31 24:00, 2001-3-31 24:00"
QStringList stepsOf(const QString& text, const QString& unit, int quantity)
{
    const StepLength length(unit, quantity);
    QStringList steps;
    for (const QString& part : text.split(QStringLiteral(", "), Qt::SkipEmptyParts)) {
        const QStringList ends = part.split(QStringLiteral(" .. "));
        steps.append(ends.first());
        if (ends.size() == 1)
            continue;
        const StepLength known = length.isKnown() ? length : StepLength(QStringLiteral("day"), 1);
        const bool is24 = ends.first().endsWith(QLatin1String("24:00")) ||
                          ends.last().endsWith(QLatin1String("24:00"));
        const QDateTime first = textToDateTime(ends.first());
        for (int i = 1; known.moved(first, i) <= textToDateTime(ends.last()); ++i) {
            const QDateTime step = known.moved(first, i);
            steps.append(is24 ? dateTimeToText(step)
                              : QLocale::c().toString(step, u"yyyy-M-d h:mm"));
        }
    }
    return steps;
}

QString slotOf(int number, int run, int valueCount, const char* type = "SeriesSlot")
{
    QString text = QStringLiteral("object_type: R\nobject_name: L%1\nslot_type: %2\nslot_name: F\n"
                                  "END_SLOT_PREAMBLE\nunits: cms\nscale: 1\n")
                       .arg(QString::number(number), QLatin1String(type));
    for (int i = 0; i < valueCount; ++i)
        text += QStringLiteral("%1.%2\n").arg(i % 90).arg(100 * run + 5 + number);
    return text + QStringLiteral("END_COLUMN\nEND_SLOT\n");
}

// The runs of the settings, with a slot, or as many as they say.
QByteArray fileOf(const Settings& settings, const QStringList& steps)
{
    const auto setting = [&settings](const char* name, const QString& usual) {
        return settings.value(QLatin1String(name), usual);
    };
    const auto number = [&setting](const char* name, int usual) {
        return setting(name, QString::number(usual)).toInt();
    };
    const QString announced = setting("announced", QString::number(steps.size()));
    QString text =
        QStringLiteral("number_of_runs:%1\nEND_PACKAGE_PREAMBLE\n").arg(number("runs", 1));
    for (int run = 0; run < number("runs", 1); ++run) {
        text += QStringLiteral("start:%1\nend:%2\ntime_step_unit:%3\nunit_quantity:%4\n")
                    .arg(setting("start", steps.value(0)),
                         setting("end", steps.value(steps.size() - 1)), setting("unit", {}),
                         setting("quantity", QStringLiteral("1")));
        if (!announced.isEmpty())
            text += QLatin1String("time_steps:") + announced + QLatin1Char('\n');
        text += QStringLiteral("END_RUN_PREAMBLE\n");
        for (const QString& step : steps)
            text += step + QLatin1Char('\n');
        for (int slot = 0; slot < number("scalars", 0); ++slot)
            text += slotOf(50 + slot, run, 1, "ScalarSlot");
        for (int slot = 0; slot < number("slots", 1); ++slot)
            text += slotOf(slot, run, number("values", steps.size()));
        text += QStringLiteral("END_RUN\n");
    }
    return text.toUtf8();
}

// "month; quantity=3; start=2000-1-31 24:00"
Settings settingsOf(const QString& line)
{
    Settings settings;
    const QString text = QLatin1String("unit=") + line;
    for (const QString& setting : text.split(QStringLiteral("; ")))
        settings.insert(setting.section(QLatin1Char('='), 0, 0),
                        setting.section(QLatin1Char('='), 1));
    return settings;
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
    for (const TextCase& row : textCases(QStringLiteral("timesteps.txt"))) {
        const Settings settings = settingsOf(row.lines.at(0));
        const QStringList steps = stepsOf(row.lines.at(1), settings.value(QStringLiteral("unit")),
                                          settings.value(QStringLiteral("quantity")).toInt());
        QTest::newRow(row.name)
            << fileOf(settings, steps)
            << settings.value(QStringLiteral("month"), QStringLiteral("12")).toInt()
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
    const QString month = QStringLiteral("month");
    const QStringList steps =
        stepsOf(QStringLiteral("2000-3-31 24:00 .. 2003-8-31 24:00"), month, 1);
    const YearPlan plan = checkedText(fileOf(settingsOf(month), steps)).years;
    QCOMPARE(plan.count, 2);
    QCOMPARE(plan.first, QStringLiteral("2001-12-31 24:00"));
    QCOMPARE(plan.last, QStringLiteral("2002-12-31 24:00"));
    QCOMPARE(plan.leftOutAtStart, qint64(10));
    QCOMPARE(plan.leftOutAtEnd, qint64(8));
}

HTS_TEST(TimeCheckTest, NoApplication)

#include "tst_timecheck.moc"
