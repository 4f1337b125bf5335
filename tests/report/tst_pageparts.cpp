// What pages are made of: texts, numbers, axes, envelopes, bands, names that are asked for.

#include <algorithm>
#include <limits>

#include <QLibrary>
#include <QtTest>

#include "report/axis.h"
#include "report/backgroundsha256.h"
#include "report/chart.h"
#include "report/envelope.h"
#include "report/htmltext.h"
#include "report/numberfield.h"
#include "report/pagemodel.h"
#include "report/pageobserver.h"
#include "report/sha256.h"
#include "report/svgpath.h"
#include "report/yearband.h"
#include "tests/support/testmain.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

} // namespace

class PagePartsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsAreNoMarkup_data();
    void textsAreNoMarkup();
    void numbersAreThoseOfTheAnnualFile_data();
    void numbersAreThoseOfTheAnnualFile();
    void axisHasRoundTicks_data();
    void axisHasRoundTicks();
    void labelsAreNotTooMany_data();
    void labelsAreNotTooMany();
    void namesAreMatched_data();
    void namesAreMatched();
    void hashesAreThoseOfTheStandard_data();
    void hashesAreThoseOfTheStandard();
    void envelopeKeepsEachPeak();
    void envelopeFindsValues();
    void envelopeKnowsWhatIsMissing();
    void columnsFollowTheTimes();
    void lineGoesTheShortWay_data();
    void lineGoesTheShortWay();
    void labelsOfYearsAreApart();
    void marksOfSentinelsAreApart();
    void bandHasTheMedian();
    void pathIsShort();
};

void PagePartsTest::textsAreNoMarkup_data()
{
    addColumns<const char*, QByteArray>("text", "html");
    addRows<const char*, QByteArray>({
        {"plain", "Mill Pond.Flow", "Mill Pond.Flow"},
        {"script", "<script>alert(1)</script>", "&lt;script&gt;alert(1)&lt;/script&gt;"},
        {"quotes", "\"a\" 'b' &amp; `c`", "&quot;a&quot; &#39;b&#39; &amp;amp; `c`"},
        {"right to left", "a\u202eb\u200f\u2066c", "a\\u202eb\\u200f\\u2066c"},
        {"control characters", "a\tb\x1b[31m\x7f\n", "a\\tb\\u001b[31m\\u007f\\u000a"},
        {"marks of arg", "%1 %2", "%1 %2"},
        {"letters", "Ä\u05d0\u6c34", "Ä\u05d0\u6c34"},
        {"less", "a<b", "a&lt;b"},
        {"greater", "a>b", "a&gt;b"},
        {"ampersand", "a&b", "a&amp;b"},
        {"quote", "a\"b", "a&quot;b"},
        {"apostrophe", "a'b", "a&#39;b"},
        {"first and last plain", " ~", " ~"},
        {"before them", "\x1f", "\\u001f"},
        {"after them", "\x7f", "\\u007f"},
        {"long", "0123456789a", "0123456789..."},
        {"long enough", "0123456789", "0123456789"},
        {"long pair", "012345678\U0001f30a", "012345678..."},
    });
}

void PagePartsTest::textsAreNoMarkup()
{
    QFETCH(QString, text);
    const bool isLong = QByteArray(QTest::currentDataTag()).startsWith("long");
    QTEST(htmlText(text, isLong ? 10 : 400), "html");
}

void PagePartsTest::numbersAreThoseOfTheAnnualFile_data()
{
    addColumns<double, QByteArray>("number", "field");
    addRows<double, QByteArray>({
        {"digits", 4.723110711085, "4.723110711085"},
        {"more digits", 0.12345678901263, "0.123456789013"},
        {"whole", 1200.0, "1200"},
        {"zero", -0.0, "0"},
        {"small", 1e-13, "0"},
        {"large", 123456789012345.0, "123456789012345"},
        {"larger", 1e300, "1e+300"},
        {"missing", kNaN, "NaN"},
        {"infinite", kInfinity, "NaN"},
    });
}

void PagePartsTest::numbersAreThoseOfTheAnnualFile()
{
    QFETCH(double, number);
    QTEST(numberField(number), "field");
}

