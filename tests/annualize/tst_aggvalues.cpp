#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include <QObject>
#include <QStringList>
#include <QtTest>

#include "annualize/aggvalues.h"
#include "tests/support/testmain.h"

using Values = std::vector<double>;
using ValueMap = std::vector<std::int32_t>;

Q_DECLARE_METATYPE(Values)
Q_DECLARE_METATYPE(ValueMap)

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

double fromBits(std::uint64_t bits)
{
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// NaNs of the input, different from each other and from the one that means "no result".
const double kNanA = fromBits(0x7ff8000000000000);
const double kNanB = fromBits(0x7ff8000000000abc);
const double kNanC = fromBits(0xfff800000000000c);

constexpr std::uint64_t kResultNanBits = 0x7ff8000000000001;

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
    for (const char* word : {"Sum", "SumNaN", "Average", "AverageNaN", "Max", "MaxNaN", "Min",
                             "MinNaN", "End", "EndNaN", "Begin", "BeginNaN"}) {
        const Values results = agg.results(*findMethod(QString::fromLatin1(word)));
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
        addColumns<Values, ValueMap, int>("values", "map", "count");
        // Sum Average Max Min End Begin, each followed by its Nan variant.
        QTest::addColumn<QStringList>("expected");

        const auto lines = [](std::initializer_list<const char*> texts) {
            QStringList result;
            for (const char* text : texts)
                result.append(QString::fromLatin1(text));
            return result;
        };

        QTest::newRow("complete year")
            << Values{1, 2, 3} << ValueMap{1, 1, 1} << 3 << lines({"6 6 2 2 3 3 1 1 3 3 1 1"});
        QTest::newRow("one value") << Values{7.5} << ValueMap{1} << 1
                                   << lines({"7.5 7.5 7.5 7.5 7.5 7.5 7.5 7.5 7.5 7.5 7.5 7.5"});
        QTest::newRow("missing value in the middle counts in the divisor")
            << Values{1, kNanA, 3} << ValueMap{1, 1, 1} << 1
            << lines({"NaN 4 NaN 1.3333333333333333 NaN 3 NaN 1 NaN 3 NaN 1"});
        QTest::newRow("eight of ten values average over ten")
            << Values{1, 1, 1, kNanA, 1, 1, kNanA, 1, 1, 1} << ValueMap(10, 1) << 1
            << lines({"NaN 8 NaN 0.80000000000000004 NaN 1 NaN 1 NaN 1 NaN 1"});
        QTest::newRow("missing value at the end is the end, with its own bits")
            << Values{1, 2, kNanB} << ValueMap{1, 1, 1} << 1
            << lines({"NaN 3 NaN 1 NaN 2 NaN 1 NaN nan:7ff8000000000abc NaN 1"});
        QTest::newRow("missing value at the beginning is the beginning, with its own bits")
            << Values{kNanC, 4, 2} << ValueMap{1, 1, 1} << 1
            << lines({"NaN 6 NaN 2 NaN 4 NaN 2 NaN 2 NaN nan:fff800000000000c"});
        QTest::newRow("all values missing")
            << Values{kNanB, kInfinity, kNanC} << ValueMap{1, 1, 1} << 1
            << lines({"NaN 0 NaN 0 NaN nan:7ff8000000000abc NaN nan:7ff8000000000abc NaN "
                      "nan:fff800000000000c NaN nan:7ff8000000000abc"});
        QTest::newRow("all values infinite keeps the first")
            << Values{-kInfinity, kInfinity} << ValueMap{1, 1} << 1
            << lines({"NaN 0 NaN 0 NaN -inf NaN -inf NaN inf NaN -inf"});
        QTest::newRow("infinity is a missing value")
            << Values{5, kInfinity, 7} << ValueMap{1, 1, 1} << 1
            << lines({"NaN 12 NaN 4 NaN 7 NaN 5 NaN 7 NaN 5"});
        QTest::newRow("leading infinity is no largest value")
            << Values{kInfinity, 1, 3} << ValueMap{1, 1, 1} << 1
            << lines({"NaN 4 NaN 1.3333333333333333 NaN 3 NaN 1 NaN 3 NaN inf"});
        QTest::newRow("leading infinity below zero is no smallest value")
            << Values{-kInfinity, 1, 3} << ValueMap{1, 1, 1} << 1
            << lines({"NaN 4 NaN 1.3333333333333333 NaN 3 NaN 1 NaN 3 NaN -inf"});
        QTest::newRow("of equal values the first is kept")
            << Values{-0.0, 0.0} << ValueMap{1, 1} << 1 << lines({"0 0 0 0 -0 -0 -0 -0 0 0 -0 -0"});
        QTest::newRow("sum beyond the largest number stays infinite")
            << Values{1e308, 1e308} << ValueMap{1, 1} << 1
            << lines({"inf inf inf inf 1e+308 1e+308 "
                      "1e+308 1e+308 1e+308 "
                      "1e+308 1e+308 1e+308"});
        QTest::newRow("missing value spoils its own year only")
            << Values{1, kNanA, 3, 5} << ValueMap{1, 1, 2, 2} << 2
            << lines({"NaN 1 NaN 0.5 NaN 1 NaN 1 NaN nan:7ff8000000000000 NaN 1",
                      "8 8 4 4 5 5 3 3 5 5 3 3"});
        QTest::newRow("values outside the years are skipped")
            << Values{100, 1, 2, 3, 100} << ValueMap{0, 1, 1, 2, 3} << 2
            << lines({"3 3 1.5 1.5 2 2 1 1 2 2 1 1", "3 3 3 3 3 3 3 3 3 3 3 3"});
        QTest::newRow("missing value outside the years spoils nothing")
            << Values{kNanA, 1, kNanB, 3, kNanC} << ValueMap{0, 1, -5, 1, 2} << 1
            << lines({"4 4 2 2 3 3 1 1 3 3 1 1"});
        QTest::newRow("skipped value does not end the year")
            << Values{1, 100, 3} << ValueMap{1, 0, 1} << 1 << lines({"4 4 2 2 3 3 1 1 3 3 1 1"});
        QTest::newRow("return to an earlier number starts a new year")
            << Values{1, 2, 3} << ValueMap{1, 2, 1} << 2
            << lines({"1 1 1 1 1 1 1 1 1 1 1 1", "2 2 2 2 2 2 2 2 2 2 2 2",
                      "3 3 3 3 3 3 3 3 3 3 3 3"});
        QTest::newRow("number that no value carries has no result")
            << Values{1, 2} << ValueMap{1, 3} << 3
            << lines({"1 1 1 1 1 1 1 1 1 1 1 1", "2 2 2 2 2 2 2 2 2 2 2 2"});
        QTest::newRow("no value inside the years")
            << Values{1, 2} << ValueMap{0, 4} << 3 << QStringList();
        QTest::newRow("no years") << Values{1, 2, 3} << ValueMap{1, 1, 1} << 0 << QStringList();
        QTest::newRow("no values") << Values() << ValueMap() << 3 << QStringList();
        QTest::newRow("no values and no years") << Values() << ValueMap() << 0 << QStringList();
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
        QTEST(linesOf(agg), "expected");
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

        const QString sizes =
            QStringLiteral("Sizes of input value and value map vectors are mismatched");
        const QString negative = QStringLiteral("Number of new values cannot be negative");
        QTest::newRow("map too short") << Values{1, 2} << ValueMap{1} << 1 << sizes;
        QTest::newRow("map too long") << Values{1} << ValueMap{1, 1} << 1 << sizes;
        QTest::newRow("no values") << Values() << ValueMap{1} << 1 << sizes;
        QTest::newRow("no map") << Values{1} << ValueMap() << 1 << sizes;
        QTest::newRow("negative count") << Values{1} << ValueMap{1} << -1 << negative;
        QTest::newRow("negative count without values") << Values() << ValueMap() << -1 << negative;
        QTest::newRow("least count")
            << Values{1} << ValueMap{1} << std::numeric_limits<int>::min() << negative;
        QTest::newRow("sizes before count") << Values{1} << ValueMap() << -1 << sizes;
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
