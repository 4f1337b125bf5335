// What is found about the values of one slot.

#include <algorithm>
#include <limits>

#include <QBuffer>
#include <QtTest>

#include "check/topic.h"
#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kMaxFloat = double(std::numeric_limits<float>::max());

QString sentinel(int line, const char* number, int count)
{
    return QStringLiteral("%1: sentinel: %2 occurs %3 among the values of Lake.Flow and "
                          "counts as a number; does it mark missing values?")
        .arg(QString::number(line), QLatin1String(number),
             count == 1 ? QStringLiteral("once") : QStringLiteral("%1 times").arg(count));
}

QString farSentinel(int line, const char* number, const char* times, const char* range)
{
    return QStringLiteral("%1: far-sentinel: %2 occurs %3 among the values of Lake.Flow and counts "
                          "as a number; all others are from %4")
        .arg(QString::number(line), QLatin1String(number), QLatin1String(times),
             QLatin1String(range));
}

QByteArray slotText(const QByteArray& name, const QByteArrayList& lines)
{
    QByteArray text = "object_type: Gauge\nobject_name: Lake\nslot_name: " + name +
                      "\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n";
    for (const QByteArray& line : lines)
        text += ' ' + line + '\n';
    return text + "END_COLUMN\nEND_SLOT\n";
}

