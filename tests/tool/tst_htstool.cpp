// htstool as a process: arguments, exit codes, what goes to which stream.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include "check/topic.h"
#include "tests/support/faults.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "tests/tool/toolrun.h"

namespace {

const QByteArray kHint = "Try \"htstool --help\".\n";

void writePond(const ToolRun& run)
{
    run.write("pond.hts", sourceFile("tests/tool/files/pond.hts"));
    run.write("pond_methods.txt", sourceFile("tests/tool/files/pond_methods.txt"));
}

// A smallest file of the check's tests.
QByteArray codeFile(const char* code)
{
    return sourceFile(QStringLiteral("tests/check/files/%1.hts").arg(QLatin1String(code)));
}

std::vector<const FindingKind*> allKinds()
{
    std::vector<const FindingKind*> kinds;
    for (const Topic* topic : findingTopics())
        kinds.insert(kinds.end(), topic->kinds.begin(), topic->kinds.end());
    return kinds;
}

} // namespace

class HtstoolTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTexts_data();
    void showsTexts();
    void helpTextsAreWhole();
    void sentinelsAreAdded();
    void endMonthOfMinusOneIsDecember();
    void rulesAreNotJudgedWhenTheFirstRunCannotBeRead();
    void rulesAreJudgedOverAllFiles_data();
    void rulesAreJudgedOverAllFiles();
    void wrongUsageIsRefused_data();
    void wrongUsageIsRefused();
    void exitCodeIsTheWorst_data();
    void exitCodeIsTheWorst();
    void examplesHaveOnlyTheseWarnings();
    void countsWhatIsNotShown();
    void showsAPlanWithoutYears();
    void foreignTextsDoNotChangeTheReport();
    void foreignTextsDoNotReachTheTerminal();
    void nearestOfLongNamesTakesNoTime();
    void explainsEveryCode();
    void readsTheStandardInput();
    void usesColoursOnATerminalOnly();
    void writesCounts();
    void inputsAreNotOverwritten_data();
    void inputsAreNotOverwritten();
    void exportsLongForm();
    void exportsWideForm();
    void exportsOneRun();
    void exportsWhatIsAskedFor_data();
    void exportsWhatIsAskedFor();
    void exportReportsText();
    void exportFailsForABrokenFile();
    void failedExportLeavesTheFileAsItWas_data();
    void failedExportLeavesTheFileAsItWas();
    void exportReplacesWhatThePathLeadsTo();
    void failedReadIsReported();
    void controlFileThatCannotBeReadToItsEndIsReported();
    void fullDiskIsReported();
    void lostOutputIsReported_data();
    void lostOutputIsReported();
    void closedStandardStreamsDoNotBecomeFiles();
    void namesAreUtf8UnderTheCLocale();
    void namesThatAreNotTextAreRefused();
};

void HtstoolTest::showsTexts_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("firstLine");
    for (const char* line : {"-h", "--help"})
        QTest::newRow(line) << words(line)
                            << QByteArray("Usage: htstool COMMAND [OPTIONS] FILE...");
    for (const char* line : {"-v", "--version", "check -v", "export --version"})
        QTest::newRow(line) << words(line) << QByteArray("htstool " PROJECT_VERSION);
    for (const char* line : {"check -h", "check --help", "check a.hts --help"})
        QTest::newRow(line) << words(line) << QByteArray("Usage: htstool check [OPTIONS] FILE...");
    for (const char* line : {"diff -h", "diff --help"})
        QTest::newRow(line) << words(line) << QByteArray("Usage: htstool diff [OPTIONS] OLD NEW");
    for (const char* line : {"export -h", "export --help"})
        QTest::newRow(line) << words(line)
                            << QByteArray("Usage: htstool export [OPTIONS] -o OUT.csv FILE");
}

void HtstoolTest::showsTexts()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, firstLine);
    ToolRun run;
    run.start(arguments);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.output.split('\n').first(), firstLine);
    QVERIFY(run.output.endsWith('\n'));
}

// files/help.txt has the help of each command.
void HtstoolTest::helpTextsAreWhole()
{
    QByteArray texts;
    for (const char* line : {"--help", "check --help", "export --help", "import --help",
                             "report --help", "diff --help", "explain --help"}) {
        ToolRun run;
        run.start(line);
        texts += "$ htstool " + QByteArray(line) + '\n' + run.output;
    }
    QCOMPARE(texts.split('\n'), sourceFile("tests/tool/files/help.txt").split('\n'));
}

void HtstoolTest::sentinelsAreAdded()
{
    ToolRun run;
    writePond(run);
    run.start("check pond.hts --sentinel 13.25 --sentinel -77 --sentinel=21");
    for (const QByteArray number : {"13.25", "21"})
        QVERIFY(run.output.contains(": note: " + number +
                                    " occurs once among the values of Mill Pond.Outflow and"));
    QCOMPARE(run.output.count("-77"), 0);
}

void HtstoolTest::endMonthOfMinusOneIsDecember()
{
    ToolRun run;
    writePond(run);
    run.start("check pond.hts -c pond_methods.txt -y 12");
    const QByteArray december = run.output;
    QVERIFY(december.contains("plan: 3 years, from 2021-12-31 24:00"));
    run.start("check -c pond_methods.txt --end-month=12 -- pond.hts -y9");
    QByteArrayList withoutRules = december.split('\n'); // which may be for slots of "-y9"
    withoutRules.erase(
        std::remove_if(withoutRules.begin(), withoutRules.end(),
                       [](const QByteArray& line) { return line.startsWith("pond_methods.txt:"); }),
        withoutRules.end());
    QCOMPARE(run.output, withoutRules.join('\n'));
    for (const char* month : {"-1", "+12",
                              "\xe2\x80\x83"
                              "12\xc2\xa0"}) {
        run.start(words("check pond.hts -c pond_methods.txt -y") << QString::fromUtf8(month));
        QCOMPARE(run.output, december);
    }
    // Values that only look like an attached month.
    run.write("-y9", sourceFile("tests/tool/files/pond_methods.txt"));
    for (const char* arguments : {"check -c -y9 pond.hts", "check --control -y9 pond.hts",
                                  "check -fc pond.hts -c -y9", "check -c-y9 pond.hts"}) {
        run.start(words(arguments));
        QVERIFY2(!run.errors.contains("attached"), run.errors.constData());
    }
}

// Which slots follow the error is not known.
void HtstoolTest::rulesAreNotJudgedWhenTheFirstRunCannotBeRead()
{
    ToolRun run;
    run.write("a.hts", codeFile("column-header"));
    run.write("c.txt", "Sea.Level: End\n");
    run.start("check a.hts -c c.txt");
    QCOMPARE(run.exitCode, 2);
    QVERIFY(run.output.contains(" [column-header]\n"));
    QVERIFY(!run.output.contains("c.txt"));
}

