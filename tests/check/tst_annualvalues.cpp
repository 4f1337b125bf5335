// What is said about annual values, by method and by which values of a year are missing.

#include <optional>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "annualize/aggmethods.h"
#include "check/yearcounts.h"
#include "exchange/csvwriter.h"
#include "hts/datetimetext.h"
#include "hts/numbertext.h"
#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"

namespace {

constexpr qint64 kDay = 24 * 60; // minutes

struct Series
{
    const char* unit = "month";
    int quantity = 1;
    QDateTime first; // timestep
    QByteArrayList values;
    QByteArray units = "m";
    QList<int> leftOut = {}; // timesteps
};

QDateTime instant(const char* text)
{
    return textToDateTime(QString::fromLatin1(text));
}

QByteArrayList repeated(const QByteArray& value, int count)
{
    return QByteArray(value + ' ').repeated(count).trimmed().split(' ');
}

// `count` values of 1, and NaN at the indexes.
QByteArrayList lacking(int count, const QList<int>& missing)
{
    QByteArrayList values = repeated("1", count);
    for (const int index : missing)
        values[index] = "NaN";
    return values;
}

QList<int> range(int first, int count)
{
    QList<int> numbers;
    for (int i = 0; i < count; ++i)
        numbers.append(first + i);
    return numbers;
}

QByteArray runOf(const Series& series)
{
    QByteArrayList steps;
    QByteArrayList values;
    for (int i = 0; i < series.values.size(); ++i) {
        if (series.leftOut.contains(i))
            continue;
        const int number = i * series.quantity;
        const QByteArray unit = series.unit;
        const qint64 minutes = unit == "week" ? 7 * kDay : unit == "day" ? kDay : 60;
        const QDateTime step = unit == "month" ? series.first.addMonths(number)
                                               : series.first.addSecs(number * minutes * 60);
        steps.append(dateTimeToText(step).toLatin1());
        values.append(series.values.at(i));
    }
    return "start:" + steps.first() + "\nend:" + steps.last() + "\ntime_step_unit:" + series.unit +
           "\nunit_quantity:" + QByteArray::number(series.quantity) +
           "\ntime_steps:" + QByteArray::number(steps.size()) + "\nEND_RUN_PREAMBLE\n" +
           steps.join('\n') +
           "\nobject_type: R\nobject_name: L\nslot_name: F\nEND_SLOT_PREAMBLE\nunits: " +
           series.units + "\nscale: 1\n" + values.join('\n') + "\nEND_COLUMN\nEND_SLOT\nEND_RUN\n";
}

QByteArray fileOf(const QList<Series>& runs)
{
    QByteArray text =
        "number_of_runs:" + QByteArray::number(runs.size()) + "\nEND_PACKAGE_PREAMBLE\n";
    for (const Series& series : runs)
        text += runOf(series);
    return text;
}

// From the end of January 2000 on.
Series months(const QByteArrayList& values)
{
    return {"month", 1, instant("2000-1-31 24:00"), values};
}

Series days(const QByteArrayList& values, const QList<int>& leftOut = {})
{
    return {"day", 1, instant("2001-1-1 24:00"), values, "m", leftOut};
}

const char* const kSituations[] = {"all", "one in the middle missing", "first missing",
                                   "last missing", "none"};

QByteArrayList valuesIn(int situation)
{
    const QByteArrayList all = QByteArray("1 2 3 4 5 6 7 8 9 10 11 12").split(' ');
    QByteArrayList values = all;
    const QList<int> missing[] = {{}, {6}, {0}, {11}, range(0, 12)};
    for (const int index : missing[situation])
        values[index] = "NaN";
    return values;
}

} // namespace

class AnnualValuesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void judgesEachMethod_data();
    void judgesEachMethod();
    void saysWhichYears_data();
    void saysWhichYears();
    void knowsUnitsPerSecond_data();
    void knowsUnitsPerSecond();
    void readsMaxMissing_data();
    void readsMaxMissing();
    void yearsThatLackMore_data();
    void yearsThatLackMore();
    void saysOnceThatARuleIsNotForWeeks();

private:
    QString control(const QByteArray& method) const;
    QStringList findings(const QByteArray& text, const QByteArray& method,
                         const QString& maxMissing = {}, CsvWriter* counts = nullptr) const;

    QTemporaryDir m_folder;
};

// The path of a control file; without a method there is none.
QString AnnualValuesTest::control(const QByteArray& method) const
{
    if (method.isEmpty())
        return {};
    QFile control(m_folder.filePath(QStringLiteral("c.txt")));
    if (!control.open(QIODevice::WriteOnly) || control.write("*.*: " + method) < 0)
        qFatal("cannot write %s", qPrintable(control.fileName()));
    return control.fileName();
}