void PagePartsTest::axisHasRoundTicks_data()
{
    addColumns<QVector<double>, const char*>("numbers", "labels");
    addRows<QVector<double>, const char*>({
        {"near zero", {3.2, 97.0}, "0 50 100"},
        {"far from zero", {341.2, 359.0}, "340 345 350 355 360"},
        {"both signs", {-3.0, 7.0}, "-5 0 5 10"},
        {"negative", {-9.0, -1.0}, "-10 -5 0"},
        {"fractions", {0.0012, 0.0047}, "0.000 0.002 0.004 0.006"},
        {"large", {0.0, 4.1e7}, "0 2e+07 4e+07 6e+07"},
        {"large and close", {1234567.0, 1234569.0}, "1234567 1234567.5 1234568 1234568.5 1234569"},
        {"one number", {20.0}, "19.0 19.5 20.0 20.5 21.0"},
        {"zero", {0.0}, "-1.0 -0.5 0.0 0.5 1.0"},
        {"not finite", {kNaN, 1.0, kInfinity, 2.0}, "1.0 1.5 2.0"},
        {"largest", {-1.7e308, 1.7e308}, "-1e+300 -5e+299 0 5e+299 1e+300"},
    });
}

void PagePartsTest::axisHasRoundTicks()
{
    QFETCH(QVector<double>, numbers);
    Axis axis;
    for (const double number : numbers)
        axis.include(number);
    axis.round();
    QByteArrayList labels;
    for (const Axis::Tick& tick : axis.ticks()) {
        labels.append(tick.label);
        QVERIFY(axis.placeOf(tick.value) >= 0.0 && axis.placeOf(tick.value) <= 1.0);
    }
    QTEST(QString::fromLatin1(labels.join(' ')), "labels");
    QCOMPARE(axis.placeOf(axis.low()), 0.0);
    QCOMPARE(axis.placeOf(axis.high()), 1.0);
}

void PagePartsTest::labelsAreNotTooMany_data()
{
    addColumns<int, int>("count", "step");
    addRows<int, int>({{"none", 0, 1},
                       {"few", 11, 1},
                       {"12", 12, 2},
                       {"22", 22, 2},
                       {"23", 23, 5},
                       {"56", 56, 10},
                       {"150", 150, 20},
                       {"many", 8000, 1000}});
}

void PagePartsTest::labelsAreNotTooMany()
{
    QFETCH(int, count);
    QTEST(labelStep(count, 11), "step");
}

void PagePartsTest::namesAreMatched_data()
{
    addColumns<const char*, const char*, bool>("pattern", "name", "isMatch");
    addRows<const char*, const char*, bool>({
        {"all", "*", "Lake.Flow", true},
        {"object", "Lake.*", "Lake.Flow", true},
        {"other object", "Lake.*", "Pond.Flow", false},
        {"end", "*Flow", "a.b.Flow", true},
        {"not the end", "*Flow", "Lake.Flows", false},
        {"later place", "*ab*c", "aab.abxc", true},
        {"one character", "Lake.Fl?w", "Lake.Flow", true},
        {"no character", "Lake.Flow?", "Lake.Flow", false},
        {"case", "lake.*", "Lake.Flow", false},
        {"brackets", "Lake.[F]*", "Lake.Flow", false},
        {"slash", "L*e", "La/ke", true},
        {"nothing", "", "", true},
        {"nothing for a name", "", "a", false},
    });
}

void PagePartsTest::namesAreMatched()
{
    QFETCH(QString, pattern);
    QFETCH(QString, name);
    QTEST(isLike(pattern, name), "isMatch");
}

namespace {

ChartColumns columnsOf(std::size_t count)
{
    std::vector<float> places(count);
    for (std::size_t i = 0; i < count; ++i)
        places[i] = static_cast<float>(i) / static_cast<float>(count - 1);
    return ChartColumns(places);
}

} // namespace