void HtstoolTest::rulesAreJudgedOverAllFiles_data()
{
    QTest::addColumn<QString>("files");
    QTest::addColumn<QString>("lines"); // of the control file that have findings
    QTest::addColumn<QByteArray>("summary");
    const auto row = [](const char* files, const char* lines, const char* summary) {
        QTest::newRow(files) << QString::fromLatin1(files) << QString::fromLatin1(lines)
                             << QByteArray(summary);
    };
    row("lake.hts", "2 rule-without-slot;3 rule-unmatched;4 rule-without-slot",
        "lake.hts: 0 errors, 1 warning, 2 notes\n");
    row("lake.hts pond.hts", "3 rule-shadowed;4 rule-without-slot",
        "lake.hts: 0 errors, 0 warnings, 0 notes\npond.hts: 0 errors, 0 warnings, 0 notes\n"
        "c.txt: 0 errors, 1 warning, 1 note\n");
    // The slots of the last file are not known.
    row("lake.hts none.hts", "",
        "lake.hts: 0 errors, 0 warnings, 0 notes\n"
        "htstool: none.hts: No such file or directory\nc.txt: 0 errors, 0 warnings, 0 notes\n");
}

void HtstoolTest::rulesAreJudgedOverAllFiles()
{
    QFETCH(QString, files);
    ToolRun run;
    const QByteArray lake = codeFile("slot-without-rule");
    run.write("lake.hts", lake);
    run.write("pond.hts", QByteArray(lake).replace("Lake", "Pond"));
    run.write("c.txt", "Lake.*: Sum\nPond.*: Sum\nPond.Outflow: End\nSea.Level: Max\n");
    QStringList lines;
    run.start(words("check -c c.txt -f json ") + files.split(QLatin1Char(' ')));
    QTEST(run.errors, "summary");
    const QJsonObject document = QJsonDocument::fromJson(run.output).object();
    for (const QJsonValue& finding : document.value(QLatin1String("controlFindings")).toArray())
        lines.append(QString::number(finding.toObject().value(QLatin1String("line")).toInt()) +
                     QLatin1Char(' ') + finding.toObject().value(QLatin1String("code")).toString());
    QTEST(lines.join(QLatin1Char(';')), "lines");
    run.start(words("check -c c.txt ") + files.split(QLatin1Char(' ')));
    QTEST(run.errors, "summary");
    QCOMPARE(run.output.count("c.txt:"), lines.size());
    // After the last file, but before its plan if it is the only one.
    QCOMPARE(run.output.startsWith("c.txt:"), files == QLatin1String("lake.hts"));
}

void HtstoolTest::wrongUsageIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");
    const auto row = [](const QByteArray& arguments, const QByteArray& message) {
        QTest::newRow(arguments.constData()) << words(arguments.constData()) << message;
    };
    row("", "no command is given");
    row("explain", "explain needs either codes or --all");
    row("explain -a text-value", "explain needs either codes or --all");
    row("explain text-value nothing",
        "\"nothing\" is not a code; htstool explain --all lists them");
    row("explain -a -f json", "the format \"json\" is not text or markdown");
    row("explain -a -x", "Unknown option 'x'.");
    row("list a.hts",
        "\"list\" is not one of the commands check, diff, explain, export, import and report");
    row("check", "check needs a file");
    row("check --wide a.hts", "Unknown option 'wide'.");
    row("check a.hts -y", "Missing value after '-y'.");
    for (const QByteArray option : {"-y9", "-y=9", "-y-1"})
        row("check a.hts " + option,
            '"' + option +
                "\": HtsAnnualizer ignores a month that is attached to its option; write it as the "
                "next argument");
    row("check a.hts -y 0", "the month \"0\" is not one of 1 to 12");
    row("check a.hts -y 13", "the month \"13\" is not one of 1 to 12");
    for (const QByteArray month : {"May", "0x9", "9.0", "\xef\xbc\x99", "99999999999"})
        row("check a.hts --end-month=" + month,
            "the month \"" + month + "\" is not one of 1 to 12");
    row("check a.hts --control=", "the path of the control file is empty");
    row("check a.hts --max-missing 1.5",
        "\"1.5\" is not a number of values, a percentage such as 5% or wmo");
    row("check a.hts --max-missing=",
        "\"\" is not a number of values, a percentage such as 5% or wmo");
    row("check a.hts --counts=", "the path for the counts is empty");
    row("check a.hts --sentinel 7,5", "the sentinel \"7,5\" is not a number");
    row("check a.hts --sentinel -7 --sentinel=inf", "the sentinel \"inf\" is not a number");
    row("check a.hts --format=xml", "the format \"xml\" is not text, json, sarif or github");
    row("check a.hts --format=markdown",
        "the format \"markdown\" is not text, json, sarif or github");
    row("check a.hts --ignore text-value,Text-valeu",
        "\"Text-valeu\" is not a code; the nearest is \"text-value\"");
    row("check a.hts --ignore=", "\"\" is not a code; htstool explain --all lists them");
    row("check a.hts --ignore note", "\"note\" is not a code; htstool explain --all lists them");
    row("check a.hts --ignore sentinel --ignore no-runs",
        "\"no-runs\" is an error, which cannot be ignored");
    row("check a.hts --fail-on warnings,note",
        "\"warnings\" is not a code; the nearest is \"warning\"");
    row("check a.hts --fail-on note,missing-value",
        "\"missing-value\" is not a code; the nearest is \"missing-values\"");
    row("explain sentinal", "\"sentinal\" is not a code; the nearest is \"sentinel\"");
    row("diff", "diff needs two files");
    row("diff a.hts b.hts c.hts", "diff needs two files");
    row("diff - -", "only one of the files can be the standard input");
    row("diff a.hts b.hts --format sarif", "the format \"sarif\" is not text or json");
    row("diff a.hts b.hts -t 1,2,3", "the tolerance \"1,2,3\" has more than two numbers: ABS,REL");
    for (const QByteArray tolerance : {"", "1,", "-1", "nan", "1,inf", "1;2"})
        row("diff a.hts b.hts --tolerance=" + tolerance,
            "the tolerance \"" + tolerance + "\" is not one or two numbers from 0 on: ABS,REL");
    row("export --all a.hts", "Unknown option 'all'.");
    row("export a.hts -o b.csv --run", "Missing value after '--run'.");
    row("export a.hts", "export needs a file to write, with -o");
    row("export -o b.csv", "export needs one file");
    row("export -o b.csv a.hts b.hts", "export needs one file");
    for (const QByteArray run : {"0", "1.0", "\xd9\xa1", "2147483648"})
        row("export -o b.csv a.hts --run " + run, '"' + run + "\" is not the number of a run");
    row("export -o b.csv a.hts --columns begin,object",
        "\"object\" is not one of the columns object_type, slot_type, scale, method, begin, year");
    row("export -o b.csv a.hts --columns begin,scale,begin", "the column \"begin\" is given twice");
    row("export -o b.csv a.hts -w --columns begin,scale", "a wide table has no column \"scale\"");
    row("report -c c.txt", "report needs one file");
    row("report -c c.txt a.hts b.hts", "report needs one file");
    row("report a.hts", "report needs a control file, with -c");
    row("report -c= a.hts", "the path of the control file is empty");
    row("report -c c.txt a.hts -o=", "the path of the page is empty");
    row("report -c c.txt a.hts --result=", "the path of the result is empty");
    row("report -c c.txt -", "a report on the standard input needs a file to write, with -o");
    row("report -c c.txt a.hts -y 0", "the month \"0\" is not one of 1 to 12");
    row("report -c c.txt a.hts --max-missing x",
        "\"x\" is not a number of values, a percentage such as 5% or wmo");
    row("report -c c.txt a.hts --sentinel x", "the sentinel \"x\" is not a number");
    for (const QByteArray other : {"--columns year", "--wide"})
        row("export -o b.csv a.hts --tables " + other,
            "--tables goes with neither --wide nor --columns");
}