// Without their lines, and without those about missing values as such.
QStringList AnnualValuesTest::findings(const QByteArray& text, const QByteArray& method,
                                       const QString& maxMissing, CsvWriter* counts) const
{
    CheckOptions options;
    options.maxMissing = MaxMissing::fromText(maxMissing).value_or(MaxMissing());
    std::optional<YearCounts> rows;
    if (counts != nullptr)
        options.observer = &rows.emplace(*counts, QString());
    QStringList texts;
    for (const QString& finding : findingTexts(checkedText(text, control(method), options))) {
        if (!finding.contains(QLatin1String(": missing-values: ")))
            texts.append(finding.section(QLatin1String(": "), 1));
    }
    return texts;
}

void AnnualValuesTest::judgesEachMethod_data()
{
    QTest::addColumn<int>("situation");
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("result"); // empty for NaN
    QTest::addColumn<QByteArray>("code");   // empty for none

    const struct
    {
        const char* method;
        const char* results[5];
        const char* codes[5];
    } rows[] = {
        {"Sum",
         {"78", "", "", "", ""},
         {"", "nan-result", "nan-result", "nan-result", "nan-result"}},
        {"SumNaN",
         {"78", "71", "77", "66", "0"},
         {"", "sum-of-part", "sum-of-part", "sum-of-part", "nothing-is-zero"}},
        {"Average",
         {"6.5", "", "", "", ""},
         {"", "nan-result", "nan-result", "nan-result", "nan-result"}},
        {"AverageNaN",
         {"6.5", "5.916666666667", "6.416666666667", "5.5", "0"},
         {"", "average-of-part", "average-of-part", "average-of-part", "nothing-is-zero"}},
        {"Max",
         {"12", "", "", "", ""},
         {"", "nan-result", "nan-result", "nan-result", "nan-result"}},
        {"MaxNaN",
         {"12", "12", "12", "11", ""},
         {"", "extreme-of-part", "extreme-of-part", "extreme-of-part", "nan-result"}},
        {"Min",
         {"1", "", "", "", ""},
         {"", "nan-result", "nan-result", "nan-result", "nan-result"}},
        {"MinNaN",
         {"1", "1", "2", "1", ""},
         {"", "extreme-of-part", "extreme-of-part", "extreme-of-part", "nan-result"}},
        {"End",
         {"12", "", "", "", ""},
         {"", "nan-result", "nan-result", "nan-result", "nan-result"}},
        {"EndNaN", {"12", "12", "12", "", ""}, {"", "", "", "end-missing", "nan-result"}},
        {"Begin",
         {"1", "", "", "", ""},
         {"", "nan-result", "nan-result", "nan-result", "nan-result"}},
        {"BeginNaN", {"1", "1", "", "1", ""}, {"", "", "begin-missing", "", "nan-result"}},
    };
    int supported = 0;
    for (const AggMethod& method : aggMethods())
        supported += method.isSupported() ? 1 : 0;
    QCOMPARE(int(std::size(rows)), supported);
    for (const auto& row : rows) {
        for (int i = 0; i < 5; ++i)
            QTest::newRow(qPrintable(QStringLiteral("%1, %2").arg(QLatin1String(row.method),
                                                                  QLatin1String(kSituations[i]))))
                << i << QByteArray(row.method) << QByteArray(row.results[i])
                << QByteArray(row.codes[i]);
    }
}

// The result is that of the counts, which is the number that the conversion writes.
void AnnualValuesTest::judgesEachMethod()
{
    QFETCH(int, situation);
    QFETCH(QByteArray, method);
    QFETCH(QByteArray, result);
    QFETCH(QByteArray, code);
    const QByteArray text = fileOf({months(valuesIn(situation))});
    QBuffer target;
    QVERIFY(target.open(QIODevice::WriteOnly));
    {
        CsvWriter writer(target);
        QCOMPARE(
            findings(text, method, {}, &writer).join(QString()).section(QLatin1Char(':'), 0, 0),
            QString::fromLatin1(code));
    }
    QCOMPARE(target.data().split(',').value(13), result);
    const QByteArray annual = convertedText(text, control(method), 12).result;
    const QByteArray line = annual.left(annual.indexOf("\nEND_COLUMN")).split('\n').last();
    QCOMPARE(line, result.isEmpty()
                       ? QByteArray("NaN")
                       : QByteArray::number(lineToNumber(result.constData()), 'f', 12));
}

