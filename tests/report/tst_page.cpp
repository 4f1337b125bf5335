// Whole pages: those of small files, names that are markup, the numbers of the tables, and how
// large a page may be.

#include <QBuffer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include "hts/numbertext.h"
#include "report/filereport.h"
#include "report/page.h"
#include "report/pagestyle.h"
#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

FileReport reportOn(const QByteArray& text, const QString& controlPath, int endMonth,
                    const ShownSlots& shown = {})
{
    ReportRequest request;
    request.controlPath = controlPath;
    request.endMonth = endMonth;
    request.shown = shown;
    QBuffer source;
    source.setData(text);
    source.open(QIODevice::ReadOnly | QIODevice::Text);
    return checkForPage(source, request);
}

Status compareWith(const QByteArray& result, FileReport& report)
{
    QBuffer annual;
    annual.setData(result);
    annual.open(QIODevice::ReadOnly | QIODevice::Text);
    return compareResult(annual, report);
}

// A page about an input with a control file, and with a result unless it is empty, all as texts.
QByteArray pageOf(const QByteArray& text, const QByteArray& methods, int endMonth = 12,
                  const ShownSlots& shown = {}, const QByteArray& result = {})
{
    const QTemporaryDir folder;
    const QString controlPath = folder.filePath(QStringLiteral("methods.txt"));
    writeFile(controlPath, methods);
    FileReport report = reportOn(text, controlPath, endMonth, shown);
    if (!result.isEmpty() && !compareWith(result, report).ok())
        qFatal("no result");
    const QDateTime noon(QDate(2026, 1, 2), QTime(12, 0), Qt::UTC);
    PageFacts facts;
    facts.program = QStringLiteral("htstool");
    facts.written = noon;
    facts.endMonth = endMonth;
    facts.files = {
        {QStringLiteral("Input"), QStringLiteral("a/input.hts"), text.size(), "12ab", noon},
        {QStringLiteral("Methods"), QStringLiteral("methods.txt"), 3, {}, {}}};
    facts.options = {{QStringLiteral("Years end with"), QStringLiteral("month")}};
    QBuffer page;
    page.open(QIODevice::WriteOnly);
    writePage(page, facts, report.report, report.control, report.model);
    return page.data();
}

// Without what looks do not change.
QByteArray withoutStyle(QByteArray page)
{
    page.replace(kPageStyle, "");
    const int hash = page.indexOf("'sha256-");
    return page.remove(hash, page.indexOf('\'', hash + 1) + 1 - hash);
}

// `count` slots of `years` years of months, but for one of each year if it is given. One in 24
// values is missing, and the others are far apart, so that all of a chart is drawn.
QByteArray largeFile(int count, int years, const QByteArray& name, int absentMonth = 0)
{
    QByteArray times;
    QByteArray values;
    for (int i = 0; i < 12 * years; ++i) {
        const QDate month = QDate(1900, 1, 1).addMonths(i);
        if (month.month() == absentMonth)
            continue;
        times += month.toString(QStringLiteral("yyyy-M-")).toLatin1() +
                 QByteArray::number(month.daysInMonth()) + " 24:00\n";
        const double value = i % 24 == 0 ? qQNaN() : (i * 7919) % 10007 / 7.0;
        values += QByteArray::number(value, 'f', 9) + '\n';
    }
    QByteArray text = "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nstart:1900-1-31 24:00\n"
                      "time_step_unit:month\ntime_steps:" +
                      QByteArray::number(times.count('\n')) + "\nEND_RUN_PREAMBLE\n" + times;
    for (int i = 0; i < count; ++i)
        text += "object_name: " + name + "\nslot_name: " + QByteArray::number(i) +
                "\nEND_SLOT_PREAMBLE\nunits: m3\nscale: 1\n" + values + "END_COLUMN\nEND_SLOT\n";
    return text + "END_RUN\n";
}

} // namespace

class PageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pagesAreWhole_data();
    void pagesAreWhole();
    void namesAreShownNotRun_data();
    void namesAreShownNotRun();
    void tablesHaveTheResult_data();
    void tablesHaveTheResult();
    void resultIsCompared_data();
    void resultIsCompared();
    void pagesAreSmall_data();
    void pagesAreSmall();
    void slotsAreLeftOut_data();
    void slotsAreLeftOut();
    void listsAreCut_data();
    void listsAreCut();
    void verdictIsShown_data();
    void verdictIsShown();
};

void PageTest::pagesAreWhole_data()
{
    addColumns<const char*, const char*, int>("input", "methods", "endMonth");
    addRows<const char*, const char*, int>({
        {"average-of-part", "tests/check/files/average-of-part.hts",
         "tests/check/files/average-of-part.txt", 12},
        {"pond", "tests/tool/files/pond.hts", "tests/tool/files/pond_methods.txt", 9},
        {"no-complete-year", "tests/check/files/no-complete-year.hts",
         "tests/check/files/sum-of-part.txt", 12},
        {"invalid-step", "tests/report/files/invalid-step.hts", "tests/check/files/sum-of-part.txt",
         12},
        {"wmo-steps", "tests/check/files/wmo-steps.hts", "tests/check/files/sum-of-rate.txt", 12},
        {"runs", "tests/report/files/runs.hts", "tests/report/files/runs_methods.txt", 9},
    });
}

void PageTest::pagesAreWhole()
{
    QFETCH(QString, input);
    QFETCH(QString, methods);
    QFETCH(int, endMonth);
    const QString name = QLatin1String(QTest::currentDataTag()) + QLatin1String(".html");
    const QByteArray page = withoutStyle(pageOf(sourceFile(input), sourceFile(methods), endMonth));
    if (page == sourceFile(QStringLiteral("tests/report/files/") + name))
        return;
    QTemporaryDir kept;
    kept.setAutoRemove(false);
    writeFile(kept.filePath(name), page);
    QFAIL(qPrintable(QStringLiteral("differs from tests/report/files: ") + kept.filePath(name)));
}

void PageTest::namesAreShownNotRun_data()
{
    addColumns<QByteArray, QByteArray>("name", "shown");
    addRows<QByteArray, QByteArray>({
        {"script", "<script>alert(1)</script>", "&lt;script&gt;alert(1)&lt;/script&gt;"},
        {"end of a style", "</style><b>", "&lt;/style&gt;&lt;b&gt;"},
        {"attribute", "\" onload=\"x", "&quot; onload=&quot;x"},
        {"quote", "' onload='x", "&#39; onload=&#39;x"},
        {"entity", "&lt;b&gt;", "&amp;lt;b&amp;gt;"},
        {"comment", "<!-- x", "&lt;!-- x"},
        {"right to left",
         "a\xe2\x80\xae"
         "b",
         "a\\u202eb"},
        {"control characters", "a\x1b[31mb", "a\\u001b[31mb"},
        {"marks of arg", "%1%2", "%1%2"},
        {"bytes that are no text", "a\xff\xfe", "a\xef\xbf\xbd"},
    });
}

void PageTest::namesAreShownNotRun()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, shown);
    QByteArray text = largeFile(2, 2, name);
    text.replace("units: m3", "units: " + name).replace("slot_name: 1", "slot_name: " + name);
    const QByteArray page = pageOf("owner:" + name + '\n' + text, "*.*: Sum\n" + name);
    QVERIFY(page.count(shown) >= 6);
    const QByteArray plain = pageOf(largeFile(2, 2, "Lake"), "*.*: Sum\nLake");
    for (const char* markup : {"<script", "<!--", "onload=\"", "<b>", "</style>"})
        QCOMPARE(page.count(markup) - page.count("<b>Sum"),
                 plain.count(markup) - plain.count("<b>Sum"));
    QVERIFY(page.contains("content=\"default-src 'none'; style-src 'sha256-"));
}

