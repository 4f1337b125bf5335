#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include <QtTest>

#include "annualize/aggmethods.h"
#include "annualize/aggvalues.h"
#include "tests/annualize/conversioncompare.h"
#include "tests/hts/packagecompare.h"
#include "tests/support/testmain.h"

using Values = std::vector<double>;
using ValueMap = std::vector<std::int32_t>;

Q_DECLARE_METATYPE(Values)
Q_DECLARE_METATYPE(ValueMap)

namespace {

// NaNs of the input, different from each other and from the one that means "no result".
const double kNanA = doubleOf(0x7ff8000000000000);
const double kNanB = doubleOf(0x7ff8000000000abc);
const double kNanC = doubleOf(0xfff800000000000c);

constexpr quint64 kResultNanBits = 0x7ff8000000000001;

// Two doubles that differ in a bit have different texts. The NaN of a result is "NaN", others are
// "nan:" and their bits.
QString textOf(double value)
{
    if (bitsOf(value) == kResultNanBits)
        return QStringLiteral("NaN");
    if (std::isnan(value))
        return QLatin1String("nan:") + QString::number(bitsOf(value), 16);
    if (value == 0.0)
        return std::signbit(value) ? QStringLiteral("-0") : QStringLiteral("0");
    return QString::number(value, 'g', 17);
}

// One line for each year, with the results of the methods that the reference knows, separated by
// blanks.
QStringList linesOf(const AggValues& agg)
{
    std::vector<QStringList> years;
    for (const AggMethod& method : aggMethods()) {
        if (!method.isSupported())
            continue;
        const Values results = agg.results(method);
        if (years.empty())
            years.resize(results.size());
        if (results.size() != years.size())
            return {QStringLiteral("results differ in length")};
        for (std::size_t year = 0; year < results.size(); ++year)
            years[year].append(textOf(results[year]));
    }
    QStringList lines;
    for (const QStringList& words : years)
        lines.append(words.join(QLatin1Char(' ')));
    return lines;
}

// The reference: the years one by one, each result from the year's values on its own.
std::vector<Values> yearsOf(const Values& values, const ValueMap& map, int count)
{
    std::vector<Values> years;
    std::int32_t last = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (map[i] < 1 || map[i] > count)
            continue;
        if (years.empty() || map[i] != last)
            years.emplace_back();
        years.back().push_back(values[i]);
        last = map[i];
    }
    return years;
}

QString referenceLine(const Values& year)
{
    Values finite;
    std::copy_if(year.begin(), year.end(), std::back_inserter(finite),
                 [](double value) { return std::isfinite(value); });
    const double sum = std::accumulate(finite.begin(), finite.end(), 0.0);
    const double average = sum / static_cast<double>(year.size());
    const double max =
        finite.empty() ? year.front() : *std::max_element(finite.begin(), finite.end());
    const double min =
        finite.empty() ? year.front() : *std::min_element(finite.begin(), finite.end());

    const bool isWhole = finite.size() == year.size();
    QStringList words;
    for (const double value : {sum, average, max, min, year.back(), year.front()}) {
        words.append(isWhole ? textOf(value) : QStringLiteral("NaN"));
        words.append(textOf(value));
    }
    return words.join(QLatin1Char(' '));
}

QStringList referenceLines(const Values& values, const ValueMap& map, int count)
{
    QStringList lines;
    for (const Values& year : yearsOf(values, map, count))
        lines.append(referenceLine(year));
    return lines;
}

double randomValue(std::mt19937& random)
{
    static const double kSpecial[] = {kNanA, kNanB, kNanC, kInfinity, -kInfinity, 0.0, -0.0};
    if (random() % 5 == 0)
        return kSpecial[random() % std::size(kSpecial)];
    // Of very different size, so that a sum depends on the order of its terms.
    const double digits = static_cast<double>(random()) / 1e6 - 2000.0;
    return std::ldexp(digits, static_cast<int>(random() % 40) - 20);
}

// Grows by one now and then.
ValueMap growingMap(std::mt19937& random, std::size_t size)
{
    ValueMap map;
    std::int32_t number = 0;
    while (map.size() < size) {
        number += random() % 6 == 0 ? 1 : 0;
        map.push_back(number);
    }
    return map;
}

// Any numbers from one below the least usable to two above the count.
ValueMap jumpingMap(std::mt19937& random, std::size_t size)
{
    ValueMap map;
    while (map.size() < size)
        map.push_back(static_cast<std::int32_t>(random() % 7) - 1);
    return map;
}