void HtstoolTest::wrongUsageIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, message);
    ToolRun run;
    run.start(arguments);
    QCOMPARE(run.errors, "htstool: " + message + '\n' + kHint);
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.exitCode, 3);
}

void HtstoolTest::exitCodeIsTheWorst_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("errors");
    const QByteArray clean = "clean.hts: 0 errors, 0 warnings, 0 notes\n";
    const QByteArray note = "note.hts: 0 errors, 0 warnings, 1 note\n";
    const QByteArray warning = "warning.hts: 0 errors, 1 warning, 0 notes\n";
    const QByteArray error = "error.hts: 1 error, 0 warnings, 0 notes; a conversion fails: "
                             "\"Cannot read slot preamble\"\n";
    const QByteArray endless =
        "endless.hts: 1 error, 0 warnings, 0 notes; a conversion never ends\n";
    const QByteArray none = "htstool: none.hts: No such file or directory\n";
    const auto row = [](const char* arguments, int exitCode, const QByteArray& errors) {
        QTest::newRow(arguments) << words(arguments) << exitCode << errors;
    };
    row("check clean.hts", 0, clean);
    row("check note.hts", 0, note);
    row("check warning.hts", 1, warning);
    row("check error.hts", 2, error);
    row("check endless.hts", 2, endless);
    row("check none.hts", 3, none);
    row("check clean.hts warning.hts note.hts", 1, clean + warning + note);
    row("check error.hts warning.hts", 2, error + warning);
    row("check none.hts error.hts clean.hts", 3, none + error + clean);
    row("check warning.hts --fail-on error", 0, warning);
    row("check warning.hts --fail-on sentinel,slot-preamble", 0, warning);
    row("check warning.hts --fail-on sentinel --fail-on text-value", 1, warning);
    row("check note.hts --fail-on warning", 0, note);
    row("check note.hts warning.hts --fail-on missing-values", 1, note + warning);
    row("check note.hts --fail-on error,note", 1, note);
    row("check error.hts warning.hts --fail-on note", 2, error + warning);
    row("check warning.hts --ignore text-value", 0, "warning.hts: 0 errors, 0 warnings, 0 notes\n");
    row("check note.hts --fail-on note --ignore sentinel,missing-values", 0,
        "note.hts: 0 errors, 0 warnings, 0 notes\n");
    row("check clean.hts -c bare.txt --ignore rule-without-slot,slot-without-rule", 2,
        "clean.hts: 1 error, 0 warnings, 0 notes; a conversion fails: \"No series slots with valid "
        "methods found in input HTS file\"\n");
    row("check . clean.hts", 3, "htstool: .: file to open is a directory\n" + clean);
    row("check clean.hts -c none.txt", 2,
        "clean.hts: 1 error, 0 warnings, 0 notes; a conversion fails: \"No series slots with valid "
        "methods found in input HTS file\"\n");
    row("check -y 6 clean.hts", 2,
        "clean.hts: 1 error, 0 warnings, 0 notes; a conversion fails: \"Cannot create a complete "
        "year from the input HTS file\"\n");
}

void HtstoolTest::exitCodeIsTheWorst()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, errors);
    ToolRun run;
    run.write("clean.hts", codeFile("slot-without-rule"));
    run.write("note.hts", codeFile("missing-values"));
    run.write("warning.hts", codeFile("text-value"));
    run.write("error.hts", codeFile("slot-preamble"));
    run.write("endless.hts", codeFile("table-without-end"));
    run.write("bare.txt", "Sea.Level: End\n");
    run.start(arguments);
    QCOMPARE(run.errors, errors);
    QCOMPARE(run.exitCode, exitCode);
}

void HtstoolTest::examplesHaveOnlyTheseWarnings()
{
    const QString examples = QStringLiteral(SOURCE_DIR "/examples/");
    const auto warnings = [&](const char* name, const char* month) {
        const QString stem = examples + QLatin1String(name);
        ToolRun run;
        run.start({QStringLiteral("check"), QStringLiteral("-y"), QLatin1String(month),
                   stem + QStringLiteral(".hts"), QStringLiteral("-c"),
                   stem + QStringLiteral("_methods.txt")});
        QStringList texts;
        for (const QString& line : QString::fromUtf8(run.output).split(QLatin1Char('\n'))) {
            if (line.contains(QLatin1String(": warning: ")) ||
                line.contains(QLatin1String(": error: ")))
                texts.append(line.section(QLatin1String(": "), 2));
        }
        return texts;
    };
    QCOMPARE(warnings("rivers_daily", "9"), QStringList());
    // Methods that ignore gaps, for series with gaps.
    QCOMPARE(
        warnings("basins_monthly", "12"),
        (QStringList{
            QStringLiteral(
                "AverageNaN of Mauna Loa.CO2.Measured divides by all timesteps of 1964, 1975, "
                "1984; with 9 of 12 values the result of 1964 is 0.75 of their mean "
                "[average-of-part]"),
            QStringLiteral("SumNaN of Upper Basin.Volume is 0 for 1973, 1974, 1975 and 8 more, "
                           "without any value [nothing-is-zero]"),
            QStringLiteral("AverageNaN of Upper Basin.Inflow is 0 for 1973, 1974, 1975 and 8 "
                           "more, without any value [nothing-is-zero]"),
            QStringLiteral(
                "AverageNaN of Upper Basin.Inflow divides by all timesteps of 1972, 2012; "
                "with 2 of 12 values the result of 1972 is 0.17 of their mean "
                "[average-of-part]")}));
}