void AnnualValuesTest::saysWhichYears_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QStringList>("findings");

    const auto row = [](const char* name, const QList<Series>& runs, const char* method,
                        const QStringList& findings) {
        QTest::newRow(name) << fileOf(runs) << QByteArray(method) << findings;
    };
    row("no control file", {months(lacking(12, {1}))}, "", {});
    row("the year that lacks most", {months(lacking(36, {1, 13, 14, 25}))}, "AverageNaN",
        {QStringLiteral(
            "average-of-part: AverageNaN of L.F divides by all timesteps of 2000, 2001, "
            "2002; with 10 of 12 values the result of 2001 is 0.83 of their mean")});
    row("more years", {months(lacking(60, {1, 13, 25, 37, 49}))}, "SumNaN",
        {QStringLiteral("sum-of-part: SumNaN of L.F is the sum of a part of the values of 2000, "
                        "2001, 2002 and 2 more; in 2000 there are 11 of 12 values")});
    row("years of two kinds", {months(lacking(36, range(10, 15)))}, "EndNaN",
        {QStringLiteral("nan-result: EndNaN of L.F is NaN for 2001; there are 0 of 12 values"),
         QStringLiteral("end-missing: EndNaN of L.F is NaN for 2000: the last value is missing; "
                        "there are 10 of 12 values")});
    row("a share near 1", {days(lacking(365, {1}))}, "AverageNaN",
        {QStringLiteral("average-of-part: AverageNaN of L.F divides by all timesteps of 2001; with "
                        "364 of 365 values the result is 0.997 of their mean")});
    row("a sum out of range", {months(repeated("1e308", 12))}, "Sum",
        {QStringLiteral("nan-result: Sum of L.F is NaN for 2000; there are 12 of 12 values")});
    row("of several runs, the first that has it",
        {months(lacking(12, {})), months(lacking(12, {3})), months(lacking(12, {5}))}, "MaxNaN",
        {QStringLiteral("extreme-of-part: run 2: MaxNaN of L.F knows a part of the values of 2000; "
                        "there are 11 of 12 values")});
    QTest::newRow("values that are other lines")
        << fileOf({months(lacking(12, {3, 5}))}).replace("NaN\n1\nNaN\n", "NaN\nNaN\n")
        << QByteArray("AverageNaN")
        << QStringList{
               QStringLiteral("too-few-values: \"END_COLUMN\" instead of value 12 of 12 of L.F"),
               QStringLiteral("slot-preamble: the file ends where a slot or \"END_RUN\" is "
                              "expected; a conversion fails: \"Cannot read slot preamble\"")};
}

void AnnualValuesTest::saysWhichYears()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, method);
    QFETCH(QStringList, findings);
    QCOMPARE(this->findings(text, method), findings);
}

void AnnualValuesTest::knowsUnitsPerSecond_data()
{
    QTest::addColumn<QByteArray>("units");
    QTest::addColumn<bool>("isRate");
    for (const char* units : {"cms",
                              "CFS",
                              "1000 cfs",
                              "kcfs",
                              "cumecs",
                              "m3/s",
                              "m\u00b3/s",
                              "ft3/sec",
                              "L/s",
                              "lps",
                              "m3 s-1",
                              "m3 s^-1",
                              "m\u00b3 s\u207b\u00b9",
                              "cubic feet per second",
                              "m3/second",
                              "cumec",
                              "cusec",
                              "1000 cusecs",
                              "m3 per sec",
                              "m3 s**-1"})
        QTest::newRow(units) << QByteArray(units) << true;
    for (const char* units : {"m3", "acre-feet", "mm/day", "m3/month", "cms-day", "cfs days",
                              "1000 m3", "s", "ms", "mgd"})
        QTest::newRow(units) << QByteArray(units) << false;
}

void AnnualValuesTest::knowsUnitsPerSecond()
{
    QFETCH(QByteArray, units);
    QFETCH(bool, isRate);
    Series series = months(lacking(12, {}));
    series.units = units;
    Series second = series;
    second.values[0] = "2";
    const QByteArray text = fileOf({series, second});
    const QString finding =
        QStringLiteral("sum-of-rate: SumNaN of L.F adds values in \"%1\", which are per second: "
                       "the result is no volume")
            .arg(QString::fromUtf8(units));
    QCOMPARE(findings(text, "SumNaN"), isRate ? QStringList{finding} : QStringList());
    QCOMPARE(findings(text, "Average"), QStringList());
    QCOMPARE(findings(text, {}), QStringList());
}