// Stretches of equal numbers that return to earlier ones, with gaps of unused numbers in between.
ValueMap returningMap(std::mt19937& random, std::size_t size)
{
    ValueMap map;
    std::int32_t number = 1;
    while (map.size() < size) {
        if (random() % 4 == 0)
            number = static_cast<std::int32_t>(random() % 4) + 1;
        const bool isUnused = random() % 5 == 0;
        map.push_back(isUnused ? (random() % 2 == 0 ? 0 : 1000) : number);
    }
    return map;
}

} // namespace

class AggValuesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newObjectHasNoResults() { QCOMPARE(linesOf(AggValues()), QStringList()); }

    void givesOneResultForEachYear_data()
    {
        addColumns<Values, ValueMap, int, QString>("values", "map", "count", "expected");
        // Sum Average Max Min End Begin, each followed by its Nan variant; years separated by '|'.
        const ValueMap one{1, 1, 1};
        const auto row = [](const char* name, const Values& values, const ValueMap& map, int count,
                            const char* expected) {
            QTest::newRow(name) << values << map << count << expected;
        };
        row("complete year", {1, 2, 3}, one, 3, "6 6 2 2 3 3 1 1 3 3 1 1");
        row("one value", {7.5}, {1}, 1, "7.5 7.5 7.5 7.5 7.5 7.5 7.5 7.5 7.5 7.5 7.5 7.5");
        row("missing value in the middle counts in the divisor", {1, kNanA, 3}, one, 1,
            "NaN 4 NaN 1.3333333333333333 NaN 3 NaN 1 NaN 3 NaN 1");
        row("eight of ten values average over ten", {1, 1, 1, kNanA, 1, 1, kNanA, 1, 1, 1},
            ValueMap(10, 1), 1, "NaN 8 NaN 0.80000000000000004 NaN 1 NaN 1 NaN 1 NaN 1");
        row("missing value at the end is the end, with its own bits", {1, 2, kNanB}, one, 1,
            "NaN 3 NaN 1 NaN 2 NaN 1 NaN nan:7ff8000000000abc NaN 1");
        row("missing value at the beginning is the beginning, with its own bits", {kNanC, 4, 2},
            one, 1, "NaN 6 NaN 2 NaN 4 NaN 2 NaN 2 NaN nan:fff800000000000c");
        row("all values missing", {kNanB, kInfinity, kNanC}, one, 1,
            "NaN 0 NaN 0 NaN nan:7ff8000000000abc NaN nan:7ff8000000000abc NaN "
            "nan:fff800000000000c NaN nan:7ff8000000000abc");
        row("all values infinite keeps the first", {-kInfinity, kInfinity}, {1, 1}, 1,
            "NaN 0 NaN 0 NaN -inf NaN -inf NaN inf NaN -inf");
        row("infinity is a missing value", {5, kInfinity, 7}, one, 1,
            "NaN 12 NaN 4 NaN 7 NaN 5 NaN 7 NaN 5");
        row("leading infinity is no largest value", {kInfinity, 1, 3}, one, 1,
            "NaN 4 NaN 1.3333333333333333 NaN 3 NaN 1 NaN 3 NaN inf");
        row("leading infinity below zero is no smallest value", {-kInfinity, 1, 3}, one, 1,
            "NaN 4 NaN 1.3333333333333333 NaN 3 NaN 1 NaN 3 NaN -inf");
        row("of equal values the first is kept", {-0.0, 0.0}, {1, 1}, 1,
            "0 0 0 0 -0 -0 -0 -0 0 0 -0 -0");
        row("sum beyond the largest number stays infinite", {1e308, 1e308}, {1, 1}, 1,
            "inf inf inf inf 1e+308 1e+308 1e+308 1e+308 1e+308 1e+308 1e+308 1e+308");
        row("missing value spoils its own year only", {1, kNanA, 3, 5}, {1, 1, 2, 2}, 2,
            "NaN 1 NaN 0.5 NaN 1 NaN 1 NaN nan:7ff8000000000000 NaN 1|8 8 4 4 5 5 3 3 5 5 3 3");
        row("values outside the years are skipped", {100, 1, 2, 3, 100}, {0, 1, 1, 2, 3}, 2,
            "3 3 1.5 1.5 2 2 1 1 2 2 1 1|3 3 3 3 3 3 3 3 3 3 3 3");
        row("missing value outside the years spoils nothing", {kNanA, 1, kNanB, 3, kNanC},
            {0, 1, -5, 1, 2}, 1, "4 4 2 2 3 3 1 1 3 3 1 1");
        row("skipped value does not end the year", {1, 100, 3}, {1, 0, 1}, 1,
            "4 4 2 2 3 3 1 1 3 3 1 1");
        row("return to an earlier number starts a new year", {1, 2, 3}, {1, 2, 1}, 2,
            "1 1 1 1 1 1 1 1 1 1 1 1|2 2 2 2 2 2 2 2 2 2 2 2|3 3 3 3 3 3 3 3 3 3 3 3");
        row("number that no value carries has no result", {1, 2}, {1, 3}, 3,
            "1 1 1 1 1 1 1 1 1 1 1 1|2 2 2 2 2 2 2 2 2 2 2 2");
        row("no value inside the years", {1, 2}, {0, 4}, 3, "");
        row("no years", {1, 2, 3}, one, 0, "");
        row("no values", {}, {}, 3, "");
        row("no values and no years", {}, {}, 0, "");
    }
    void givesOneResultForEachYear()
    {
        QFETCH(Values, values);
        QFETCH(ValueMap, map);
        QFETCH(int, count);

        AggValues agg;
        QString message;
        QVERIFY(agg.aggregate(values, map, count, message));
        QCOMPARE(message, QString());
        QTEST(linesOf(agg).join(QLatin1Char('|')), "expected");
    }

    void agreesWithSlowReference_data()
    {
        addColumns<Values, ValueMap>("values", "map");

        using MapMaker = ValueMap (*)(std::mt19937&, std::size_t);
        const std::pair<const char*, MapMaker> kMakers[] = {
            {"growing", growingMap}, {"jumping", jumpingMap}, {"returning", returningMap}};
        for (const auto& [name, makeMap] : kMakers) {
            for (unsigned seed = 1; seed <= 60; ++seed) {
                std::mt19937 random(seed);
                Values values(random() % 200);
                std::generate(values.begin(), values.end(), [&] { return randomValue(random); });
                const ValueMap map = makeMap(random, values.size());
                QTest::addRow("%s map %u", name, seed) << values << map;
            }
        }
    }
    void agreesWithSlowReference()
    {
        QFETCH(Values, values);
        QFETCH(ValueMap, map);

        // The same object throughout, with counts that leave out ever fewer numbers.
        AggValues agg;
        QString message;
        for (const int count : {0, 1, 2, 4, 30}) {
            QVERIFY(agg.aggregate(values, map, count, message));
            QCOMPARE(linesOf(agg), referenceLines(values, map, count));
        }
    }

    void refusesBadSizes_data()
    {
        addColumns<Values, ValueMap, int, QString>("values", "map", "count", "message");

        const char* const negative = "Number of new values cannot be negative";
        addRows<Values, ValueMap, int, const char*>(
            {{"map too short", {1, 2}, {1}, 1, kUnequalSizes},
             {"map too long", {1}, {1, 1}, 1, kUnequalSizes},
             {"no values", {}, {1}, 1, kUnequalSizes},
             {"no map", {1}, {}, 1, kUnequalSizes},
             {"negative count", {1}, {1}, -1, negative},
             {"negative count without values", {}, {}, -1, negative},
             {"least count", {1}, {1}, std::numeric_limits<int>::min(), negative},
             {"sizes before count", {1}, {}, -1, kUnequalSizes}});
    }
    void refusesBadSizes()
    {
        QFETCH(Values, values);
        QFETCH(ValueMap, map);
        QFETCH(int, count);

        AggValues agg;
        QString message = QStringLiteral("before");
        QVERIFY(!agg.aggregate(values, map, count, message));
        QTEST(message, "message");
        QCOMPARE(linesOf(agg), QStringList());
    }

    void successLeavesMessageUnchanged()
    {
        AggValues agg;
        QString message = QStringLiteral("before");
        QVERIFY(agg.aggregate({1}, {1}, 1, message));
        QCOMPARE(message, QStringLiteral("before"));
    }

    void usedAgainReplacesResults()
    {
        AggValues agg;
        QString message;
        QVERIFY(agg.aggregate({1, kNanA, 3}, {1, 2, 3}, 3, message));
        QCOMPARE(linesOf(agg).size(), 3);
        QVERIFY(agg.aggregate({4, 6}, {1, 1}, 1, message));
        QCOMPARE(linesOf(agg), QStringList{QStringLiteral("10 10 5 5 6 6 4 4 6 6 4 4")});
        QVERIFY(agg.aggregate({}, {}, 1, message));
        QCOMPARE(linesOf(agg), QStringList());
    }

    void failureEmptiesEarlierResults()
    {
        for (const int count : {1, -1}) {
            AggValues agg;
            QString message;
            QVERIFY(agg.aggregate({1, 2}, {1, 1}, 1, message));
            QCOMPARE(linesOf(agg).size(), 1);
            const ValueMap map = count < 0 ? ValueMap{1, 1} : ValueMap{1};
            QVERIFY(!agg.aggregate({1, 2}, map, count, message));
            QCOMPARE(linesOf(agg), QStringList());
        }
    }
};

HTS_TEST(AggValuesTest, QCoreApplication)

#include "tst_aggvalues.moc"
