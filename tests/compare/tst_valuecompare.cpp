#include <cmath>
#include <limits>

#include <QtTest>

#include "compare/runindex.h"
#include "compare/valuecompare.h"
#include "tests/support/testmain.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();

} // namespace

class ValueCompareTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbersAreEqualWithinTheTolerance();
    void remembersTheLargest();
    void comparesRows();
    void matchesRunsByTraceOrPlace();
};

void ValueCompareTest::numbersAreEqualWithinTheTolerance()
{
    const struct
    {
        Tolerance tolerance;
        double a;
        double b;
        bool areEqual;
    } kCases[] = {
        {{0, 0}, 1, 1, true},
        {{0, 0}, 0.0, -0.0, true},
        {{0, 0}, kNan, kNan, true},
        {{0, 0}, kNan, -kNan, true},
        {{0, 0}, kInf, kInf, true},
        {{kMax, 1}, kInf, -kInf, false},
        {{kMax, 1}, kInf, kNan, false},
        {{kMax, 1}, kMax, kInf, false},
        {{kMax, 1}, 0, kNan, false},
        {{0, 0}, 1, std::nextafter(1, 2), false},
        {{0, 0}, 2, std::nextafter(2, 1), false},
        {{0, 0}, 0, kTiny, false},
        {{0, 0}, kTiny, 2 * kTiny, false},
        {{kTiny, 0}, kTiny, 2 * kTiny, true},
        {{0.5, 0}, 1, 1.5, true},
        {{0.5, 0}, 1, std::nextafter(1.5, 2), false},
        {{0.5, 0}, -1, -1.5, true},
        {{0, 0.5}, 1, 2, true},
        {{0, 0.5}, -2, -1, true},
        {{0, 0.5}, 1, std::nextafter(2, 3), false},
        {{0, 0.5}, 0, kTiny, false},
        {{0, 1}, 0, 5, true},
        {{0, 1}, -kTiny, kTiny, false},
        {{0, 1.5}, -kMax, kMax, true},
        {{0, 1}, -kMax, kMax / 2, true}, // their difference is out of range
        {{1, 0.5}, 100, 60, true},
        {{1, 0.5}, 100, 49.5, false}, // not the sum of both
        {{50, 0.1}, 100, 60, true},
        {{1, 0.1}, 100, 60, false},
    };
    for (const auto& [tolerance, a, b, areEqual] : kCases) {
        const QString what = QStringLiteral("%1,%2: %3 %4")
                                 .arg(tolerance.absolute)
                                 .arg(tolerance.relative)
                                 .arg(a)
                                 .arg(b);
        QVERIFY2(tolerance.areEqual(a, b) == areEqual, qPrintable(what));
        QVERIFY2(tolerance.areEqual(b, a) == areEqual, qPrintable(what));
    }
}

void ValueCompareTest::remembersTheLargest()
{
    const HtsColumn a = {1, 100, kNan, -kMax, 0, kInf};
    const HtsColumn b = {1.5, 140, 3, kMax, 0, 0};
    const QStringList steps = {QStringLiteral("u"), QStringLiteral("v"), QStringLiteral("w"),
                               QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")};
    ValueCompare compare({0.5, 0}, {&a, &b});
    for (const std::size_t place : std::initializer_list<std::size_t>{4, 0, 2, 1, 5})
        compare.add(place, place);
    ValueDifferences found = compare.differences(steps);
    QCOMPARE(found.compared, qint64(5));
    QCOMPARE(found.differing, qint64(3));
    QCOMPARE(found.missingInOne, qint64(2));
    QCOMPARE(found.first.timestep, QStringLiteral("w"));
    QCOMPARE(found.largestAbsolute.timestep, QStringLiteral("v"));
    QCOMPARE(found.largestAbsolute.size, 40.0);
    QCOMPARE(found.largestRelative.size, 1 - 100.0 / 140.0);
    compare.add(3, 3);
    found = compare.differences(steps);
    QCOMPARE(found.largestAbsolute.timestep, QStringLiteral("x"));
    QCOMPARE(found.largestAbsolute.size, kMax);
    QCOMPARE(found.largestRelative.size, 2.0);
}

void ValueCompareTest::comparesRows()
{
    const struct
    {
        const char* first;
        const char* second;
        bool areEqual;
    } kCases[] = {
        {"", "", true},          {"1 2", "1.0\t 2", true}, {"1 2", "1 2.5", true},
        {"1 2", "1 2.6", false}, {"1 2", "1 2 3", false},  {"a 2", "a  2", true},
        {"a 2", "b 2", false},   {"nan", "NaN", true},     {"1", "one", false},
    };
    for (const auto& [first, second, areEqual] : kCases)
        QVERIFY2(areRowsEqual(QString::fromLatin1(first), QString::fromLatin1(second), {0.5, 0}) ==
                     areEqual,
                 second);
}

void ValueCompareTest::matchesRunsByTraceOrPlace()
{
    const struct
    {
        std::vector<int> first; // traces
        std::vector<int> second;
        std::vector<int> matches;
    } kCases[] = {{{4, 7}, {7, 4}, {1, 0}},
                  {{4, 7}, {7}, {-1, 0}},
                  {{4, -1}, {-1}, {0, -1}},
                  {{4, 4}, {4, 5}, {0, 1}},
                  {{7}, {4, 4}, {0}},
                  {{7}, {4, 5}, {-1}},
                  {{}, {4}, {}},
                  {{0}, {1, 0}, {1}}};
    const auto runsOf = [](const std::vector<int>& traces) {
        std::vector<RunEntry> runs;
        for (const int trace : traces)
            runs.push_back({{}, trace, {}});
        return runs;
    };
    for (const auto& [first, second, matches] : kCases)
        QCOMPARE(matchRuns({runsOf(first), runsOf(second)}), matches);
}

HTS_TEST(ValueCompareTest, NoApplication)

#include "tst_valuecompare.moc"
