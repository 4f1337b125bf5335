// What is found about the values of one slot.

#include <algorithm>
#include <limits>

#include <QtTest>

#include "check/topic.h"
#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kMaxFloat = double(std::numeric_limits<float>::max());

QString sentinel(int line, const char* number, int count)
{
    return QStringLiteral("%1: sentinel: %2 occurs %3 times among the values of Lake.Flow and "
                          "counts as a number; does it mark missing values?")
        .arg(line)
        .arg(QLatin1String(number))
        .arg(count);
}

// What is found in the values of a slot with these value lines. The first is on line 10, as far as
// findings tell. Each has a blank before it, which keeps the first from being the method line.
QStringList findingsIn(const QByteArrayList& lines)
{
    QByteArray text =
        "number_of_runs:1\nEND_PACKAGE_PREAMBLE\ntime_steps:" + QByteArray::number(lines.size()) +
        "\nEND_RUN_PREAMBLE\n" + QByteArray("2000-1-1 24:00\n").repeated(lines.size()) +
        "object_type: Gauge\nobject_name: Lake\nslot_name: Flow\n"
        "END_SLOT_PREAMBLE\nunits: cms\nscale: 1\n";
    const qint64 shift = text.count('\n') + 1 - 10;
    for (const QByteArray& line : lines)
        text += ' ' + line + '\n';
    QStringList texts;
    for (const Finding& finding :
         checkedText(text + "END_COLUMN\nEND_SLOT\nEND_RUN\n").findings.sorted()) {
        const auto& kinds = valueTopic().kinds;
        if (std::find(kinds.begin(), kinds.end(), finding.kind) != kinds.end())
            texts.append(QStringLiteral("%1: %2: %3")
                             .arg(QString::number(finding.line - shift),
                                  QString::fromLatin1(finding.code()), finding.text));
    }
    return texts;
}

} // namespace

class ValueCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsInNumbers_data();
    void findsInNumbers();
    void findsInLines_data();
    void findsInLines();
};

void ValueCheckTest::findsInNumbers_data()
{
    QTest::addColumn<QVector<double>>("values");
    QTest::addColumn<QStringList>("findings");
    const auto row = [](const char* name, const QVector<double>& values,
                        const QStringList& findings) { QTest::newRow(name) << values << findings; };
    row("none", {}, {});
    row("plain numbers", {1, 1, 0, 0, -1, -1, 100, 100}, {});
    // Without its sign 99 is no sentinel.
    row("99", {99, 99}, {});
    row("-99", {-99, -99}, {sentinel(10, "-99", 2)});
    row("999", {999, 999}, {sentinel(10, "999", 2)});
    row("-9999", {-9999, -9999}, {sentinel(10, "-9999", 2)});
    row("99999", {99999, 99999}, {sentinel(10, "99999", 2)});
    row("-999999", {-999999, -999999}, {sentinel(10, "-999999", 2)});
    row("9999999", {9999999, 9999999}, {sentinel(10, "9999999", 2)});
    row("-32768", {-32768, -32768}, {sentinel(10, "-32768", 2)});
    row("largest float", {kMaxFloat, kMaxFloat}, {sentinel(10, "3.402823e+38", 2)});
    row("near to sentinels",
        {998, 998, 1000, 1000, 32767, 32767, -999.5, -999.5, -999.00001, -999.00001}, {});
    row("once", {1, -999, 2}, {});
    row("with other signs", {-999, 999}, {});
    row("further down", {1, -999, 2, -999, -999}, {sentinel(11, "-999", 3)});
    row("the first that is there twice", {-9999, -999, -999, -99, -99}, {sentinel(11, "-999", 2)});
    row("the first of two kinds", {-99, -999, -999, -99}, {sentinel(10, "-99", 2)});
    row("missing", {kNan, 1, kNan, 2},
        {QStringLiteral("10: missing-values: 2 of 4 values of Lake.Flow are missing (50.0 %)")});
    row("all missing", {kNan, kNan},
        {QStringLiteral("10: missing-values: 2 of 2 values of Lake.Flow are missing (100.0 %)")});
    row("missing and a sentinel", {-999, kNan, -999},
        {QStringLiteral("10: missing-values: 1 of 3 values of Lake.Flow are missing (33.3 %)"),
         sentinel(10, "-999", 2)});
}

