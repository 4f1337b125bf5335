#include <charconv>
#include <cmath>
#include <limits>

#include <QRandomGenerator>
#include <QtTest>

#include "hts/shortestnumber.h"
#include "tests/hts/packagecompare.h"
#include "tests/support/testmain.h"

namespace {

QByteArray written(double value)
{
    char text[kShortestNumberRoom];
    return QByteArray(text, static_cast<int>(writeShortestNumber(text, value) - text));
}

QByteArray writtenByLibrary(double value)
{
    char text[kShortestNumberRoom];
    const char* end = std::to_chars(text, text + sizeof text, value).ptr;
    return QByteArray(text, static_cast<int>(end - text));
}

using MakeNumber = double (*)(QRandomGenerator& random);

const std::pair<const char*, MakeNumber> kKinds[] = {
    {"bit patterns", [](QRandomGenerator& random) { return doubleOf(random.generate64()); }},
    {"any decimals",
     [](QRandomGenerator& random) {
         const double size = std::pow(10.0, random.bounded(16) - 3);
         const double units = std::pow(10.0, random.bounded(15));
         return std::round((random.generateDouble() - 0.3) * size * units) / units;
     }},
    {"any fraction",
     [](QRandomGenerator& random) {
         const auto digits = static_cast<double>(random.generate64() >> random.bounded(11, 60));
         return std::ldexp(digits, -random.bounded(50));
     }},
    {"next to powers of two",
     [](QRandomGenerator& random) {
         const double power = std::ldexp(1.0, random.bounded(70) - 15);
         return std::nextafter(power, random.bounded(2) == 0 ? 0.0 : 1e30);
     }},
    {"next to whole numbers",
     [](QRandomGenerator& random) {
         const double whole = std::round(std::pow(10.0, random.generateDouble() * 13));
         return std::nextafter(whole, random.bounded(2) == 0 ? 0.0 : 1e30);
     }},
};

} // namespace

Q_DECLARE_METATYPE(MakeNumber)

class ShortestNumberTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesNumbers_data();
    void writesNumbers();
    void writesRandomNumbersLikeTheLibrary_data();
    void writesRandomNumbersLikeTheLibrary();
};

void ShortestNumberTest::writesNumbers_data()
{
    QTest::addColumn<double>("value");
    const std::pair<double, const char*> kCases[] = {
        {0.0, "0"},
        {-0.0, "-0"},
        {1.0, "1"},
        {-7.5, "-7.5"},
        {0.1, "0.1"},
        {0.001, "0.001"},
        {0.0001, "1e-04"},
        {0.00012, "0.00012"},
        {10000.0, "10000"},
        {100000.0, "1e+05"},
        {1200000.0, "1200000"},
        {12000000.0, "1.2e+07"},
        {123456789.0, "123456789"},
        // Up to twelve decimals, and one more.
        {999.999999999999, "999.999999999999"},
        {0.100000000001, "0.100000000001"},
        {1.0000000000001, "1.0000000000001"},
        // Where doubles get too far apart for twelve decimals.
        {4095.999999999999, "4095.999999999999"},
        {4096.000000000001, "4096.000000000001"},
        {6452.6402099213265, "6452.6402099213265"},
        {8191.999999999999, "8191.999999999999"},
        {8192.000000000002, "8192.000000000002"},
        {123456.12345678902, "123456.12345678902"},
        {9999999.9999999981, "9999999.999999998"},
        {12345678.000000002, "12345678.000000002"},
        // Half-way between two texts: the even one.
        {549755813888.03125, "549755813888.0312"},
        {549755813888.09375, "549755813888.0938"},
        {1099511627775.9999, "1099511627775.9999"},
        {1099511627776.0002, "1099511627776.0002"},
        {1e22, "1e+22"},
        {5e-324, "5e-324"},
        {-std::numeric_limits<double>::max(), "-1.7976931348623157e+308"},
    };
    QTest::addColumn<QByteArray>("expected");
    for (const auto& [value, expected] : kCases)
        QTest::addRow("%.17g", value) << value << QByteArray(expected);
}

void ShortestNumberTest::writesNumbers()
{
    QFETCH(double, value);
    QFETCH(QByteArray, expected);
    QCOMPARE(written(value), expected);
    QCOMPARE(writtenByLibrary(value), expected);
}

void ShortestNumberTest::writesRandomNumbersLikeTheLibrary_data()
{
    QTest::addColumn<MakeNumber>("make");
    for (const auto& [name, make] : kKinds)
        QTest::newRow(name) << make;
}

void ShortestNumberTest::writesRandomNumbersLikeTheLibrary()
{
    QFETCH(MakeNumber, make);
    constexpr int kCount = 100000;
    QRandomGenerator random(1);
    for (int i = 0; i < kCount; ++i) {
        const double value = make(random);
        if (std::isfinite(value) && written(value) != writtenByLibrary(value))
            QCOMPARE(written(value), writtenByLibrary(value));
    }
}

HTS_TEST(ShortestNumberTest, NoApplication)

#include "tst_shortestnumber.moc"