void PageTest::tablesHaveTheResult_data()
{
    addColumns<const char*, int>("name", "endMonth");
    addRows<const char*, int>({{"daily, two runs", "rivers_daily", 9},
                               {"monthly", "basins_monthly", 12},
                               {"other years", "basins_monthly", 3}});
}

// To the last digit of the annual file.
void PageTest::tablesHaveTheResult()
{
    QFETCH(QString, name);
    QFETCH(int, endMonth);
    const QString methods = QStringLiteral("examples/%1_methods.txt").arg(name);
    const QByteArray text = sourceFile(QStringLiteral("examples/%1.hts").arg(name));
    const ConvertedText converted =
        convertedText(text, QStringLiteral(SOURCE_DIR "/") + methods, endMonth);
    QBuffer result;
    result.setData(converted.result);
    result.open(QIODevice::ReadOnly);
    HtsPackage package;
    QVERIFY(package.read(result).ok());
    QStringList expected;
    for (const auto& slot : package.values.at(0)) {
        for (const double value : slot.at(0))
            expected.append(QString::number(value, 'g', 17));
    }
    static const QRegularExpression row(
        QStringLiteral(R"(<tr><th scope="row">\d+</th><td class="n[ f]*">([^<]+)</td>)"));
    QStringList shown;
    const QString page = QString::fromUtf8(pageOf(text, sourceFile(methods), endMonth));
    for (auto match = row.globalMatch(page); match.hasNext();)
        shown.append(QString::number(match.next().captured(1).toDouble(), 'g', 17));
    QCOMPARE(shown, expected);
    const int slotCount = int(package.values.at(0).size());
    const int bandCount = package.values.size() > 1 ? slotCount : 0;
    for (const auto& [style, count] : {std::pair("input", slotCount),
                                       {"annual", slotCount},
                                       {"band", bandCount},
                                       {"median", bandCount}})
        QCOMPARE(page.count(QStringLiteral("<path class=\"%1\" d=\"M").arg(QLatin1String(style))),
                 count);
}

void PageTest::resultIsCompared_data()
{
    addColumns<const char*, QByteArray, QByteArray, const char*>("file", "from", "to",
                                                                 "differences");
    const char* const rivers = "examples/rivers_daily";
    const char* const runs = "tests/report/files/runs";
    addRows<const char*, QByteArray, QByteArray, const char*>({
        {"same", rivers, "", "", ""},
        {"one digit", rivers, "4.723110711085", "4.723110711086",
         "Choptank.Flow differs in 1 year; in 2000 the result has 4.723110711086, a conversion "
         "gives "
         "4.723110711085|run 2: Choptank.Flow differs in 1 year"},
        {"missing", rivers, "1.239903157600", "NaN",
         "Choptank.Flow differs in 1 year; in 2002 the result has NaN, a conversion gives "
         "1.2399031576|run 2: Choptank.Flow differs in 1 year"},
        {"name", rivers, "slot_name: Storage", "slot_name: %1",
         "the result has Mill Pond.%1, which a conversion does not give|the result has no Mill "
         "Pond.Storage"},
        {"years", rivers, "2011-9-30 24:00\n", "2011-8-31 24:00\n",
         "run 1 of the result has other years: 12 from 2000-9-30 24:00 to 2011-8-31 24:00|run 2 of "
         "the result has other years: 12 from 2000-9-30 24:00 to 2011-8-31 24:00"},
        {"name in three runs", runs, "slot_name: Level", "slot_name: %1",
         "the result has Lake.%1, which a conversion does not give|the result has no Lake.Level"},
        {"third run", runs, "151.800000000000", "2", "run 3: Lake.Flow differs in 1 year"},
        {"fewer runs", runs, "number_of_runs:3", "number_of_runs:2", "the result has 2 runs of 3"},
    });
}