void HtstoolTest::countsWhatIsNotShown()
{
    ToolRun run;
    QByteArray text = codeFile("text-value");
    for (const char* value : {"1", "2", "3", "4", "5", "6", "8", "9", "10", "11", "12"})
        text.replace(QByteArray("\n") + value + '\n', "\n1,5\n");
    run.write("a.hts", text);
    run.start("check a.hts");
    const QByteArrayList lines = run.output.trimmed().split('\n');
    QCOMPARE(lines.size(), 11);
    QCOMPARE(lines.last(), QByteArray("a.hts: warning: 13 more [text-value]"));
    QCOMPARE(run.errors, QByteArray("a.hts: 0 errors, 23 warnings, 0 notes\n"));
    run.start("check a.hts --all");
    QVERIFY(run.output.startsWith(lines.mid(0, 10).join('\n') + '\n'));
    QCOMPARE(run.output.count(" [text-value]\n"), 23);
    run.start("check a.hts --ignore text-value");
    QCOMPARE(run.output, QByteArray());
}

void HtstoolTest::showsAPlanWithoutYears()
{
    ToolRun run;
    run.write("a.hts", codeFile("slot-without-rule"));
    run.write("c.txt", "\nLake.Outflow: sum\nLake.Inflow: Salinity\n");
    run.start("check a.hts -c c.txt -y 6");
    QCOMPARE(
        run.output,
        QByteArray(
            "a.hts:24: error: the timesteps contain no complete year; a conversion fails: \"Cannot "
            "create a complete year from the input HTS file\" [no-complete-year]\na.hts:46: note: "
            "Lake.Inflow has the method Salinity, which is not supported, and is left out "
            "[salinity]\na.hts: plan: no years\na.hts: plan: Lake.Outflow: Sum, rule of line "
            "2\na.hts: plan: Lake.Inflow: left out, Salinity, rule of line 3\n"));
    QCOMPARE(run.exitCode, 2);
}

namespace {

// The reports on the smallest files of all codes, with `mark` in the names of files, objects and
// slots, in units and in some values.
QByteArray reportsWith(const QByteArray& mark)
{
    const auto marked = [&](QByteArray text) {
        for (const char* part : {"Lake", "Outflow", "Inflow", "cms", "7,5"})
            text.replace(part, part + mark);
        return text;
    };
    ToolRun run;
    QByteArray reports;
    const QString folder = QStringLiteral(SOURCE_DIR "/tests/check/files/");
    const QString file = QStringLiteral("a%1.hts").arg(QString::fromUtf8(mark));
    const QString control = QStringLiteral("c%1.txt").arg(QString::fromUtf8(mark));
    for (const FindingKind* kind : allKinds()) {
        QFile rules(folder + QStringLiteral("%1.txt").arg(QLatin1String(kind->code)));
        run.write(file, marked(codeFile(kind->code)));
        run.write(control,
                  marked(rules.open(QIODevice::ReadOnly) ? rules.readAll() : "Lake.*: Average\n"));
        run.start({QStringLiteral("check"), file, QStringLiteral("-c"), control});
        reports += run.output + run.errors;
    }
    run.start({QStringLiteral("check"), QStringLiteral("none") + file});
    reports += run.errors;
    run.start({QStringLiteral("list") + file});
    return reports + run.errors;
}

} // namespace

void HtstoolTest::foreignTextsDoNotChangeTheReport()
{
    const QByteArray places = "%1%2%3%4%5%6%7%8%9%L1";
    const QByteArray reports = reportsWith(places);
    QVERIFY(reports.count(places) > 200);
    QCOMPARE(reports, reportsWith(QByteArray(places).replace('%', '@')).replace('@', '%'));
}

void HtstoolTest::foreignTextsDoNotReachTheTerminal()
{
    const QByteArray reports = reportsWith("\033[31m\r\x07\xc2\x9b\xe2\x80\xae");
    QVERIFY(reports.count("\\u001b[31m\\u000d\\u0007\\u009b\\u202e") > 200);
    for (const QChar character : QString::fromUtf8(reports))
        QVERIFY2(character == QLatin1Char('\n') || character.isPrint(),
                 QByteArray::number(character.unicode(), 16));
}

void HtstoolTest::nearestOfLongNamesTakesNoTime()
{
    const QByteArray name(40000, 'x');
    ToolRun run;
    run.write("a.hts", codeFile("text-value").replace("object_name: ", "object_name: " + name));
    QByteArray rules;
    for (int i = 0; i < 10; ++i)
        rules += name + "Lake.Outflo" + char('a' + i) + ": Sum\n";
    run.write("c.txt", rules);
    run.startShell("ulimit -c 0; ulimit -t 5; exec $PROGRAM check a.hts -c c.txt");
    QCOMPARE(run.output.count("[rule-unmatched]"), 10);
    QCOMPARE(run.exitCode, 2);
}

void HtstoolTest::explainsEveryCode()
{
    ToolRun run;
    run.start("explain step-missing");
    const QByteArray text = run.output;
    QCOMPARE(text, QByteArray("step-missing: warning (Timesteps and years)\n"
                              "  Timesteps are missing between two others. No complete year lacks "
                              "them.\n"
                              "  What to do: Add the timesteps, with `NaN` for their values.\n"));
    run.start("explain --all");
    QCOMPARE(run.output.split('\n'), sourceFile("tests/tool/files/explain-all.txt").split('\n'));
    QVERIFY(run.output.contains(text));
    QCOMPARE(run.exitCode, 0);
    run.start("explain step-missing column-header -f markdown");
    QCOMPARE(run.output, QByteArray("| code | severity | meaning |\n|---|---|---|\n"
                                    "| `column-header` | error | The lines `units: ` and `scale: ` "
                                    "do not follow the slot preamble. |\n"
                                    "| `step-missing` | warning | Timesteps are missing between "
                                    "two others. |\n"));
}

void HtstoolTest::readsTheStandardInput()
{
    ToolRun run;
    run.start(words("check -"), codeFile("text-value"));
    QCOMPARE(run.output, QByteArray("-:38: warning: \"7,5\" is not a number and counts as 0; it "
                                    "may be a decimal comma [text-value]\n"));
    QCOMPARE(run.exitCode, 1);
}