void AnnualValuesTest::readsMaxMissing_data()
{
    QTest::addColumn<bool>("isRight");
    for (const char* text : {"0", "30", "5%", "0%", "100%", "2.5%", "wmo"})
        QTest::newRow(text) << true;
    for (const char* text : {"", "-1", "+1", "1.5", "%", ".%", "100.1%", "1e1%", "5 %", "WMO",
                             "inf", "\u0663", "-5%", "nan%"})
        QTest::newRow(text) << false;
    QTest::newRow(QByteArray(400, '9')) << false;
}

void AnnualValuesTest::readsMaxMissing()
{
    QFETCH(bool, isRight);
    const QString text = QString::fromUtf8(QTest::currentDataTag());
    const auto maxMissing = MaxMissing::fromText(text);
    QCOMPARE(maxMissing.has_value(), isRight);
    QCOMPARE(maxMissing.value_or(MaxMissing()).text(), isRight ? text : QString());
}

void AnnualValuesTest::yearsThatLackMore_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("maxMissing");
    QTest::addColumn<QByteArray>("found"); // the end of the finding; empty for none

    const auto row = [](const char* name, const Series& series, const char* maxMissing,
                        const char* found) {
        QTest::newRow(name) << fileOf({series}) << QString::fromLatin1(maxMissing)
                            << QByteArray(found);
    };
    const char* const kLacks30 = "lacks more than 29 of the values of 2001; there are 335 of 365 "
                                 "values";
    row("as many as may be", days(lacking(365, range(50, 30))), "30", "");
    row("one more", days(lacking(365, range(50, 30))), "29", kLacks30);
    row("without their timesteps", days(lacking(365, {}), range(50, 30)), "29", kLacks30);
    row("all, as may be", days(lacking(365, range(0, 365))), "100%", "");
    row("per cent", months(lacking(24, {1, 13, 14})), "8.4%",
        "lacks more than 8.4% of the values of 2001; there are 10 of 12 values");
    row("not even one month", months(lacking(24, {13})), "wmo",
        "lacks a month, by the rule wmo, in 2001; there are 11 of 12 values");
    row("all months", months(lacking(12, {})), "wmo", "");

    const char* const kLacks5 = "lacks a month, by the rule wmo, in 2001; there are 360 of 365 "
                                "values";
    const char* const kLacks11 = "lacks a month, by the rule wmo, in 2001; there are 354 of 365 "
                                 "values";
    const QList<int> ten = {0, 2, 4, 6, 8, 10, 12, 14, 16, 18};
    row("4 days in a row", days(lacking(365, range(10, 4))), "wmo", "");
    row("5 days in a row", days(lacking(365, range(10, 5))), "wmo", kLacks5);
    row("5 days in a row, and one later", days(lacking(365, range(10, 5) + QList<int>{100})), "wmo",
        "lacks a month, by the rule wmo, in 2001; there are 359 of 365 values");
    row("8 days in a row, of two months", days(lacking(365, range(27, 8))), "wmo", "");
    row("10 days", days(lacking(365, ten)), "wmo", "");
    row("10 days, and one of the next month", days(lacking(365, ten + QList<int>{31})), "wmo", "");
    row("11 days", days(lacking(365, ten + QList<int>{30})), "wmo", kLacks11);
    row("the last 5 days", days(lacking(365, range(360, 5))), "wmo", kLacks5);
    row("5 days without their timesteps", days(lacking(365, {}), range(90, 5)), "wmo", kLacks5);
    row("4 days without their timesteps", days(lacking(365, {}), range(90, 4)), "wmo", "");
}

void AnnualValuesTest::yearsThatLackMore()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, maxMissing);
    QFETCH(QByteArray, found);
    const QStringList wanted =
        found.isEmpty()
            ? QStringList()
            : QStringList{QLatin1String("too-many-missing: L.F ") + QString::fromLatin1(found)};
    // Whether there are methods or not.
    for (const char* method : {"", "End", "AverageNaN"}) {
        const QStringList all = findings(text, method, maxMissing);
        QCOMPARE(all.filter(QStringLiteral("too-many-missing")), wanted);
    }
}

void AnnualValuesTest::saysOnceThatARuleIsNotForWeeks()
{
    const auto weeksOf = [](const QByteArray& value) {
        return Series{"week", 1, instant("2001-1-6 24:00"), repeated(value, 52)};
    };
    QCOMPARE(findings(fileOf({weeksOf("1"), weeksOf("2")}), "Sum", QStringLiteral("wmo")),
             QStringList{QStringLiteral("wmo-steps: the rule wmo is for days and months, not for "
                                        "steps of 1 \"week\": no year is judged by it")});
}

HTS_TEST(AnnualValuesTest, NoApplication)

#include "tst_annualvalues.moc"