void PageTest::resultIsCompared()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    const QString methods = QStringLiteral(SOURCE_DIR "/%1_methods.txt").arg(file);
    const QByteArray text = sourceFile(file + QLatin1String(".hts"));
    QByteArray result = convertedText(text, methods, 9).result;
    QVERIFY(from.isEmpty() || result.contains(from));
    result.replace(from, to);
    FileReport report = reportOn(text, methods, 9);
    QVERIFY(compareWith(result, report).ok());
    QTEST(report.model.differences.join(QLatin1Char('|')), "differences");
    QCOMPARE(report.model.differenceCount, report.model.differences.size());
}

void PageTest::pagesAreSmall_data()
{
    addColumns<int, int>("count", "years");
    addRows<int, int>({{"one slot", 1, 100}, {"200 slots", 200, 60}, {"many years", 3, 500}});
}

void PageTest::pagesAreSmall()
{
    QFETCH(int, count);
    QFETCH(int, years);
    const int limit = 40000 + 15000 * count + 250 * years * count;
    for (const QByteArray& name : {QByteArray("Lake"), QByteArray(3000, '"')}) {
        const QByteArray page = pageOf(largeFile(count, years, name), "*.*: SumNaN");
        QVERIFY2(page.size() < limit, QByteArray::number(page.size()).constData());
        QCOMPARE(page.count("<section class=\"slot\""), count);
    }
}

void PageTest::slotsAreLeftOut_data()
{
    addColumns<const char*, int, int, const char*>("pattern", "maxCount", "count", "text");
    addRows<const char*, int, int, const char*>({
        {"all", "*", 200, 4, ""},
        {"some", "Lake.[12]", 200, 0,
         "<p class=\"rest\">4 slots that are converted are not shown: <code>--slots</code> asks "
         "for "
         "others.</p>\n</section>"},
        {"one", "*.3", 200, 1, "3 slots that are converted are not shown: <code>--slots</code>"},
        {"too many", "*", 3, 3,
         "<p class=\"rest\">1 slot that is converted is not shown: <code>--all-slots</code> shows "
         "all, <code>--slots</code> those of a name.</p>\n</section>"},
    });
}

void PageTest::slotsAreLeftOut()
{
    QFETCH(QString, pattern);
    QFETCH(int, maxCount);
    QFETCH(int, count);
    QFETCH(QString, text);
    const QString page =
        QString::fromUtf8(pageOf(largeFile(4, 2, "Lake"), "*.*: Sum", 12, {pattern, maxCount}));
    QCOMPARE(page.count(QLatin1String("<section class=\"slot\"")), count);
    QVERIFY(page.contains(text));
    QCOMPARE(page.contains(QLatin1String("not shown")), !text.isEmpty());
}

void PageTest::listsAreCut_data()
{
    addColumns<QByteArray, QByteArray, QByteArray, int, QByteArray>("input", "result", "item",
                                                                    "count", "more");
    const QByteArray none = "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\nEND_RUN\n";
    addRows<QByteArray, QByteArray, QByteArray, int, QByteArray>({
        {"40 slots left out", largeFile(41, 2, "Lake"), "", "<li><bdi>Lake.", 40, ""},
        {"41 slots", largeFile(42, 2, "Lake"), "", "<li><bdi>Lake.", 40,
         "<li>1 more</li>\n</ul>\n</section>"},
        {"20 gaps", largeFile(1, 20, "Lake", 4), "", "<li>Gap: ", 20, ""},
        {"100 gaps", largeFile(1, 100, "Lake", 4), "", "h2v4h-2z", 100, "<li>80 more gaps.</li>"},
        {"101", largeFile(1, 101, "Lake", 4), "", "h2v4h-2z", 100, "<li>81 more gaps.</li>"},
        {"20 short years", largeFile(1, 20, "Lake", 4), "", "<li>The year ", 20, ""},
        {"21", largeFile(1, 21, "Lake", 4), "", "<li>The year ", 20, "<li>1 more such years.</li>"},
        {"40 differences", largeFile(39, 1, "Lake"), none, "<li>the result has no ", 39, ""},
        {"41", largeFile(40, 1, "Lake"), none, "<li>the result has no ", 39,
         "<li>1 more</li>\n</ul>\n<p class=\"advice\">What to do: Convert the input again, with "
         "these methods and this month, or find out which of them the file is from.</p></div>\n"
         "<h3>"},
        {"differences", largeFile(39, 1, "Lake"), none, "The annual file is not", 1,
         "<h3>Result</h3>\n<div class=\"finding\"><p><b class=\"warning\">warning</b> The annual "
         "file is not what a conversion gives; its values are shown.</p>\n<ul>\n<li>run 1 of the "
         "result has other years: 0 from  to </li>\n<li>the result has no Lake.0</li>\n<li>"},
        {"findings", largeFile(1, 26, "Lake").replace("nan", "x"), "", "x&quot; is not a number",
         10, "<li>3 more, which <code>htstool check --all</code> lists</li>\n</ul>\n"},
        {"kinds", largeFile(12, 2, QByteArray(3000, '&')), "", "1 of 24 values of ", 7,
         "<p><b class=\"note\">note</b> <code>slot-without-rule</code>: 11</p>\n<h3>"},
    });
}