// Under script(1) the standard output is a terminal.
void HtstoolTest::usesColoursOnATerminalOnly()
{
    ToolRun run;
    run.startShell("script -qec true /dev/null");
    QVERIFY2(run.exitCode == 0, "needs script(1) and a pseudo-terminal (a devpts at /dev/pts)");
    run.write("a.hts", codeFile("text-value"));
    run.startShell("TERM=xterm script -qec '$PROGRAM check a.hts' /dev/null");
    QVERIFY(run.output.contains("a.hts:38: \033[35mwarning\033[0m: "));
    run.write("b.hts", codeFile("missing-values"));
    run.write("c.hts", codeFile("slot-preamble"));
    run.startShell("TERM=xterm script -qec '$PROGRAM check b.hts c.hts' /dev/null");
    QVERIFY(run.output.contains("b.hts:32: \033[36mnote\033[0m: "));
    QVERIFY(run.output.contains("c.hts:66: \033[31merror\033[0m: "));
    run.startShell("NO_COLOR=1 TERM=xterm script -qec '$PROGRAM check a.hts' /dev/null");
    QVERIFY(run.output.contains("a.hts:38: warning: "));
    run.startShell("TERM=dumb script -qec '$PROGRAM check a.hts' /dev/null");
    QVERIFY(run.output.contains("a.hts:38: warning: "));
    run.start("check a.hts");
    QVERIFY(run.output.startsWith("a.hts:38: warning: "));
}

void HtstoolTest::writesCounts()
{
    ToolRun run;
    writePond(run);
    run.start("check pond.hts -c pond_methods.txt --counts counts.csv");
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.read("counts.csv").replace("\r\n", "\n"),
             sourceFile("tests/tool/files/pond_counts.csv"));
}

void HtstoolTest::inputsAreNotOverwritten_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QByteArray>("output");
    const auto row = [](const char* arguments, const char* output) {
        QTest::newRow(arguments) << QString::fromLatin1(arguments) << QByteArray(output);
    };
    row("check pond.hts --counts pond.hts", "pond.hts");
    row("check pond.hts --counts ./pond.hts", "./pond.hts");
    row("check none.hts pond.hts --counts link.hts", "link.hts");
    row("check pond.hts -c pond_methods.txt --counts pond_methods.txt", "pond_methods.txt");
    row("export pond.hts -o pond.hts", "pond.hts");
    row("export link.hts -o pond.hts", "pond.hts");
    row("export -o pond.hts - < pond.hts", "pond.hts");
    row("export -o link.hts - < pond.hts", "link.hts");
    row("check none.hts - --counts pond.hts < pond.hts", "pond.hts");
    row("export link.hts -o - >> pond.hts", "-");
    row("check pond.hts -c - --counts ./-", "./-");
    row("report pond.hts -c pond_methods.txt -o pond.hts", "pond.hts");
    row("report pond.hts -c pond_methods.txt -o pond_methods.txt", "pond_methods.txt");
    row("report - -c pond_methods.txt -o link.hts < pond.hts", "link.hts");
    row("report pond.hts -c - -o ./-", "./-");
    row("report pond_methods.txt -c none --result pond.hts -o link.hts", "link.hts");
}

void HtstoolTest::inputsAreNotOverwritten()
{
    QFETCH(QString, arguments);
    QFETCH(QByteArray, output);
    ToolRun run;
    writePond(run);
    QVERIFY(QFile::link(QStringLiteral("pond.hts"), run.path("link.hts")));
    QVERIFY(QFile::link(QStringLiteral("pond_methods.txt"), run.path("-")));
    run.startShell(QStringLiteral("exec $PROGRAM ") + arguments);
    QCOMPARE(run.errors, "htstool: " + output + ": this is an input: it is not overwritten\n");
    QCOMPARE(run.exitCode, 3);
    QCOMPARE(run.read("pond.hts"), sourceFile("tests/tool/files/pond.hts"));
    QCOMPARE(run.read("pond_methods.txt"), sourceFile("tests/tool/files/pond_methods.txt"));
}

namespace {

// Two runs of a series, a scalar and a table.
const QByteArray kMixedFile =
    "number_of_runs:2\nEND_PACKAGE_PREAMBLE\ntrace:7\ntime_steps:2\nEND_RUN_PREAMBLE\n2000-1-31 "
    "24:00\n2000-2-29 6:00\nobject_type: R\nobject_name: Lake, upper\nslot_name: "
    "Flow\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n0.1\nNaN\nEND_COLUMN\nEND_SLOT\nobject_type: "
    "R\nobject_name: Lake\nslot_type: ScalarSlot\nslot_name: Area\nEND_SLOT_PREAMBLE\nunits: "
    "km2\nscale: 1\n12.25\nEND_COLUMN\nEND_SLOT\nobject_type: R\nobject_name: Lake\nslot_type: "
    "TableSlot\nslot_name: T\nrows: 1\nEND_SLOT_PREAMBLE\n1 "
    "2\nEND_SLOT\nEND_RUN\ntime_steps:1\nEND_RUN_PREAMBLE\n2001-1-31 24:00\nobject_type: "
    "R\nobject_name: Lake, upper\nslot_name: Flow\nEND_SLOT_PREAMBLE\nunits: cms\nscale: "
    "1\n-1e-300\nEND_COLUMN\nEND_SLOT\nEND_RUN\n";

} // namespace

void HtstoolTest::exportsLongForm()
{
    ToolRun run;
    run.write("a.hts", kMixedFile);
    run.start("export a.hts -o a.csv");
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.read("a.csv"),
             QByteArray("run,trace,object,slot,units,time,value\r\n1,7,\"Lake, "
                        "upper\",Flow,cms,2000-02-01T00:00:00,0.1\r\n1,7,\"Lake, "
                        "upper\",Flow,cms,2000-02-29T06:00:00,\r\n1,7,Lake,Area,km2,,12.25\r\n2,,"
                        "\"Lake, upper\",Flow,cms,2001-02-01T00:00:00,-1e-300\r\n"));
}

void HtstoolTest::exportsWideForm()
{
    ToolRun run;
    run.write("a.hts", kMixedFile);
    run.start("export --wide a.hts -o -");
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output, QByteArray("run,trace,time,\"Lake, upper.Flow "
                                    "[cms]\"\r\n1,7,2000-02-01T00:00:00,0.1\r\n1,7,2000-02-29T06:"
                                    "00:00,\r\n2,,2001-02-01T00:00:00,-1e-300\r\n"));

    run.write("b.hts", QByteArray(kMixedFile).replace("cms\nscale: 1\n-1", "cfs\nscale: 1\n-1"));
    run.start("export --wide b.hts -o -");
    QCOMPARE(run.errors, QByteArray("htstool: b.hts: The runs have different slots; export one of "
                                    "them; the export is not complete\n"));
    QCOMPARE(run.exitCode, 2);
    run.start("export -w -r2 b.hts -o -");
    QCOMPARE(
        run.output,
        QByteArray(
            "run,trace,time,\"Lake, upper.Flow [cfs]\"\r\n2,,2001-02-01T00:00:00,-1e-300\r\n"));
    QCOMPARE(run.exitCode, 0);
}

