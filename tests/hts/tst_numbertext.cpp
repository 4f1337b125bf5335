#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

#include <QBuffer>
#include <QLocale>
#include <QRandomGenerator>
#include <QTextStream>
#include <QtTest>

#include "hts/linereader.h"
#include "hts/linetext.h"
#include "hts/numbertext.h"
#include "tests/hts/packagecompare.h"
#include "tests/hts/randomhts.h"
#include "tests/support/testmain.h"

namespace {

// A reader reads its first line in another way than those that are already in its block.
const QByteArray kLineBefore = "8.5\n";

std::string_view view(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QByteArray written(double value)
{
    char text[kMaxNumberLength];
    const char* end = writeNumber(text, value);
    return QByteArray(text, static_cast<int>(end - text));
}

// What the toolkit writes for `values`, each with a line end.
QByteArray writtenByStream(const std::vector<double>& values)
{
    QByteArray text;
    QTextStream stream(&text);
    stream.setRealNumberNotation(QTextStream::FixedNotation);
    stream.setRealNumberPrecision(12);
    for (const double value : values) {
        if (std::isfinite(value))
            stream << value << '\n';
        else
            stream << "NaN\n";
    }
    stream.flush();
    return text;
}

} // namespace

Q_DECLARE_METATYPE(std::vector<double>)

class NumberTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stripsWhiteSpaceAtBothEnds_data()
    {
        addColumns<QByteArray, QByteArray>("bytes", "expected");
        const QByteArray nuls("\0a\0", 3);
        addRows<QByteArray, QByteArray>(
            {{"empty", "", ""},
             {"white space only", " \t\r\n\v\f ", ""},
             {"every kind of white space", " \t\r\n\v\fa b\f\v\n\r\t ", "a b"},
             {"inner white space stays", "a \t b", "a \t b"},
             {"NUL is none", nuls, nuls},
             {"no-break space is none", "\xc2\xa0", "\xc2\xa0"},
             {"next line is none", "\x85", "\x85"},
             {"other control bytes are none", "\x08\x0e\x1f", "\x08\x0e\x1f"}});
    }
    void stripsWhiteSpaceAtBothEnds()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, expected);
        const std::string_view result = stripped(view(bytes));
        QCOMPARE(QByteArray(result.data(), static_cast<int>(result.size())), expected);
    }

    void decodesLines_data()
    {
        addColumns<QByteArray, QString>("bytes", "expected");
        const QString marked = QStringLiteral("a") + QChar(QChar::ByteOrderMark);
        addRows<QByteArray, QString>(
            {{"empty", "", QString()},
             {"letters", "Lake A", QStringLiteral("Lake A")},
             {"two bytes", "\xc3\x84", QString(QChar(0xc4))},
             {"outside the basic plane", "\xf0\x9f\x8c\x8a", QStringLiteral("\U0001f30a")},
             {"bad bytes", "a\xff\xfe-", QStringLiteral("a\ufffd\ufffd-")},
             {"byte order mark at the start", "\xef\xbb\xbfname:", QStringLiteral("name:")},
             {"byte order mark inside", "a\xef\xbb\xbf", marked},
             {"ends at NUL", QByteArray("ab\0cd", 5), QStringLiteral("ab")},
             {"NUL only", QByteArray("\0", 1), QString()}});
    }
    void decodesLines()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, expected);
        QCOMPARE(toText(textBytes(view(bytes))), expected);
    }

    void readsNumbers_data()
    {
        addColumns<QByteArray, double>("text", "expected");
        const auto addRow = [](const QByteArray& text, double expected) {
            QTest::addRow("'%s'", text.constData()) << text << expected;
            QTest::addRow("' %s\\t\\r'", text.constData()) << ' ' + text + "\t\r" << expected;
        };
        const std::pair<const char*, double> kNumbers[] = {
            {"0", 0.0},
            {"1", 1.0},
            {"-1.5", -1.5},
            {"1.", 1.0},
            {".5", 0.5},
            {"-.5", -0.5},
            {"1.e5", 1e5},
            {"1E+5", 1e5},
            {"+1", 1.0},
            {"nan", kNaN},
            {"NaN", kNaN},
            {"NAN", kNaN},
            {"nAn", kNaN},
            {"inf", kInfinity},
            {"INF", kInfinity},
            {"+inf", kInfinity},
            {"-inf", -kInfinity},
            {"1e400", kInfinity},
            {"-1e400", -kInfinity},
            {"1.8e308", kInfinity},
            {"1e-400", 0.0},
            {"4.9e-324", 5e-324},
            {"1e-310", 1e-310},
            {"-0", -0.0},
            {"-0.0", -0.0},
            {"\xc2\xa0.5", 0.5},
            {"1\xc2\xa0", 1.0},
            {"\xef\xbb\xbf.5", 0.5},
            {"\xe2\x88\x92.5", -0.5},
            {"0.1", 0.1},
            {"00012", 12.0},
            {"9007199254740993", 9007199254740992.0},
            {"1.7976931348623157e308", 1.7976931348623157e308},
            {"1e00000000000000000005", 1e5},
            {"1e99999999999999999999", kInfinity},
            {"1e-99999999999999999999", 0.0},
            {"1e2147483648", kInfinity},
            {"-9e-2147483649", 0.0}, // without its sign
            {"-2e-324", 0.0},
            {"12345678901234567890123456789012345678901234567890", 1.2345678901234567e49},
            {"\xe3\x80\x80.5\xe2\x80\xa8", 0.5},
            {"\v.5\f", 0.5}};
        for (const auto& [text, expected] : kNumbers)
            addRow(text, expected);
        const QByteArray kNone = "|.|-|+|1e|1e+|e5|+-1|--1|1 "
                                 "2|1,234|1_0|0x10|1d5|1f|abc|END_COLUMN|1.#QNAN|NA|7d0|\"7\"|"
                                 "\xef\xbc\x97|1,007|7 cms|"
                                 "+nan|-nan|nan(1)|infinity|\xd9\xa1|0x1p3|INFINITY|nanx|"
                                 "1 000|1\xc2\xa0"
                                 "000|1'000|\xe2\x80\x8b"
                                 "7|\xe1\xa0\x8e"
                                 "7|\x1c"
                                 "7|\xf0\x9d\x9f\x8e";
        for (const QByteArray& text : kNone.split('|'))
            addRow(text, 0.0);
        addRow("\xc2\x85"
               "7\xe2\x80\x83",
               7.0); // white space to Qt 5
        addRow(QByteArray(1000, '9'), kInfinity);
        addRow("0." + QByteArray(1000, '0') + "1e1001", 1.0);
        QTest::newRow("after NUL") << QByteArray("12\0.5", 5) << 12.0;
    }
    void readsNumbers()
    {
        QFETCH(QByteArray, text);
        QFETCH(double, expected);
        QCOMPARE(bitsOf(lineToNumber(view(text))), bitsOf(expected));
        // The table shows what the toolkit does.
        QCOMPARE(bitsOf(QString::fromUtf8(text.trimmed().constData()).trimmed().toDouble()),
                 bitsOf(expected));
    }

    void readsNumbersInAnyLocale()
    {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German));
        const double point = lineToNumber("1.5");
        const double plus = lineToNumber("+1.5"); // read by the toolkit
        const double comma = lineToNumber("1,5");
        const QByteArray text = written(1234.5);
        QLocale::setDefault(before);
        QCOMPARE(point, 1.5);
        QCOMPARE(plus, 1.5);
        QCOMPARE(comma, 0.0);
        QCOMPARE(text, QByteArray("1234.500000000000"));
    }

    void readsRandomTextsLikeTheToolkit()
    {
        constexpr int kLines = 100000;
        for (quint32 seed = 1; seed <= 4; ++seed) {
            RandomHts random(seed);
            std::vector<double> expected;
            QByteArray lines;
            for (int line = 0; line < kLines; ++line) {
                const QByteArray text = random.numberText().replace('\n', ' ');
                expected.push_back(QString::fromUtf8(text.trimmed().constData()).toDouble());
                // One by one: "lines += a + b" makes room for exactly that, over and over.
                lines.append(text).append(line % 2 == 0 ? "\n" : "\r\n");
                if (bitsOf(lineToNumber(view(text))) != bitsOf(expected.back()))
                    QFAIL(QByteArray("'" + text + '\'').constData());
            }
            QBuffer device(&lines);
            QVERIFY(device.open(QIODevice::ReadOnly));
            std::vector<double> numbers(kLines);
            LineReader(device).readNumbers(numbers);
            QVERIFY(std::memcmp(numbers.data(), expected.data(), kLines * sizeof(double)) == 0);
            QVERIFY(device.atEnd());
        }
    }

    void readsNumbersOfTwelveDecimals_data()
    {
        QTest::addColumn<QByteArray>("text");
        for (const char* text :
             {"0.000000000000", "-0.000000000000", "0.000000000001", "0.100000000000",
              "9.999999999999", "10.000000000000", "99.999999999999", "999.999999999999",
              "-123.456789012345", "0000.000000000000", "0009.500000000000", "1234.567890123456",
              // about 2^53 units of the last decimal, the last one that is exact
              "9007.199254740991", "9007.199254740992", "9007.199254740993", "9007.199254740994",
              "9999.999999999999", "10000.000000000000", "12345.678901234567",
              // one decimal more or less, no digit before the point or after it
              "1.23456789012", "1.2345678901234", ".123456789012", "-.123456789012", "123.",
              // what follows ends the number, or doesn't
              "1.234567890123e2", "1.234567890123E2", "1.234567890123.", "1.234567890123 ",
              "1.234567890123x", "+1.234567890123", "--1.234567890123"})
            QTest::newRow(text) << QByteArray(text);
    }
    void readsNumbersOfTwelveDecimals()
    {
        QFETCH(QByteArray, text);
        const double expected = QString::fromLatin1(text).trimmed().toDouble();
        // Bytes after the line, from none to more than a number has: they are not part of it.
        for (const char* lineEnd : {"\n", "\r\n", " \n"}) {
            for (int following = 0; following < 32; ++following) {
                QByteArray lines = kLineBefore + text + lineEnd + QByteArray(following, '7');
                QBuffer device(&lines);
                QVERIFY(device.open(QIODevice::ReadOnly));
                std::vector<double> numbers(2);
                LineReader(device).readNumbers(numbers);
                QCOMPARE(bitsOf(numbers[1]), bitsOf(expected));
                QCOMPARE(device.readAll(), QByteArray(following, '7'));
            }
        }
    }

    void readsAnyByteAnywhereInANumber_data()
    {
        QTest::addColumn<QByteArray>("text");
        for (const char* text : {"1.234567890123", "-1.234567890123", "12.345678901234",
                                 "123.456789012345", "-1234.567890123456"})
            QTest::newRow(text) << QByteArray(text);
    }
    void readsAnyByteAnywhereInANumber()
    {
        QFETCH(QByteArray, text);
        const QByteArray whole = text + "\n";
        for (int position = 0; position < whole.size(); ++position) {
            for (int byte = 0; byte < 256; ++byte) {
                QByteArray lines = whole;
                lines[position] = static_cast<char>(byte);
                lines.prepend(kLineBefore).append("8.5\n").append(32, '7');
                QBuffer device(&lines);
                QVERIFY(device.open(QIODevice::ReadOnly));
                std::vector<double> expected;
                for (int line = 0; line < 3; ++line)
                    expected.push_back(lineToNumber(view(device.readLine())));
                device.seek(0);
                std::vector<double> numbers(3);
                LineReader(device).readNumbers(numbers);
                const bool same = std::equal(
                    numbers.begin(), numbers.end(), expected.begin(),
                    [](double left, double right) { return bitsOf(left) == bitsOf(right); });
                QVERIFY2(same, lines.left(24).toPercentEncoding().constData());
            }
        }
    }

    void readsPlainNumberUpToItsEnd_data()
    {
        addColumns<QByteArray, int, double>("text", "length", "expected");
        addRows<QByteArray, int, double>({{"whole text", "12.25", 5, 12.25},
                                          {"up to the line end", "12.25\n3", 5, 12.25},
                                          {"up to a letter", "12abc", 2, 12.0},
                                          {"no digit before the point", ".5\n", 2, 0.5},
                                          {"minus", "-3\n", 2, -3.0}});
        for (const char* text :
             {"", "-", "+1", " 1", "nan", "-nan", "inf", "-inf", "infinity", "1e400", "."})
            QTest::addRow("'%s' is none", text) << QByteArray(text) << 0 << -7.0;
    }
    void readsPlainNumberUpToItsEnd()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, length);
        QFETCH(double, expected);
        double value = -7.0;
        const char* first = text.constData();
        QCOMPARE(static_cast<int>(readPlainNumber(first, first + text.size(), value) - first),
                 length);
        QCOMPARE(value, expected);
    }

    void writesNumbers_data()
    {
        addColumns<double, QByteArray>("value", "expected");
        const std::pair<double, QByteArray> kCases[] = {
            {0.0, "0.000000000000"},
            {-0.0, "0.000000000000"},
            {1.5, "1.500000000000"},
            {2.5, "2.500000000000"},
            {-0.25, "-0.250000000000"},
            {-0.000001, "-0.000001000000"},
            {1500.0, "1500.000000000000"},
            {0.1, "0.100000000000"},
            {-1e-13, "-0.000000000000"},
            {-6e-13, "-0.000000000001"},
            {5e-324, "0.000000000000"},
            {-5e-324, "-0.000000000000"},
            {1e22, "10000000000000000000000.000000000000"},
            {999999999999.9999, "999999999999.999877929688"},
            {kNaN, "NaN"},
            {-kNaN, "NaN"},
            {kInfinity, "NaN"},
            {-kInfinity, "NaN"},
            // Decimals that round to a whole.
            {0.9999999999999, "1.000000000000"},
            {-2.9999999999999, "-3.000000000000"},
            // Exact halves of the last digit are rounded away from zero.
            {1.0 / 8192, "0.000122070313"},
            {-1.0 / 8192, "-0.000122070313"},
            {3.0 / 8192, "0.000366210938"},
            {1.0 + 1.0 / 8192, "1.000122070313"},
            {5000.0 + 1.0 / 8192, "5000.000122070313"},
            {-5000.0 - 8191.0 / 8192, "-5000.999877929688"},
            {549755813888.0 + 1.0 / 8192, "549755813888.000122070313"},
            {9007199254740991.0 / 8192, "1099511627775.999877929688"},
        };
        for (const auto& [value, expected] : kCases)
            QTest::addRow("%.17g as %s", value, expected.constData()) << value << expected;
        QTest::newRow("1e300")
            << 1e300
            << QByteArray("100000000000000005250476025520442024870446858110815915491585411551180245"
                          "79889081"
                          "957863713750804478640437044438328838781769425232353604305756447921847867"
                          "06982848"
                          "387200926575803737830233794788090059368953234970799945081119038967640880"
                          "07465274"
                          "2780142494579258788820056842838115669472196386865459400540160"
                          ".000000000000");
        QTest::newRow("greatest")
            << std::numeric_limits<double>::max()
            << QByteArray("179769313486231570814527423731704356798070567525844996598917476803157260"
                          "78002853"
                          "876058955863276687817154045895351438246423432132688946418276846754670353"
                          "75169860"
                          "499105765512820762454900903893289440758685084551339423045832369032229481"
                          "65808559"
                          "332123348274797826204144723168738177180919299881250404026184124858368"
                          ".000000000000");
    }
    void writesNumbers()
    {
        QFETCH(double, value);
        QFETCH(QByteArray, expected);
        QCOMPARE(written(value), expected);
        QCOMPARE(bitsOf(asWritten(value)), bitsOf(lineToNumber(view(expected))));
        // The table shows what the toolkit does.
        QCOMPARE(writtenByStream({value}), QByteArray(expected + '\n'));
    }

    void writesRandomNumbersLikeTheToolkit_data()
    {
        // About 400,000 numbers.
        using MakeNumber = double (*)(QRandomGenerator & random);
        const std::tuple<const char*, int, MakeNumber> kKinds[] = {
            {"bit patterns", 50000,
             [](QRandomGenerator& random) { return doubleOf(random.generate64()); }},
            {"measured values", 100000,
             [](QRandomGenerator& random) { return (random.generateDouble() - 0.3) * 2000.0; }},
            {"large values", 30000,
             [](QRandomGenerator& random) { return (random.generateDouble() - 0.5) * 1e15; }},
            {"twelve decimals", 50000,
             [](QRandomGenerator& random) {
                 return static_cast<double>(random.bounded(1000000)) / 1e12 + random.bounded(4);
             }},
            {"tiny values", 40000,
             [](QRandomGenerator& random) { return (random.generateDouble() - 0.5) * 1e-11; }},
            {"small multiples of 1/8192", 40000,
             [](QRandomGenerator& random) {
                 return (random.bounded(1 << 20) - (1 << 19)) / 8192.0;
             }},
            {"multiples of 1/8192", 40000,
             [](QRandomGenerator& random) {
                 const auto count =
                     static_cast<qint64>(random.generate64() >> random.bounded(11, 50));
                 return static_cast<double>(random.bounded(2) == 0 ? count : -count) / 8192.0;
             }},
            {"next to multiples of 1/8192", 30000,
             [](QRandomGenerator& random) {
                 return std::nextafter(random.bounded(1 << 30) / 8192.0, random.bounded(2) * 1e9);
             }},
            {"denormals", 20000,
             [](QRandomGenerator& random) { return doubleOf(random.generate64() >> 12); }},
        };
        QTest::addColumn<std::vector<double>>("values");
        for (const auto& [name, count, makeNumber] : kKinds) {
            QRandomGenerator random(20240229);
            std::vector<double> values(static_cast<std::size_t>(count));
            for (double& value : values)
                value = makeNumber(random);
            QTest::newRow(name) << values;
        }
    }
    void writesRandomNumbersLikeTheToolkit()
    {
        QFETCH(std::vector<double>, values);
        const QByteArray expected = writtenByStream(values);
        int position = 0;
        for (const double value : values) {
            const int lineEnd = expected.indexOf('\n', position);
            const auto line =
                QByteArray::fromRawData(expected.constData() + position, lineEnd - position);
            if (written(value) != line)
                QCOMPARE(written(value), QByteArray(line));
            position = lineEnd + 1;
        }
        QCOMPARE(position, expected.size());
    }

    void longestNumberFits()
    {
        const QByteArray text = written(-std::numeric_limits<double>::max());
        QCOMPARE(text.size(), static_cast<int>(kMaxNumberLength));
    }
};

HTS_TEST(NumberTextTest, NoApplication)
#include "tst_numbertext.moc"