void PageTest::listsAreCut()
{
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, result);
    QFETCH(QByteArray, item);
    QFETCH(int, count);
    QFETCH(QByteArray, more);
    const QByteArray page =
        pageOf(input, result.isEmpty() ? "*.0: Sum" : "*.*: Sum", 12, {}, result);
    QCOMPARE(page.count(item), count);
    QVERIFY(page.contains(more));
    QCOMPARE(page.contains("<li>1 more"), more.startsWith("<li>1 more"));
}

void PageTest::verdictIsShown_data()
{
    addColumns<QByteArray, QByteArray, QByteArray>("input", "methods", "verdict");
    const QByteArray file = largeFile(1, 2, "Lake");
    addRows<QByteArray, QByteArray, QByteArray>({
        {"converts", file, "*.*: Sum", "Converts"},
        {"no method", file, "",
         "Does not convert: No series slots with valid methods found in input HTS file"},
        {"cut", file.left(file.size() - 60), "*.*: Sum",
         "Does not convert: Cannot read slot preamble"},
        {"no timesteps", "END_PACKAGE_PREAMBLE\ntime_steps:0\nEND_RUN_PREAMBLE\nEND_RUN\n",
         "*.*: Sum", "Does not convert: Cannot create a complete year from the input HTS file"},
        {"part of a year", QByteArray(file).replace("time_steps:24", "time_steps:7"), "*.*: Sum",
         "Does not convert: Cannot read slot preamble"},
        {"nothing", "", "*.*: Sum", "Does not convert: Cannot read package preamble"},
        {"other file", "a,b\n1,2\n", "*.*: Sum", "Does not convert: Cannot read package preamble"},
        {"no end",
         QByteArray(file).replace("END_RUN\n", "slot_type: TableSlot\nEND_SLOT_PREAMBLE\n1\n"),
         "*.*: Sum", "A conversion never ends"},
    });
}

void PageTest::verdictIsShown()
{
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, methods);
    QFETCH(QByteArray, verdict);
    const QByteArray page = pageOf(input, methods);
    const bool isGood = verdict == "Converts";
    const QByteArray mark = isGood ? "good\"><span aria-hidden=\"true\">&#10004;</span> "
                                   : "bad\"><span aria-hidden=\"true\">&#10008;</span> ";
    const auto at = page.indexOf("<p class=\"verdict ");
    const QByteArray expected = mark + verdict + "</p>\n<ul";
    QCOMPARE(page.mid(at + 18, expected.size()), expected);
    QVERIFY(page.endsWith("</main>\n</body>\n</html>\n"));
}

HTS_TEST(PageTest, NoApplication)

#include "tst_page.moc"