void HtstoolTest::exportsOneRun()
{
    ToolRun run;
    run.start(words("export --run 2 - -o -"), kMixedFile);
    QCOMPARE(run.output, QByteArray("run,trace,object,slot,units,time,value\r\n2,,\"Lake, "
                                    "upper\",Flow,cms,2001-02-01T00:00:00,-1e-300\r\n"));
    QCOMPARE(run.exitCode, 0);
    // A comment in the file is not counted as text among values.
    run.start(words("export --run 2 - -o -"), "# by hand\n" + kMixedFile);
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.exitCode, 0);
    run.start(words("export --run 3 - -o -"), kMixedFile);
    QCOMPARE(run.errors,
             QByteArray("htstool: -: The file has 2 runs; the export is not complete\n"));
    QCOMPARE(run.exitCode, 2);
}

namespace {

// A run with one slot, whose names a spreadsheet would run.
QByteArray fileWithSteps(const QByteArray& unit, const QByteArrayList& steps)
{
    return "number_of_runs:1\nEND_PACKAGE_PREAMBLE\ntime_step_unit:" + unit +
           "\ntime_steps:" + QByteArray::number(steps.size()) + "\nEND_RUN_PREAMBLE\n" +
           steps.join('\n') +
           "\nobject_type: @T\nobject_name: =cmd()\nslot_name: -5\nEND_SLOT_PREAMBLE\nunits: "
           "\"-m3\nscale: 0.028316846592\nmethod: +Mean\n" +
           QByteArray("-1\n").repeated(steps.size()) + "END_COLUMN\nEND_SLOT\nEND_RUN\n";
}

} // namespace

void HtstoolTest::exportsWhatIsAskedFor_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QByteArray>("table"); // lines end with line feeds here
    const auto row = [](const char* name, const QByteArray& file, const char* options,
                        const char* table) {
        QTest::newRow(name) << file << QString::fromLatin1(options) << QByteArray(table);
    };
    row("columns", fileWithSteps("month\nunit_quantity:1", {"2000-2-29 24:00"}),
        "--columns method,slot_type,scale --columns object_type",
        "run,trace,object,slot,units,time,value,method,slot_type,scale,object_type\n"
        "1,,=cmd(),-5,\"\"\"-m3\",2000-03-01T00:00:00,-1,+Mean,,0.028316846592,@T\n");
    row("safe columns", fileWithSteps("month", {"2000-2-29 24:00"}),
        "--safe --columns method,object_type",
        "run,trace,object,slot,units,time,value,method,object_type\n"
        "1,,'=cmd(),-5,\"\"\"-m3\",2000-03-01T00:00:00,-1,'+Mean,'@T\n");
    row("safe wide table", fileWithSteps("month", {"2000-2-29 24:00"}), "--safe --wide",
        "run,trace,time,\"'=cmd().-5 [\"\"-m3]\"\n1,,2000-03-01T00:00:00,-1\n");
    row("wide columns", fileWithSteps("year", {"2000-9-30 24:00", "2001-9-30 24:00"}),
        "-w --columns year,begin",
        "run,trace,time,year,begin,\"=cmd().-5 [\"\"-m3]\"\n"
        "1,,2000-10-01T00:00:00,2000,1999-10-01T00:00:00,-1\n"
        "1,,2001-10-01T00:00:00,2001,2000-10-01T00:00:00,-1\n");
    row("tables", kMixedFile, "--tables",
        "run,trace,object,slot,object_type,slot_type,units,scale,row,value\n"
        "1,7,Lake,Area,R,ScalarSlot,km2,1,,12.25\n1,7,Lake,T,R,TableSlot,,,1,1 2\n");
    row("run before one that is cut off",
        QByteArray(kMixedFile).left(QByteArray(kMixedFile).indexOf("END_RUN\n") + 8),
        "--run 1 --tables",
        "run,trace,object,slot,object_type,slot_type,units,scale,row,value\n"
        "1,7,Lake,Area,R,ScalarSlot,km2,1,,12.25\n1,7,Lake,T,R,TableSlot,,,1,1 2\n");
    row("safe tables", QByteArray(kMixedFile).replace("\n1 2\n", "\n-1 2\n").replace("12.25", "-1"),
        "--tables --safe",
        "run,trace,object,slot,object_type,slot_type,units,scale,row,value\n"
        "1,7,Lake,Area,R,ScalarSlot,km2,1,,-1\n1,7,Lake,T,R,TableSlot,,,1,'-1 2\n");
    row("no step", kMixedFile, "--run 1 --columns begin,year",
        "run,trace,object,slot,units,time,value,begin,year\n"
        "1,7,\"Lake, upper\",Flow,cms,2000-02-01T00:00:00,0.1,2000-01-31T00:00:00,2000\n"
        "1,7,\"Lake, upper\",Flow,cms,2000-02-29T06:00:00,,2000-02-28T06:00:00,2000\n"
        "1,7,Lake,Area,km2,,12.25,,\n");
    const struct
    {
        const char* unit;
        QByteArrayList steps;
        QByteArrayList begins; // and years
    } kBegins[] = {
        {"year", {"2000-12-31 24:00"}, {"2000-01-01T00:00:00,2000"}},
        {"hour\nunit_quantity:6", {"2000-12-31 24:00"}, {"2000-12-31T18:00:00,2000"}},
        {"minute", {"2001-1-1 0:01"}, {"2001-01-01T00:00:00,2001"}},
        {"week", {"2001-1-6 24:00"}, {"2000-12-31T00:00:00,2001"}},
        {"month\nunit_quantity:-3", {"2000-3-30 24:00"}, {"2000-02-29T00:00:00,2000"}},
        {"month\nunit_quantity:2147483647", {"2000-3-30 24:00"}, {"1999-03-31T00:00:00,2000"}},
        {"week\nunit_quantity:2147483647", {"2000-3-30 24:00"}, {",2000"}},
        {"month", {"0001-1-30 24:00"}, {",1"}},
        {"day",
         {"0001-1-1 24:00", "0001-1-1 24:00"},
         {"0001-01-01T00:00:00,1", "0001-01-01T00:00:00,1"}},
        // The day of a month is not lost; a gap is not a step; nor is one that goes back.
        {"month",
         {"2001-1-30 24:00", "2001-2-27 24:00", "2001-5-30 24:00", "2001-4-30 24:00"},
         {"2000-12-31T00:00:00,2001", "2001-01-31T00:00:00,2001", "2001-04-30T00:00:00,2001",
          "2001-04-01T00:00:00,2001"}},
    };
    for (const auto& [unit, steps, begins] : kBegins) {
        QByteArray table = "run,trace,time,begin,year,\"=cmd().-5 [\"\"-m3]\"\n";
        for (int i = 0; i < steps.size(); ++i)
            table += "1,,T," + begins.at(i) + ",-1\n";
        row(unit, fileWithSteps(unit, steps), "--wide --columns begin,year", table.constData());
    }
}

