// Numbers of every size and form are read as std::from_chars reads them, to the last bit: most of
// them by integer arithmetic, which rounds by itself. HTS_NUMBER_CASES sets how many are tried.

#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include <QtTest>

#include "hts/numbertext.h"
#include "tests/support/testmain.h"

namespace {

__extension__ typedef unsigned __int128 Uint128;

constexpr quint64 kUnits = 1000000000000; // of the twelfth decimal in 1

std::string withTwelveDecimals(quint64 whole, quint64 units)
{
    const std::string decimals = std::to_string(units);
    return std::to_string(whole) + '.' + std::string(12 - decimals.size(), '0') + decimals;
}

class Numbers
{
public:
    explicit Numbers(unsigned seed) : m_engine(seed) {}

    quint64 below(quint64 end) { return m_engine() % end; }
    // From 1 to 10^9, all orders of magnitude alike.
    double ofAnySize()
    {
        return std::pow(10.0, 9.0 * static_cast<double>(below(1U << 30)) / (1U << 30));
    }

    std::string uniform() { return withTwelveDecimals(below(100000000), below(kUnits)); }
    std::string small() { return withTwelveDecimals(below(11000), below(kUnits)); }
    // A neighbour of the number half-way between two doubles.
    std::string nearHalf()
    {
        const double number = ofAnySize();
        int exponent = 0;
        const double mantissa = std::frexp(number, &exponent);
        const auto half = (static_cast<quint64>(std::ldexp(mantissa, 53)) << 1) + 1;
        const int shift = 54 - exponent;
        const auto units =
            static_cast<quint64>(Uint128(half & ((quint64(1) << shift) - 1)) * kUnits >> shift);
        return withTwelveDecimals(half >> shift, (units + below(4) + kUnits - 1) % kUnits);
    }
    // As near to such a half as a number with twelve decimals can be: with b bits of a double after
    // the point, units * 2^(b + 1) and an odd multiple of 10^12 differ by 2^12, since
    // units * 2^(b - 11) is 1 or -1 modulo 5^12.
    std::string nearestToHalf()
    {
        constexpr quint64 kPower = kUnits >> 12; // 5^12
        const int wholeBits = 14 + static_cast<int>(below(13));
        quint64 inverse = 1; // of 2^(b - 11)
        for (int i = 0; i < 53 - wholeBits - 11; ++i)
            inverse = (inverse % 2 == 0 ? inverse : inverse + kPower) / 2;
        const quint64 units = below(2) == 0 ? inverse : kPower - inverse;
        const quint64 whole =
            (quint64(1) << (wholeBits - 1)) + below(quint64(1) << (wholeBits - 1));
        return withTwelveDecimals(whole, units + below(4096) * kPower);
    }
    std::string nearPowerOfTwo()
    {
        const quint64 power = quint64(1) << below(27);
        return below(2) == 0 ? withTwelveDecimals(power, below(3000))
                             : withTwelveDecimals(power - 1, kUnits - 1 - below(3000));
    }
    std::string ofOtherForm()
    {
        static const char* const kFormats[] = {"%.0f", "%.1f", "%.2f", "%.3f", "%.6f", "%.7f",
                                               "%.8f", "%.9f", "%g",   "%e",   "%.2e", "%.17g"};
        char text[64];
        const double scale = std::pow(10.0, static_cast<double>(below(60)) - 30.0);
        const bool isScaled = below(4) == 0;
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg)
        std::snprintf(text, sizeof text, kFormats[below(std::size(kFormats))],
                      ofAnySize() * (isScaled ? scale : 1.0));
        return text;
    }

private:
    std::mt19937_64 m_engine;
};

} // namespace

class NumberSizesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatTheStandardLibraryReads_data();
    void readsWhatTheStandardLibraryReads();
};

void NumberSizesTest::readsWhatTheStandardLibraryReads_data()
{
    QTest::addColumn<int>("kind");
    int kind = 0;
    for (const char* name :
         {"uniform", "small", "near half", "nearest to half", "near a power of two", "other forms"})
        QTest::newRow(name) << kind++;
}

void NumberSizesTest::readsWhatTheStandardLibraryReads()
{
    static constexpr std::string (Numbers::*kKinds[])() = {
        &Numbers::uniform,       &Numbers::small,          &Numbers::nearHalf,
        &Numbers::nearestToHalf, &Numbers::nearPowerOfTwo, &Numbers::ofOtherForm};
    QFETCH(int, kind);
    bool isSet = false;
    const int set = qEnvironmentVariableIntValue("HTS_NUMBER_CASES", &isSet);
    const int cases = isSet ? set : 100000;
    Numbers numbers(static_cast<unsigned>(kind));
    for (int i = 0; i < cases; ++i) {
        const std::string text = (i % 3 == 0 ? "-" : "") + (numbers.*kKinds[kind])();
        double expected = 0.0;
        std::from_chars(text.data(), text.data() + text.size(), expected);
        const std::string lines = text + (i % 2 == 0 ? "\n" : "\r\n") + std::string(24, '7');
        double number = -1.0;
        double* next = &number;
        const char* end =
            readNumberLines(lines.data(), lines.data() + lines.size(), next, &number + 1);
        QVERIFY2(std::memcmp(&number, &expected, sizeof number) == 0, text.c_str());
        QCOMPARE(static_cast<std::size_t>(end - lines.data()), lines.size() - 24);
    }
}

HTS_TEST(NumberSizesTest, NoApplication)
#include "tst_numbersizes.moc"