void PagePartsTest::hashesAreThoseOfTheStandard_data()
{
    addColumns<QByteArray, const char*>("text", "expected");
    addRows<QByteArray, const char*>(
        {{"nothing", QByteArray(),
          "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
         {"abc", QByteArray("abc"),
          "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
         {"a million letters", QByteArray(1000000, 'a'),
          "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"}});
}

void PagePartsTest::hashesAreThoseOfTheStandard()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    QCOMPARE(cryptoLibrary() != nullptr, QLibrary(QStringLiteral("crypto"), 3).load());
    for (const CryptoLibrary* library :
         {cryptoLibrary(), static_cast<const CryptoLibrary*>(nullptr)}) {
        for (const int step : {7, 64, 65536}) {
            Sha256 hash(library);
            for (int at = 0; at < text.size(); at += step)
                hash.add(text.constData() + at, std::min<int>(step, text.size() - at));
            QCOMPARE(QString::fromLatin1(hash.takeHex()), expected);
        }
    }
    for (const int step : {7, 65536, 1000000}) {
        BackgroundSha256 hash;
        for (int at = 0; at < text.size(); at += step)
            hash.add(text.constData() + at, std::size_t(std::min<int>(step, text.size() - at)));
        QCOMPARE(QString::fromLatin1(hash.takeHex()), expected);
    }
}

void PagePartsTest::envelopeKeepsEachPeak()
{
    constexpr std::size_t kCount = 100000;
    const ChartColumns columns = columnsOf(kCount);
    QCOMPARE(columns.stepCount(), kCount);
    QCOMPARE(columns.list().size(), std::size_t(kChartColumns));
    for (const std::size_t peak : {std::size_t(0), std::size_t(77777), kCount - 1}) {
        HtsColumn values(kCount, 1.0);
        values[peak] = 1e300;
        const Envelope envelope(columns, values, {});
        QCOMPARE(envelope.low(), 1.0F);
        QVERIFY(envelope.high() > 1.0F);
        std::size_t found = 0;
        for (const ChartColumns::Column& steps : columns.list()) {
            const Envelope::Column& column = envelope.columns()[static_cast<std::size_t>(steps.x)];
            QCOMPARE(int(column.x), steps.x);
            QCOMPARE(column.low, 1.0F);
            QCOMPARE(column.high > 1.0F, steps.begin <= peak && peak < steps.end);
            found += column.high > 1.0F ? 1 : 0;
        }
        QCOMPARE(found, std::size_t(1));
        QCOMPARE(columns.indexOf(peak), peak * kChartColumns / kCount);
    }
}

// Also a value that is in two columns and in two years, and one that only the exact numbers tell
// from others.
void PagePartsTest::envelopeFindsValues()
{
    const ChartColumns columns = columnsOf(2000);
    HtsColumn values(2000);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = 1.0 + static_cast<double>(i % 700) * 1e-12;
    const Envelope envelope(columns, values, {});
    for (const std::size_t first : {0U, 699U, 700U, 1301U})
        for (const std::size_t wanted : {first, first + 1, first + 698})
            QCOMPARE(envelope.indexOf(values[wanted], columns, values, first, first + 699,
                                      columns.indexOf(first)),
                     wanted);
}

void PagePartsTest::envelopeKnowsWhatIsMissing()
{
    const ChartColumns columns({0.0F, 0.5F, 1.0F}, {{0.25, 0.3}});
    const HtsColumn values = {kNaN, -999.0};
    Envelope envelope(columns, values, {0});
    envelope.markSentinels(columns, values, [](double value) { return value == -999.0; });
    QCOMPARE(envelope.missingCount(), 2); // there is no third value
    QString marks;
    for (const Envelope::Column& column : envelope.columns()) {
        if (column.x < 162 || column.x > 190)
            marks += QString::number(column.x) + QLatin1String(column.hasMissing ? "m" : "-") +
                     QLatin1String(column.hasSentinel ? "s"
                                   : column.isEmpty() ? "."
                                                      : "v") +
                     QLatin1Char(' ');
    }
    QCOMPARE(marks, QStringLiteral("0m. 160m. 161m. 191m. 192m. 320-s 639m. "));
}

// A timestep that goes back stays beside the one before it.
void PagePartsTest::columnsFollowTheTimes()
{
    const ChartColumns columns({0.0F, 0.0F, 0.5F, 0.25F, 1.0F, 7.0F});
    QString ranges;
    for (const ChartColumns::Column& column : columns.list())
        ranges += QStringLiteral("%1: %2 to %3; ").arg(column.x).arg(column.begin).arg(column.end);
    QCOMPARE(ranges, QStringLiteral("0: 0 to 2; 320: 2 to 4; 639: 4 to 6; "));
    QVERIFY(ChartColumns(std::vector<float>()).list().empty());
}

void PagePartsTest::lineGoesTheShortWay_data()
{
    addColumns<std::vector<float>, HtsColumn, QByteArray>("places", "values", "path");
    addRows<std::vector<float>, HtsColumn, QByteArray>({
        {"down and up", {0, 0.5, 0.5, 1, 1}, {10, 0, 10, 0, 10}, "M0 0h320v720h319v-720"},
        {"up and down", {0, 0.5, 0.5, 1, 1}, {0, 10, 0, 10, 0}, "M0 720h320v-720h319v720"},
        {"same way", {0, 0.5, 0.5, 1}, {5, 0, 10, 5}, "M0 360l320-360v720l319-360"},
        {"nearer end above", {0, 0.5, 0.5, 1}, {5, 8, 0, 10}, "M0 360l320-216v576l319-720"},
        {"first column", {0, 0, 1}, {10, 0, 0}, "M0 0v720h639"},
        {"one value", {0.5}, {1}, "M320 240h0"},
    });
}

void PagePartsTest::lineGoesTheShortWay()
{
    QFETCH(std::vector<float>, places);
    QFETCH(HtsColumn, values);
    QFETCH(QByteArray, path);
    PageSlot slot;
    slot.envelope = Envelope(ChartColumns(places), values, {});
    const QByteArray chart = slotChart(PageModel(), slot, {});
    QVERIFY2(chart.contains("class=\"input\" d=\"" + path + "\""), chart.constData());
}

void PagePartsTest::labelsOfYearsAreApart()
{
    PageModel model;
    model.firstYear = 2000;
    for (const float x : {6.0F, 59.0F, 60.0F, 113.0F, 114.0F})
        model.labelPlaces.push_back({x / 639, x / 639});
    QCOMPARE(yearLabels(model, 7), QByteArray("<text class=\"y\" x=\"76\" y=\"7\">2000</text>"
                                              "<text class=\"y\" x=\"130\" y=\"7\">2002</text>"
                                              "<text class=\"y\" x=\"184\" y=\"7\">2004</text>\n"));
}

void PagePartsTest::marksOfSentinelsAreApart()
{
    const ChartColumns columns({0.0F, 7 / 639.0F, 8 / 639.0F, 15 / 639.0F, 1.0F});
    const HtsColumn values(5, -999.0);
    PageSlot slot;
    slot.envelope = Envelope(columns, values, {});
    slot.envelope.markSentinels(columns, values, [](double) { return true; });
    const QByteArray chart = slotChart(PageModel(), slot, {});
    QVERIFY2(chart.contains("d=\"M66 229l4-4l4 4l-4 4M74 229l4-4l4 4l-4 4M705 229l4-4l4 4l-4 4\""),
             chart.constData());
}

void PagePartsTest::bandHasTheMedian()
{
    PageSlot slot;
    slot.years.resize(3);
    slot.others = {1.0, kNaN, kNaN, 4.0, 9.0, kNaN, 2.0, 7.0, kNaN};
    const std::vector<YearBand> bands = bandOf(slot);
    QCOMPARE(bands.size(), std::size_t(3));
    QCOMPARE(bands[0].minimum, 1.0);
    QCOMPARE(bands[0].median, 2.0);
    QCOMPARE(bands[0].maximum, 4.0);
    QCOMPARE(bands[1].median, 8.0);
    QVERIFY(std::isnan(bands[2].median));
    slot.others.clear();
    QVERIFY(bandOf(slot).empty());
}

void PagePartsTest::pathIsShort()
{
    SvgPath path;
    QCOMPARE(path.element("line"), QByteArray());
    path.moveTo(1, -2);
    path.lineTo(3, -2);
    path.lineTo(3, 4);
    path.lineTo(2, 9);
    path.lineTo(3, 8);
    path.addBox(0, 1, 5, 9);
    QCOMPARE(path.element("line"),
             QByteArray("<path class=\"line\" d=\"M1-2h2v6l-1 5l1-1M0 1h5v8h-5z\"/>\n"));
}

HTS_TEST(PagePartsTest, NoApplication)

#include "tst_pageparts.moc"