void HtstoolTest::exportsWhatIsAskedFor()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, options);
    QFETCH(QByteArray, table);
    ToolRun run;
    run.start(QStringList{QStringLiteral("export"), QStringLiteral("-"), QStringLiteral("-o-")} +
                  options.split(QLatin1Char(' ')),
              file);
    QCOMPARE(run.errors, QByteArray());
    QString output = QString::fromUtf8(run.output.replace("\r\n", "\n"));
    if (table.contains("1,,T,"))
        output.replace(QRegularExpression(QStringLiteral("1,,[^,]+,")), QStringLiteral("1,,T,"));
    QCOMPARE(output.toUtf8(), table);
}

void HtstoolTest::exportReportsText()
{
    ToolRun run;
    run.start(words("export - -o -"), codeFile("text-value"));
    QVERIFY(run.output.contains("2000-08-01T00:00:00,0\r\n"));
    QCOMPARE(run.errors, QByteArray("htstool: -: 1 values are not numbers and were exported as 0; "
                                    "htstool check has their lines\n"));
    QCOMPARE(run.exitCode, 1);
}

void HtstoolTest::exportFailsForABrokenFile()
{
    ToolRun run;
    run.start(words("export - -o -"), codeFile("timestep-line"));
    QCOMPARE(run.errors,
             QByteArray("htstool: -: Cannot read run preamble; the export is not complete\n"));
    QCOMPARE(run.exitCode, 2);
    run.start(words("export - -o -"), codeFile("slot-preamble"));
    QVERIFY(run.output.endsWith("1,,Lake,Inflow,cms,2001-01-01T00:00:00,12\r\n"));
    QCOMPARE(run.errors,
             QByteArray("htstool: -: Cannot read slot preamble; the export is not complete\n"));
    QCOMPARE(run.exitCode, 2);
    run.start(words("export - -o -"), codeFile("table-without-end"));
    QCOMPARE(
        run.errors,
        QByteArray(
            "htstool: -: A table slot has no \"END_SLOT\" after it; the export is not complete\n"));
    QCOMPARE(run.exitCode, 2);
    run.start(words("export - -o -"), QByteArray(kMixedFile).replace("2000-2-29", "2001-2-30"));
    QCOMPARE(run.errors,
             QByteArray("htstool: -: The timestep \"2001-2-30 6:00\" is not a date-time; "
                        "the export is not complete\n"));
    QCOMPARE(run.exitCode, 2);
    run.start("export none.hts -o none.csv");
    QCOMPARE(run.errors, QByteArray("htstool: none.hts: No such file or directory\n"));
    QCOMPARE(run.exitCode, 3);
    QCOMPARE(run.read("none.csv"), QByteArray("(no file)"));
    run.start(words("export - -o none/a.csv"), kMixedFile);
    QCOMPARE(run.errors, QByteArray("htstool: none/a.csv: No such file or directory\n"));
    QCOMPARE(run.exitCode, 3);
}

void HtstoolTest::failedExportLeavesTheFileAsItWas_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("errors");
    QTest::addColumn<int>("exitCode");
    const auto row = [](const char* command, const char* errors, int exitCode) {
        QTest::newRow(command) << QString::fromLatin1(command) << QByteArray(errors) << exitCode;
    };
    row("$PROGRAM export empty.hts -o k.csv",
        "htstool: empty.hts: Cannot read package preamble: the file is empty; get it again; "
        "nothing is "
        "exported\n",
        2);
    row("$PROGRAM export cut.hts -o link.csv",
        "htstool: cut.hts: Cannot read slot preamble; nothing is exported\n", 2);
    row("f=$(mktemp -u -p /dev/shm); $PROGRAM export cut.hts -o $f; c=$?; rm $f 2> /dev/null || "
        "exit $c",
        "htstool: cut.hts: Cannot read slot preamble; nothing is exported\n", 2);
    row("$PROGRAM export -w -r 2 cut.hts -o k.csv",
        "htstool: cut.hts: The file has 1 runs; nothing is exported\n", 2);
    row("$PROGRAM check empty.hts --counts k.csv > /dev/null",
        "empty.hts: 1 error, 0 warnings, 0 notes; a conversion fails: \"Cannot read package "
        "preamble\"\n",
        2);
    row("$PROGRAM export /proc/self/mem -o k.csv", "htstool: /proc/self/mem: Input/output error\n",
        3);
    row("limit; $PROGRAM export pond.hts -o k.csv", "htstool: k.csv: File too large\n", 3);
    row("limit; $PROGRAM check pond.hts --counts k.csv > /dev/null",
        "pond.hts: 0 errors, 4 warnings, 1 note\nhtstool: k.csv: File too large\n", 3);
}

void HtstoolTest::failedExportLeavesTheFileAsItWas()
{
    QFETCH(QString, command);
    ToolRun run;
    writePond(run);
    run.write("empty.hts", QByteArray());
    run.write("cut.hts", run.read("pond.hts").chopped(100));
    run.write("k.csv", "old\n");
    QVERIFY(QFile::link(QStringLiteral("k.csv"), run.path("link.csv")));
    const QStringList files = run.files();
    // Blocks of 512 bytes.
    run.startShell(QStringLiteral("limit() { trap '' XFSZ; ulimit -f 1; }; ") + command);
    QTEST(run.errors, "errors");
    QTEST(run.exitCode, "exitCode");
    QCOMPARE(run.read("k.csv"), QByteArray("old\n"));
    QCOMPARE(run.files(), files);
}

void HtstoolTest::exportReplacesWhatThePathLeadsTo()
{
    ToolRun run;
    run.write("a.hts", kMixedFile);
    run.start("export a.hts -o expected.csv");
    const QByteArray expected = run.read("expected.csv");
    run.write("k.csv", "old\n");
    run.startShell("chmod 640 k.csv; ln -s k.csv link; ln -s link link.csv; "
                   "$PROGRAM export a.hts -o link.csv; stat -c %a k.csv");
    QCOMPARE(run.output, QByteArray("640\n"));
    QCOMPARE(run.read("k.csv"), expected);
    QCOMPARE(QFile::symLinkTarget(run.path("link.csv")), run.path("link"));
    QCOMPARE(QFile::symLinkTarget(run.path("link")), run.path("k.csv"));
    // A link to a name that is not text.
    run.startShell("e=$(printf '\\351'); echo old > $e; ln -s $e text.csv; "
                   "$PROGRAM export a.hts -o text.csv; cat $e; ls | wc -l; rm $e");
    QCOMPARE(run.output, expected + "7\n");
    // A file that is open elsewhere, and a pipe.
    run.startShell("{ echo before; $PROGRAM export a.hts -o /dev/fd/1; } >> b.csv; "
                   "mkfifo p; cat p & $PROGRAM export a.hts -o p; wait");
    QCOMPARE(run.read("b.csv"), expected);
    QCOMPARE(run.output, expected);
    QCOMPARE(run.exitCode, 0);
}