void ValueCheckTest::findsInNumbers()
{
    QFETCH(QVector<double>, values);
    QFETCH(QStringList, findings);
    QByteArrayList lines;
    for (const double value : values)
        lines.append(QByteArray::number(value, 'g', 17));
    QCOMPARE(findingsIn(lines), findings);
}

void ValueCheckTest::findsInLines_data()
{
    QTest::addColumn<QByteArrayList>("lines");
    QTest::addColumn<QStringList>("findings");
    const auto row = [](const char* name, const QByteArrayList& lines,
                        const QStringList& findings) { QTest::newRow(name) << lines << findings; };
    row("NaN", {"NaN", "nan", "NAN", "nAn"},
        {QStringLiteral("10: missing-values: 4 of 4 values of Lake.Flow are missing (100.0 %)")});
    row("nearly NaN", {"NaM"},
        {QStringLiteral("10: text-value: \"NaM\" is not a number and counts as 0")});
    row("longer than NaN", {"NaNN"},
        {QStringLiteral("10: text-value: \"NaNN\" is not a number and counts as 0")});
    row("begins like NaN", {"NbN", "MaN"},
        {QStringLiteral("10: text-value: \"NbN\" is not a number and counts as 0"),
         QStringLiteral("11: text-value: \"MaN\" is not a number and counts as 0")});
    row("infinite", {"inf", "-1e999"},
        {QStringLiteral("10: infinite-value: \"inf\" is infinite and counts as missing"),
         QStringLiteral("11: infinite-value: \"-1e999\" is infinite and counts as missing")});
    row("infinite and missing", {"inf", "NaN", "1"},
        {QStringLiteral("10: infinite-value: \"inf\" is infinite and counts as missing"),
         QStringLiteral("10: missing-values: 1 of 3 values of Lake.Flow are missing (33.3 %)")});
    row("too small for a double", {"1e-999", "-1e-400"}, {});
    row("end line", {"1", "END_COLUMN", "END_SLOT"},
        {QStringLiteral(
            "11: too-few-values: \"END_COLUMN\" instead of value 2 of 3 of Lake.Flow")});
    row("key of the next slot", {"object_type: Reach", "x"},
        {QStringLiteral(
            "10: too-few-values: \"object_type: Reach\" instead of value 1 of 2 of Lake.Flow")});
    row("next run", {"END_RUN_PREAMBLE"},
        {QStringLiteral(
            "10: too-few-values: \"END_RUN_PREAMBLE\" instead of value 1 of 1 of Lake.Flow")});
    row("next package", {"END_PACKAGE_PREAMBLE"},
        {QStringLiteral(
            "10: too-few-values: \"END_PACKAGE_PREAMBLE\" instead of value 1 of 1 of Lake.Flow")});
    row("method line", {"method: Sum", "1"},
        {QStringLiteral(
            "10: method-line: \"method: Sum\" is read as a value: nothing may come before it")});
    row("method line after empty lines", {"", "", "method: Sum"},
        {QStringLiteral("10: blank-value: an empty line among the values of Lake.Flow counts as 0"),
         QStringLiteral("11: blank-value: an empty line among the values of Lake.Flow counts as 0"),
         QStringLiteral(
             "12: method-line: \"method: Sum\" is read as a value: nothing may come before it")});
    row("method line after a value", {"1", "method: Sum"},
        {QStringLiteral(
            "11: too-few-values: \"method: Sum\" instead of value 2 of 2 of Lake.Flow")});
    row("two method lines", {"method: Sum", "method: Max"},
        {QStringLiteral(
             "10: method-line: \"method: Sum\" is read as a value: nothing may come before it"),
         QStringLiteral(
             "11: method-line: \"method: Max\" is read as a value: nothing may come before it")});
}

void ValueCheckTest::findsInLines()
{
    QFETCH(QByteArrayList, lines);
    QFETCH(QStringList, findings);
    QCOMPARE(findingsIn(lines), findings);
}

HTS_TEST(ValueCheckTest, NoApplication)

#include "tst_valuecheck.moc"
