#include <QtTest>

#include <algorithm>

#include <QDirIterator>
#include <QImage>
#include <QRegularExpression>

#include "annualize/aggmethods.h"
#include "annualize/timestepunit.h"
#include "app/options.h"
#include "tests/app/annualizerrun.h"
#include "tests/help/helppage.h"
#include "tests/help/messagetexts.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

const QString kPage = QStringLiteral(SOURCE_DIR "/Help/HtsAnnualizerHelp.html");

// A page that opens at once, on a phone too.
constexpr int kLargestPage = 400 * 1000;

// Paths of the program's own sources. Those of the usage text are left out: -h shows it.
QStringList sourceFiles()
{
    QStringList paths;
    for (const char* folder : {"annualize", "app", "gui", "hts", "utils"}) {
        QDirIterator files(QStringLiteral(SOURCE_DIR "/") + QLatin1String(folder),
                           {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files);
        while (files.hasNext()) {
            const QString path = files.next();
            const QString name = QFileInfo(path).fileName();
            if (name != QLatin1String("usage.cpp") && name != QLatin1String("options.cpp"))
                paths.append(path);
        }
    }
    return paths;
}

// Attributes of the program's own pictures contain the picture itself.
const QString kPictureStart = QStringLiteral("data:image/png;base64,");

// A text as the name of its place: lower case, everything but letters and digits a hyphen.
QString placeName(const QString& text)
{
    static const QRegularExpression others(QStringLiteral("[^a-z0-9]+"));
    const QStringList words = text.toLower().split(others, Qt::SkipEmptyParts);
    return words.join(QLatin1Char('-'));
}

// The two numbers of a method's row in the page.
struct MethodRow
{
    QString method;
    QStringList values;
};

QVector<MethodRow> methodRows(const HelpPage& page)
{
    QVector<MethodRow> rows;
    bool isInTable = false;
    for (const PageElement& element : page.elements) {
        if (element.name == QLatin1String("table"))
            isInTable = element.attribute("id") == QLatin1String("methods-table");
        if (!isInTable || !element.isInside("tbody"))
            continue;
        if (element.name == QLatin1String("th"))
            rows.append({element.text, {}});
        else if (element.attribute("class") == QLatin1String("number"))
            rows.last().values.append(element.text);
    }
    return rows;
}

// The texts of the codes that head rows of the table with the caption.
QStringList rowCodes(const HelpPage& page, const QString& caption)
{
    QStringList codes;
    QString lastCaption;
    for (const PageElement& element : page.elements) {
        if (element.name == QLatin1String("caption"))
            lastCaption = element.text;
        else if (lastCaption == caption && element.name == QLatin1String("code") &&
                 element.isInside("tbody") && element.isInside("th"))
            codes.append(element.text);
    }
    return codes;
}

QStringList supportedMethods()
{
    QStringList words;
    for (const AggMethod& method : aggMethods()) {
        if (method.isSupported())
            words.append(method.word);
    }
    return words;
}

QStringList sorted(QStringList words)
{
    words.sort();
    return words;
}

// Whether years are complete under the same conditions with both units.
bool isSameRule(const TimestepUnit& unit, const TimestepUnit& other)
{
    const QDateTime start(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    return unit.completesYear == other.completesYear &&
           unit.latestEndOfFirst(start) == other.latestEndOfFirst(start);
}

// The values of the first slot of an annual file, with four digits at most.
QStringList firstValues(const QByteArray& annualFile)
{
    QStringList values;
    bool isValue = false;
    for (const QByteArray& line : annualFile.split('\n')) {
        if (line == "END_COLUMN")
            break;
        if (isValue) {
            const bool isMissing = line == "NaN";
            values.append(isMissing ? QStringLiteral("NaN")
                                    : QString::number(line.toDouble(), 'g', 5));
        }
        isValue = isValue || line.startsWith("method: ");
    }
    return values;
}

const QString kExampleArguments = QStringLiteral("-i lake.hts -c methods.txt -o annual.hts -y 9");

// The example's files, and the program on the path.
void writeExample(const HelpPage& page, AnnualizerRun& run)
{
    run.write("lake.hts", page.textOf("example-input").toUtf8());
    run.write("methods.txt", page.textOf("example-methods").toUtf8());
    run.set("PATH",
            QFileInfo(QStringLiteral(HTS_ANNUALIZER)).path() + QLatin1String(":/usr/bin:/bin"));
}

} // namespace

class TestHelpPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QCOMPARE(m_page.error, QString()); }

    void isValidHtml()
    {
        QProcess tidy;
        tidy.setStandardInputFile(kPage); // tidy opens a file that is named for writing, too
        tidy.start(QStringLiteral("tidy"), words("-errors -quiet -utf8 --doctype html5"));
        QVERIFY2(tidy.waitForStarted(), "tidy is missing; install the package tidy");
        QVERIFY(tidy.waitForFinished());
        QCOMPARE(QString::fromUtf8(tidy.readAllStandardError()), QString());
        QCOMPARE(tidy.exitCode(), 0);
    }

    void isMadeFromItsTextAndPictures()
    {
        QProcess check;
        check.start(QStringLiteral("bash"),
                    {QStringLiteral(SOURCE_DIR "/Help/make-help"), QStringLiteral("--check")});
        QVERIFY(check.waitForFinished());
        QCOMPARE(QString::fromUtf8(check.readAllStandardError()), QString());
        QCOMPARE(check.exitCode(), 0);
    }

    void isBesideTheProgram()
    {
        const QString folder = QFileInfo(QStringLiteral(HTS_ANNUALIZER)).path();
        QVERIFY(sourceFile(folder + QLatin1String("/Help/HtsAnnualizerHelp.html")) ==
                sourceFile(kPage));
    }

    void isSmall() { QVERIFY(sourceFile(kPage).size() < kLargestPage); }

    void needsNoOtherFileAndNoScript()
    {
        const QStringList allowed = words(
            "a body br caption code dd details dl dt em figure figcaption h1 h2 h3 head header "
            "html img div li line main meta nav ol p pre rect section strong style summary svg "
            "table tbody td text th thead title tr ul");
        for (const PageElement& element : qAsConst(m_page.elements)) {
            QVERIFY2(allowed.contains(element.name), qPrintable(element.name));
            for (auto i = element.attributes.cbegin(); i != element.attributes.cend(); ++i) {
                const QString shown = i.key() + QLatin1String("=") + i.value().left(60);
                if (i.key() == QLatin1String("src"))
                    QVERIFY2(i.value().startsWith(kPictureStart), qPrintable(shown));
                else if (i.key() == QLatin1String("href"))
                    QVERIFY2(i.value().startsWith(QLatin1Char('#')), qPrintable(shown));
                else
                    QVERIFY2(!i.value().contains(QLatin1String("://")), qPrintable(shown));
                QVERIFY2(!i.key().startsWith(QLatin1String("on")), qPrintable(shown));
                QVERIFY2(i.key() != QLatin1String("srcset"), qPrintable(shown));
                QVERIFY2(i.key() != QLatin1String("http-equiv"), qPrintable(shown));
                QVERIFY2(i.key() != QLatin1String("style"), qPrintable(shown));
            }
        }
        const QString style = m_page.only("style").text;
        QVERIFY(!style.contains(QLatin1String("url(")));
        QVERIFY(!style.contains(QLatin1String("@import")));
    }

    void linksLeadToPlacesInThePage()
    {
        QStringList places;
        for (const PageElement& element : qAsConst(m_page.elements))
            places.append(element.attribute("id"));
        for (const PageElement& element : qAsConst(m_page.elements)) {
            const QString link = element.attribute("href").mid(1);
            const QString label = element.attribute("aria-labelledby");
            QVERIFY2(places.contains(link), qPrintable(link));
            QVERIFY2(places.contains(label), qPrintable(label));
        }
    }

    void contentsReachEveryHeading()
    {
        QStringList headings;
        QStringList contents;
        for (const PageElement& element : qAsConst(m_page.elements)) {
            const bool isHeading =
                element.name == QLatin1String("h2") || element.name == QLatin1String("h3");
            if (isHeading && !element.isInside("nav"))
                headings.append(QLatin1Char('#') + element.attribute("id") + QLatin1Char(' ') +
                                element.text);
            if (element.name == QLatin1String("a") && element.isInside("nav"))
                contents.append(element.attribute("href") + QLatin1Char(' ') + element.text);
        }
        QVERIFY(headings.size() > 25);
        QCOMPARE(contents, headings);
    }

    void messagesHavePlaces_data()
    {
        // The places of the first and the last section or part of one, and what holds the texts.
        addTable<const char*, const char*, QByteArray, const char*, int>(
            {"firstHeading", "lastHeading", "around", "prefix", "least"},
            {{"messages", "messages-conversion", "messages-command-line", "dt", "message-", 40},
             {"faults of the program", "messages-internal", "messages-internal", "li", "message-",
              7},
             {"diagnostic lines", "diagnostic-lines", "diagnostic-lines", "th", "line-", 17}});
    }

    void messagesHavePlaces()
    {
        QFETCH(QString, firstHeading);
        QFETCH(QString, lastHeading);
        QFETCH(QByteArray, around);
        QFETCH(QString, prefix);
        QFETCH(int, least);

        QString heading;
        bool isInside = false;
        QStringList places;
        for (const PageElement& element : qAsConst(m_page.elements)) {
            if (element.name == QLatin1String("h2") || element.name == QLatin1String("h3")) {
                isInside =
                    (isInside && heading != lastHeading) || element.attribute("id") == firstHeading;
                heading = element.attribute("id");
            }
            if (!isInside || element.name != QLatin1String("code") ||
                !element.isInside(around.constData()))
                continue;
            const QString expected = prefix + placeName(element.text);
            const QString place = element.attribute("id");
            // The title of a box that shows several messages has its place at the first of them.
            const bool isRepeated = place.isEmpty() && places.contains(expected);
            QCOMPARE(isRepeated ? expected : place, expected);
            places.append(expected);
        }
        places.removeDuplicates();
        QVERIFY2(places.size() >= least, qPrintable(QString::number(places.size())));
    }

    void wideBlocksScrollByKeyboard()
    {
        const QString style = m_page.only("style").text;
        QStringList labels;
        int scrollers = 0;
        for (const PageElement& element : qAsConst(m_page.elements)) {
            const bool isScroller = element.attribute("class") == QLatin1String("scroll");
            if (element.name == QLatin1String("table"))
                QCOMPARE(element.path.last(), QStringLiteral("div"));
            if (element.name != QLatin1String("pre") && !isScroller)
                continue;
            const QString label = element.attribute("aria-label");
            QCOMPARE(element.attribute("tabindex"), QStringLiteral("0"));
            QCOMPARE(element.attribute("role"), QStringLiteral("region"));
            QVERIFY2(!label.isEmpty() && !labels.contains(label), qPrintable(label));
            labels.append(label);
            scrollers += isScroller ? 1 : 0;
        }
        QCOMPARE(scrollers, m_page.named("table").size());
        QVERIFY(labels.size() > 20);
        for (const char* selector : {"pre", ".scroll"}) {
            const QRegularExpression rule(
                QStringLiteral(R"(^%1 \{[^}]*overflow-x: auto)")
                    .arg(QRegularExpression::escape(QLatin1String(selector))),
                QRegularExpression::MultilineOption);
            QVERIFY2(style.contains(rule), selector);
        }
    }

    void namesOfPlacesAreUnique()
    {
        QStringList places;
        for (const PageElement& element : qAsConst(m_page.elements)) {
            if (element.attributes.contains(QStringLiteral("id")))
                places.append(element.attribute("id"));
        }
        QVERIFY(!places.isEmpty());
        QCOMPARE(places.removeDuplicates(), 0);
    }

    void picturesHaveTheirSizeAndAText()
    {
        const QVector<PageElement> pictures = m_page.named("img");
        QCOMPARE(pictures.size(), 5);
        for (const PageElement& picture : pictures) {
            const QByteArray base64 = picture.attribute("src").mid(kPictureStart.size()).toLatin1();
            const QImage image = QImage::fromData(QByteArray::fromBase64(base64), "PNG");
            QVERIFY(!image.isNull());
            QCOMPARE(picture.attribute("width"), QString::number(image.width()));
            QCOMPARE(picture.attribute("height"), QString::number(image.height()));
            QVERIFY(picture.attribute("alt").size() > 20);
        }
        for (const PageElement& drawing : m_page.named("svg")) {
            QCOMPARE(drawing.attribute("role"), QStringLiteral("img"));
            QVERIFY(drawing.attribute("aria-label").size() > 20);
        }
    }

    void headingsSkipNoLevel()
    {
        int level = 0;
        int topHeadings = 0;
        static const QRegularExpression heading(QStringLiteral("^h([1-6])$"));
        for (const PageElement& element : qAsConst(m_page.elements)) {
            const QRegularExpressionMatch match = heading.match(element.name);
            if (!match.hasMatch())
                continue;
            const int next = match.captured(1).toInt();
            QVERIFY2(next <= level + 1, qPrintable(element.text));
            level = next;
            topHeadings += level == 1 ? 1 : 0;
        }
        QCOMPARE(topHeadings, 1);
    }

    void tableHeadersHaveAScope()
    {
        for (const PageElement& header : m_page.named("th")) {
            const bool isColumn = header.isInside("thead");
            QVERIFY2(header.attribute("scope") ==
                         (isColumn ? QLatin1String("col") : QLatin1String("row")),
                     qPrintable(header.text));
        }
        QCOMPARE(m_page.named("caption").size(), m_page.named("table").size());
    }

    void adaptsToPhonesAndDarkness()
    {
        QString viewport;
        for (const PageElement& meta : m_page.named("meta")) {
            if (meta.attribute("name") == QLatin1String("viewport"))
                viewport = meta.attribute("content");
        }
        QCOMPARE(viewport, QStringLiteral("width=device-width, initial-scale=1"));
        const QString style = m_page.only("style").text;
        QVERIFY(style.contains(QLatin1String("@media (prefers-color-scheme: dark)")));
    }

    void namesEveryMethod()
    {
        const QStringList codes = m_page.codes();
        for (const AggMethod& method : aggMethods())
            QVERIFY2(codes.contains(method.word), qPrintable(method.word));
        QCOMPARE(
            sorted(rowCodes(m_page, QStringLiteral("What a missing value does, method by method"))),
            sorted(supportedMethods()));
    }

    void hasARowForEveryRuleOfUnits()
    {
        QStringList expected = {QStringLiteral("day"),
                                QStringLiteral("hour")}; // "any other, such as"
        for (const TimestepUnit& unit : timestepUnits()) {
            if (!isSameRule(unit, timestepUnitOrDay(QString())))
                expected.append(unit.word);
        }
        QCOMPARE(sorted(rowCodes(
                     m_page, QStringLiteral("When the first and the last year count as complete"))),
                 sorted(expected));
    }

    void namesEveryOption()
    {
        const QStringList codes = m_page.codes();
        for (const Option& option : kOptions) {
            const QString text = QLatin1Char('-') + QString(QLatin1Char(option.letter));
            QVERIFY2(codes.contains(text), qPrintable(text));
        }
    }

    void hasMessage_data()
    {
        QTest::addColumn<QString>("text");
        for (const QByteArray& line : sourceFile("tests/help/messages.txt").split('\n')) {
            if (!line.isEmpty() && !line.startsWith('#'))
                QTest::newRow(line.constData()) << QString::fromUtf8(line);
        }
    }

    void hasMessage()
    {
        QFETCH(QString, text);
        const QVector<PageElement> codes = m_page.named("code");
        QVERIFY2(std::any_of(codes.begin(), codes.end(),
                             [&](const PageElement& code) {
                                 return code.text.simplified().contains(text) &&
                                        code.attribute("id").startsWith(QLatin1String("message-"));
                             }),
                 "not in the page, or without a place that a link can lead to");

        static const QString literals = [] {
            QStringList all;
            for (const QString& path : sourceFiles())
                all += stringLiterals(sourceFile(path));
            return all.join(QLatin1Char('\n'));
        }();
        QVERIFY2(literals.contains(text), "the program has no such text");
    }

    // A new message in the sources must be in the page, or be listed here.
    void hasEveryMessageOfTheSources()
    {
        const QStringList noMessages = {
            QStringLiteral("contains undefined environment variable(s):"),
            QStringLiteral("HTS Files (*.hts);;All Files (*)"),
            QStringLiteral("HTS Files (*.hts)"),
            QStringLiteral("HTS Files (*.hts);;"),
            QStringLiteral("All Files (*)"),
            QStringLiteral("HTML Files (*.html);;All Files (*)"),
            QStringLiteral("HTS Annualizer (v"),
            QStringLiteral("Save Diagnostic Output"),
            // of htstool alone
            QStringLiteral("a line is longer than 64 MiB"),
            // pieces of messages that the page has in full
            QStringLiteral("in line \""),
            QStringLiteral("HtsAnnualizer Error: Problem"),
        };
        const QString page = m_page.bodyText();
        int count = 0;
        QStringList missing;
        for (const QString& path : sourceFiles()) {
            for (QString text : messageTexts(sourceFile(path))) {
                ++count;
                text.remove(QLatin1Char('&')); // marks the key of a menu entry
                if (!noMessages.contains(text) && !page.contains(text))
                    missing.append(QFileInfo(path).fileName() + QLatin1String(": ") + text);
            }
        }
        QCOMPARE(missing.join(QLatin1Char('\n')), QString());
        QVERIFY(count > 50);
        for (const char* verb : {"opening", "writing"}) {
            const QString text = QStringLiteral("HtsAnnualizer Error: Problem %1 log file named")
                                     .arg(QLatin1String(verb));
            QVERIFY2(page.contains(text), qPrintable(text));
        }
    }

    void exampleGivesTheResultShown()
    {
        AnnualizerRun run;
        writeExample(m_page, run);
        const QString command = QStringLiteral("HtsAnnualizer ") + kExampleArguments;
        QVERIFY(m_page.codes().contains(command));
        run.startShell(command);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(QString::fromUtf8(run.read("annual.hts")), m_page.textOf("example-result"));
    }

    void methodsGiveTheNumbersShown()
    {
        QStringList methods;
        for (const MethodRow& row : methodRows(m_page)) {
            methods.append(row.method);
            AnnualizerRun run;
            run.write("a.hts", m_page.textOf("example-input").toUtf8());
            run.write("c.txt", QStringLiteral("Mill Creek.Flow: %1\n").arg(row.method).toUtf8());
            run.convert(words("-y 9"));
            QCOMPARE(run.exitCode, 0);
            QVERIFY(run.result().contains("\nmethod: " + row.method.toUtf8()));
            QCOMPARE(firstValues(run.result()), row.values);
        }
        QCOMPARE(methods, supportedMethods());
    }

    void shellExampleConvertsAFolder()
    {
        AnnualizerRun run;
        QDir().mkdir(run.path("daily"));
        run.write("daily/my lake.hts", m_page.textOf("example-input").toUtf8());
        writeExample(m_page, run);
        const QString example = m_page.textOf("shell-example");
        run.startShell(example);
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.output, QByteArray("daily/my lake.hts: done\n"));
        QCOMPARE(run.exitCode, 0);

        run.write("daily/none.hts", "no HTS file\n");
        run.startShell(example);
        QCOMPARE(run.exitCode, 1);
        const QStringList lines = QString::fromUtf8(run.output).split(QLatin1Char('\n'));
        QCOMPARE(lines.value(0), QStringLiteral("daily/my lake.hts: done"));
        QCOMPARE(lines.value(1), QStringLiteral("daily/none.hts: FAILED"));
        QVERIFY(lines.contains(QStringLiteral("Cannot read package preamble")));
        QCOMPARE(QString::fromUtf8(run.read("annual/my lake.hts")),
                 m_page.textOf("example-result"));
    }

    void shellExampleReportsAnEmptyFolder()
    {
        AnnualizerRun run;
        QDir().mkdir(run.path("daily"));
        writeExample(m_page, run);
        run.startShell(m_page.textOf("shell-example"));
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.output, QByteArray("no HTS files in daily\n"));
        QCOMPARE(run.exitCode, 1);
    }

    void pipeExampleGivesTheResultShown()
    {
        AnnualizerRun run;
        writeExample(m_page, run);
        run.startShell("gzip lake.hts");
        run.startShell(m_page.textOf("pipe-example"));
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.exitCode, 0);
        run.startShell("zcat annual.hts.gz");
        QCOMPARE(QString::fromUtf8(run.output), m_page.textOf("example-result"));
        QVERIFY(run.read("lake.log").endsWith(kCreated));
    }

    void logOfTheExampleIsTheOneShown()
    {
        AnnualizerRun run;
        writeExample(m_page, run);
        run.startShell(QStringLiteral("HtsAnnualizer ") + kExampleArguments);
        const QByteArray shown = m_page.textOf("example-log").toUtf8() + '\n';
        QVERIFY(shown.contains("Fri Mar 1 09:30:00 2024"));
        QCOMPARE(withoutTime(run.read("annual.log")), withoutTime(shown));
    }

    void monthGluedToItsOptionIsIgnored_data()
    {
        addTable<QByteArray>({"lastYear"}, {{"-y 9", "end:2001-9-30 24:00"},
                                            {"-y9", "end:2001-12-31 24:00"},
                                            {"-y=9", "end:2001-12-31 24:00"}});
    }

    void monthGluedToItsOptionIsIgnored()
    {
        QFETCH(QByteArray, lastYear);
        const QString arguments = QString::fromLatin1(QTest::currentDataTag());
        QVERIFY(m_page.codes().contains(arguments));

        AnnualizerRun run;
        writeExample(m_page, run);
        run.startShell(QStringLiteral("HtsAnnualizer -i lake.hts -c methods.txt -o annual.hts ") +
                       arguments);
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        const QByteArrayList result = run.read("annual.hts").split('\n');
        QVERIFY(result.contains(lastYear));
    }

private:
    HelpPage m_page{sourceFile(kPage)};
};

HTS_TEST(TestHelpPage, QCoreApplication)
#include "tst_helppage.moc"