namespace {

const QByteArray kControlUnreadable =
    ":1: error: the control file cannot be read: Input/output error; a conversion fails: \"No "
    "series slots with valid methods found in input HTS file\" [control-unreadable]";

} // namespace

// The memory at address 0, which no process has, cannot be read.
void HtstoolTest::failedReadIsReported()
{
    const QByteArray failure = "htstool: /proc/self/mem: Input/output error\n";
    ToolRun run;
    run.start("check /proc/self/mem");
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.errors, failure);
    QCOMPARE(run.exitCode, 3);
    run.start("export /proc/self/mem -o -");
    QCOMPARE(run.errors, failure);
    QCOMPARE(run.exitCode, 3);
    run.write("a.hts", codeFile("slot-without-rule"));
    run.start("check a.hts -c /proc/self/mem");
    QCOMPARE(run.output.split('\n').first(), "/proc/self/mem" + kControlUnreadable);
    QCOMPARE(run.exitCode, 2);
}

// What the failed read left of a line is not reported.
void HtstoolTest::controlFileThatCannotBeReadToItsEndIsReported()
{
    ToolRun run;
    run.write("a.hts", codeFile("slot-without-rule"));
    run.write("c.txt", "*.*: Sum\nLake.Outflow: SumNaN\n");
    const int ends[] = {9, 13, 26}; // of a rule, in a word, and before "NaN"
    for (const int at : ends) {
        preload(run, {"c.txt", "read", at});
        run.start("check a.hts -c c.txt");
        QCOMPARE(run.output.split('\n').first(), "c.txt" + kControlUnreadable);
        QCOMPARE(run.exitCode, 2);
    }
}

void HtstoolTest::fullDiskIsReported()
{
    ToolRun run;
    run.write("a.hts", kMixedFile);
    run.start("export a.hts -o /dev/full");
    QCOMPARE(run.errors, QByteArray("htstool: /dev/full: No space left on device\n"));
    QCOMPARE(run.exitCode, 3);
    run.start("check a.hts --counts /dev/full");
    QVERIFY(run.errors.endsWith("htstool: /dev/full: No space left on device\n"));
    QCOMPARE(run.exitCode, 3);
}

void HtstoolTest::lostOutputIsReported_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("lastLine");
    const auto row = [](const char* command, const char* lastLine) {
        QTest::newRow(command) << QString::fromLatin1(command) << QByteArray(lastLine);
    };
    const char* full = "htstool: standard output: No space left on device\n";
    const char* closed = "htstool: standard output: Bad file descriptor\n";
    row("check a.hts > /dev/full", full);
    row("check -f json a.hts > /dev/full", full);
    // Longer than the buffers of streams.
    row("check -f json $(yes a.hts | head -99) > /dev/full", full);
    row("check -c rules.txt long.hts > /dev/full", full);
    row("check a.hts >&-", closed);
    row("check --help > /dev/full", full);
    row("--version >&-", closed);
    row("export a.hts -o - > /dev/full", "htstool: -: No space left on device\n");
    row("export a.hts -o - >&-", "htstool: -: Bad file descriptor\n");
    row("check a.hts --counts - >&-", closed);
    row("check - <&-", "htstool: -: Bad file descriptor\n");
    row("check a.hts 2> /dev/full", "");
}

void HtstoolTest::lostOutputIsReported()
{
    QFETCH(QString, command);
    QFETCH(QByteArray, lastLine);
    ToolRun run;
    const QByteArray text = codeFile("text-value");
    run.write("a.hts", text);
    run.write("long.hts",
              QByteArray(text).replace("object_name: ", "object_name: " + QByteArray(40000, 'x')));
    run.write("rules.txt", "*.*: Sum\n");
    run.startShell(QStringLiteral("exec $PROGRAM ") + command);
    QVERIFY2(run.errors.endsWith(lastLine), run.errors.constData());
    QCOMPARE(run.exitCode, 3);
}

// A file that is opened must not take the number of a stream that is closed.
void HtstoolTest::closedStandardStreamsDoNotBecomeFiles()
{
    ToolRun run;
    run.write("a.hts", kMixedFile);
    run.start("export a.hts -o expected.csv");
    run.startShell("exec $PROGRAM export a.hts -o a.csv <&- >&- 2>&-");
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.read("a.csv"), run.read("expected.csv"));
    run.startShell("exec $PROGRAM check a.hts --counts a.csv <&- >&- 2>&-");
    QCOMPARE(run.exitCode, 3);
    QCOMPARE(
        run.read("a.csv"),
        QByteArray("file,run,trace,object,slot,year_end,timesteps,missing,year,method,expected,"
                   "present,longest_gap,result,max_time,min_time\r\n"));
}

void HtstoolTest::namesAreUtf8UnderTheCLocale()
{
    ToolRun run;
    const QString name = QString::fromUtf8("\xc3\x84.hts");
    run.write(name, codeFile("text-value"));
    run.startShell("LC_ALL=C $PROGRAM check *.hts");
    QVERIFY2(run.output.startsWith("\xc3\x84.hts:38: warning: "), run.errors.constData());
    QCOMPARE(run.exitCode, 1);
}

// Two such names would become one file.
void HtstoolTest::namesThatAreNotTextAreRefused()
{
    const QByteArray reason = "The name is not text in the encoding of file names";
    ToolRun run;
    run.write("a.hts", codeFile("slot-without-rule"));
    for (const char* command :
         {"check $e", "export $e -o b.csv", "export a.hts -o $e", "check a.hts --counts $e"}) {
        run.startShell(
            QStringLiteral("e=$(printf '\\351'); $PROGRAM %1").arg(QLatin1String(command)));
        QCOMPARE(run.errors, "htstool: ?: " + reason + '\n');
        QCOMPARE(run.exitCode, 3);
        QCOMPARE(run.files(), QStringList{QStringLiteral("a.hts")});
    }
    run.startShell("e=$(printf '\\351'); $PROGRAM check a.hts -c $e");
    QVERIFY(run.output.startsWith("?:1: error: the control file cannot be read: " + reason + ';'));
    QCOMPARE(run.exitCode, 2);
}

HTS_TEST(HtstoolTest, QCoreApplication)

#include "tst_htstool.moc"