// What is found in the values of a slot with these value lines. The first is on line 10, as far as
// findings tell. Each has a blank before it, which keeps the first from being the method line.
// `next` are as many values of a second slot, if not empty.
QStringList findingsIn(const QByteArrayList& lines, const std::vector<double>& sentinels = {},
                       const QByteArrayList& next = {})
{
    QByteArray text =
        "number_of_runs:1\nEND_PACKAGE_PREAMBLE\ntime_steps:" + QByteArray::number(lines.size()) +
        "\nEND_RUN_PREAMBLE\n" + QByteArray("2000-1-1 24:00\n").repeated(lines.size());
    const qint64 shift = text.count('\n') + 7 - 10;
    text += slotText("Flow", lines);
    if (!next.isEmpty())
        text += slotText("Next", next);
    text += "END_RUN\n";
    QStringList texts;
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    CheckOptions options;
    options.sentinels = sentinels;
    for (const Finding& finding : checkFile(device, options).findings.sorted()) {
        const auto& kinds = valueTopic().kinds;
        const bool isNulByte = finding.kind == findFindingKind(QStringLiteral("nul-byte"));
        if (isNulByte || std::find(kinds.begin(), kinds.end(), finding.kind) != kinds.end())
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
    void findsSentinelsAsPrinted_data();
    void findsSentinelsAsPrinted();
    void findsSentinelsAtAnyPlace();
    void takesOtherSentinels();
    void findsInLines_data();
    void findsInLines();
    void countsEachSlotForItself();
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
    row("once", {1, -999, 2}, {farSentinel(11, "-999", "once", "1 to 2")});
    row("with other signs", {-999, 999}, {});
    row("further down", {1, -999, 2, -999, -999}, {farSentinel(11, "-999", "3 times", "1 to 2")});
    row("those that are there twice", {-9999, -999, -999, -99, -99},
        {sentinel(11, "-999", 2), sentinel(13, "-99", 2)});
    row("two kinds", {-99, -999, -999, -99}, {sentinel(10, "-99", 2), sentinel(11, "-999", 2)});
    row("once between others", {950, 998, 999, 1001, 1050}, {});
    row("twice between others", {-1200, -999, -999, 300}, {sentinel(11, "-999", 2)});
    row("as often as a value near to it", {950, 999, 999, 990, 990, 1050}, {});
    row("more often than a value near to it", {950, 999, 999, 999, 1008, 1008, 989, 989, 989, 1050},
        {sentinel(11, "999", 3)});
    row("once beyond the others", {900, 950, 999, 980}, {sentinel(12, "999", 1)});
    row("elevation of 9999", {9990.5, 9999, 10001.25}, {});
    row("on and off", {0, -99, 0, -99}, {sentinel(11, "-99", 2)});
    row("constant but for it", {5, 5, 999, 999}, {sentinel(12, "999", 2)});
    row("constant but for a negative", {5, 5, -9.99}, {farSentinel(12, "-9.99", "once", "5 to 5")});
    row("negative beside 0", {0, 5, -9.99}, {farSentinel(12, "-9.99", "once", "0 to 5")});
    row("flood", {0, 100, 250, 999}, {sentinel(13, "999", 1)});
    row("larger than three widths", {0, 100, 249, 999},
        {farSentinel(13, "999", "once", "0 to 249")});
    row("larger than one width, twice", {0, 499, 999, 999},
        {farSentinel(12, "999", "2 times", "0 to 499")});
    row("a width away, twice", {0, 499.5, 999, 999}, {sentinel(12, "999", 2)});
    row("frost in Fahrenheit", {-20, 100, -99.9}, {sentinel(12, "-99.9", 1)});
    row("beside missing values", {kNan, 1, 2, -99.9},
        {QStringLiteral("10: missing-values: 1 of 4 values of Lake.Flow are missing (25.0 %)"),
         farSentinel(13, "-99.9", "once", "1 to 2")});
    row("missing", {kNan, 1, kNan, 2},
        {QStringLiteral("10: missing-values: 2 of 4 values of Lake.Flow are missing (50.0 %)")});
    row("all missing", {kNan, kNan},
        {QStringLiteral("10: missing-values: 2 of 2 values of Lake.Flow are missing (100.0 %)")});
    row("missing and a sentinel", {-999, kNan, -999},
        {QStringLiteral("10: missing-values: 1 of 3 values of Lake.Flow are missing (33.3 %)"),
         sentinel(10, "-999", 2)});
}

void ValueCheckTest::findsSentinelsAsPrinted_data()
{
    QTest::addColumn<QByteArray>("printed");
    QTest::addColumn<QByteArray>("number"); // empty: none
    for (const char* number :
         {"-99", "-99.9", "-99.99", "-999.9", "-999.99", "-9.99", "-901", "-9998", "-32767",
          "-2147483648", "1e+20", "9.96921e+36", "-9999", "999999", "3.402823e+38"})
        QTest::newRow(number) << QByteArray(number) << QByteArray(number);
    const std::pair<const char*, const char*> others[] = {
        {"-99.90", "-99.9"},
        {"-99.900000000000", "-99.9"},
        {"-9.99e1", "-99.9"},
        {"-99.90000152587891", "-99.9"},
        {"-99.900001525879", "-99.9"},
        {"-99.900002", "-99.9"},
        {"-999.9000244140625", "-999.9"},
        {"-9.9899998", "-9.99"},
        {"1.00000002004087734e20", "1e+20"},
        {"100000000000000000000.000000000000", "1e+20"},
        {"9.9692099683868690e+36", "9.96921e+36"},
        {"3.4028234663852886e38", "3.402823e+38"},
        {"3.4028235e38", "3.402823e+38"},
        {"3.40282e38", "3.40282e+38"},
        {"+999", "999"},
        {"-99.91", ""},
        {"-99.90001", ""},
        {"99.9", ""},
        {"9.99", ""},
        {"32767", ""},
        {"10000000", ""},
        {"1e19", ""},
    };
    for (const auto& [printed, number] : others)
        QTest::newRow(printed) << QByteArray(printed) << QByteArray(number);
}

void ValueCheckTest::findsSentinelsAsPrinted()
{
    QFETCH(QByteArray, printed);
    QFETCH(QByteArray, number);
    const QStringList expected{sentinel(10, number.constData(), 2)};
    QCOMPARE(findingsIn({printed, printed}), number.isEmpty() ? QStringList() : expected);
}

void ValueCheckTest::findsSentinelsAtAnyPlace()
{
    for (int size = 2; size < 12; ++size) {
        for (int place = 0; place < size; ++place) {
            QByteArrayList lines(QVector<QByteArray>(size, "5").toList());
            lines[place] = "-999";
            QCOMPARE(findingsIn(lines),
                     QStringList{farSentinel(10 + place, "-999", "once", "5 to 5")});
            lines[place] = "9999";
            QCOMPARE(findingsIn(lines), QStringList{sentinel(10 + place, "9999", 1)});
        }
    }
}

void ValueCheckTest::takesOtherSentinels()
{
    const QByteArrayList lines = {"-500", "-77.7", "-9", "-99.9", "600"};
    QCOMPARE(findingsIn(lines), QStringList());
    QCOMPARE(findingsIn(lines, {-77.7, -99.9, 0, 1e300}),
             (QStringList{sentinel(11, "-77.7", 1), sentinel(13, "-99.9", 1)}));
    QCOMPARE(findingsIn({"5", "-77.69999695", "6"}, {-77.7}),
             QStringList{farSentinel(11, "-77.7", "once", "5 to 6")});
    QCOMPARE(
        findingsIn({"0", "x"}, {0}),
        (QStringList{sentinel(10, "0", 1),
                     QStringLiteral("11: text-value: \"x\" is not a number and counts as 0")}));
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
    row("NUL byte in a number",
        {QByteArray("12345\0"
                    "678",
                    9),
         QByteArray("NaN\0", 4), "1"},
        {QStringLiteral("10: nul-byte: \"12345\" ends at a NUL byte; the rest of the line is lost"),
         QStringLiteral("10: missing-values: 1 of 3 values of Lake.Flow are missing (33.3 %)"),
         QStringLiteral("11: nul-byte: \"NaN\" ends at a NUL byte; the rest of the line is lost")});
    row("NUL byte in no number",
        {QByteArray("x\0", 2), QByteArray("\0"
                                          "6",
                                          2)},
        {QStringLiteral("10: text-value: \"x\" is not a number and counts as 0"),
         QStringLiteral("11: text-value: \"\" is not a number and counts as 0")});
    row("sentinel among other faults", {"", "1000", "999", "NA", "inf", "1001"},
        {QStringLiteral("10: blank-value: an empty line among the values of Lake.Flow counts as 0"),
         sentinel(12, "999", 1),
         QStringLiteral("13: text-value: \"NA\" is not a number and counts as 0; it may be a "
                        "missing value, which is written NaN"),
         QStringLiteral("14: infinite-value: \"inf\" is infinite and counts as missing")});
    row("sentinel before a lost line", {"5", "-999", "END_COLUMN", "-999", "-1"},
        {farSentinel(11, "-999", "once", "5 to 5"),
         QStringLiteral(
             "12: too-few-values: \"END_COLUMN\" instead of value 3 of 5 of Lake.Flow")});
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

void ValueCheckTest::countsEachSlotForItself()
{
    QCOMPARE(findingsIn({"inf", "1"}, {}, {"NaN", "2"}),
             (QStringList{
                 QStringLiteral("10: infinite-value: \"inf\" is infinite and counts as missing"),
                 QStringLiteral(
                     "20: missing-values: 1 of 2 values of Lake.Next are missing (50.0 %)")}));
}

HTS_TEST(ValueCheckTest, NoApplication)

#include "tst_valuecheck.moc"
