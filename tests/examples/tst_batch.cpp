// The recipes of examples/batch that need no daemon, over folders of small files.

#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

// The results of one recipe for the folder "in".
struct Batch : AnnualizerRun
{
    Batch();

    void addInput(const QString& name, const QByteArray& content = monthlyFile()) const;
    QByteArray result(const QString& name) const;
};

Batch::Batch()
{
    environment.insert(QStringLiteral("HTSANNUALIZER"), QStringLiteral(HTS_ANNUALIZER));
    environment.insert(QStringLiteral("HTSTOOL"), QStringLiteral(HTSTOOL));
    environment.insert(QStringLiteral("BATCH"), QStringLiteral(EXAMPLES_DIR "/batch"));
    // GNU parallel keeps there what it has found out about the system.
    static const QTemporaryDir home;
    environment.insert(QStringLiteral("HOME"), home.path());
    writeInputs(*this);
    QDir(path(QStringLiteral("."))).mkdir(QStringLiteral("in"));
}

void Batch::addInput(const QString& name, const QByteArray& content) const
{
    write(QStringLiteral("in/") + name, content);
}

QByteArray Batch::result(const QString& name) const
{
    return read(QStringLiteral("out/") + name);
}

const QString kParallel = QStringLiteral("\"$BATCH/convert-parallel\" in c.txt out");
const QString kResume =
    QString(kParallel).replace(QStringLiteral(" in "), QStringLiteral(" --resume in "));
const QString kMake =
    QStringLiteral("make -f \"$BATCH/Makefile\" -j2 INPUTS=in METHODS=c.txt RESULTS=out");

// What a section of docs/batch.md shows of a terminal: lines after a "$" are typed, the others
// printed.
QByteArray terminalOf(const QByteArray& section)
{
    const QByteArray text = sourceFile(QStringLiteral(DOCUMENT));
    const int from = text.indexOf("\n    $ ", text.indexOf("\n## " + section + '\n'));
    QByteArray terminal;
    for (const QByteArray& line : text.mid(from + 1).split('\n')) {
        if (!line.startsWith("    "))
            break;
        terminal += line.mid(4) + '\n';
    }
    return terminal;
}

// What such a terminal shows when its commands are typed in the folder of the run.
QByteArray typed(AnnualizerRun& run, const QByteArray& terminal)
{
    QByteArray shown;
    for (const QByteArray& line : terminal.split('\n')) {
        if (!line.startsWith("$ "))
            continue;
        run.startShell(QString::fromUtf8(line.mid(2)));
        shown += line + '\n' + run.output;
    }
    return shown;
}

const char kBadFile[] = "number_of_runs:1\n";
const char kBadFileError[] =
    "in/bad.hts:1: error: the file ends where \"END_PACKAGE_PREAMBLE\" is expected; a conversion "
    "fails: \"Cannot read package preamble\" [package-preamble]\n";

} // namespace

class TestBatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goodFilesAreAllConverted_data() { addRecipes(); }

    void goodFilesAreAllConverted()
    {
        QFETCH(QString, recipe);
        Batch batch;
        batch.addInput(QStringLiteral("a.hts"));
        batch.addInput(QStringLiteral("b.hts"));
        batch.startShell(recipe);
        QCOMPARE(batch.errors, QByteArray());
        QVERIFY2(batch.output.endsWith("2 of 2 files converted, 0 failed\n"), batch.output);
        QCOMPARE(batch.exitCode, 0);
        for (const QString& name : {QStringLiteral("a"), QStringLiteral("b")}) {
            QCOMPARE(batch.result(name + QStringLiteral(".hts")), monthlySums());
            QVERIFY(batch.result(name + QStringLiteral(".log")).endsWith(kCreated));
            QVERIFY(batch.result(name + QStringLiteral(".check")).contains("Lake A.Outflow: Sum"));
        }
    }

    void badFileIsNamedAndTheOthersAreConverted_data() { addRecipes(); }

    void badFileIsNamedAndTheOthersAreConverted()
    {
        QFETCH(QString, recipe);
        QFETCH(int, failure);
        Batch batch;
        batch.addInput(QStringLiteral("a.hts"));
        batch.addInput(QStringLiteral("bad.hts"), kBadFile);
        batch.addInput(QStringLiteral("c.hts"));
        batch.startShell(recipe);
        const QByteArray summary = QByteArray("FAILED in/bad.hts\n       ") + kBadFileError +
                                   "2 of 3 files converted, 1 failed\n";
        QVERIFY2(batch.output.endsWith(summary), batch.output);
        QCOMPARE(batch.exitCode, failure);
        QCOMPARE(batch.result(QStringLiteral("a.hts")), monthlySums());
        QCOMPARE(batch.result(QStringLiteral("c.hts")), monthlySums());
        QVERIFY(!batch.exists(QStringLiteral("out/bad.hts")));

        if (recipe == kMake)
            return;
        QByteArrayList rows = batch.result(QStringLiteral("jobs.tsv")).trimmed().split('\n');
        QVERIFY(rows.takeFirst().startsWith("Seq\tHost\tStarttime\tJobRuntime\t"));
        QMap<QByteArray, QByteArray> exitCodes;
        for (const QByteArray& row : rows) {
            const QByteArrayList fields = row.split('\t');
            QCOMPARE(fields.size(), 9);
            exitCodes.insert(fields.at(0), fields.at(6));
        }
        QCOMPARE(exitCodes, (QMap<QByteArray, QByteArray>{{"1", "0"}, {"2", "1"}, {"3", "0"}}));
    }

    void reportsHaveAnIndex()
    {
        Batch batch;
        batch.addInput(QStringLiteral("a & <b>%1.hts"));
        batch.addInput(QStringLiteral("bad.hts"), kBadFile);
        batch.startShell(QStringLiteral("\"$BATCH/report-all\" in c.txt out"));
        QCOMPARE(batch.output, QByteArray("out/index.html: 1 of 2 files convert\n"));
        QCOMPARE(batch.errors, QByteArray());
        QCOMPARE(batch.exitCode, 1);
        const QByteArray index = batch.result(QStringLiteral("index.html"));
        const QByteArray rows =
            "<tr><th scope=\"row\"><a href=\"a%20%26%20%3Cb%3E%251.hts.html\">a &amp; "
            "&lt;b&gt;%1.hts</a>"
            "</th><td>converts</td><td>0 errors, 0 warnings, 1 note</td></tr>\n"
            "<tr><th scope=\"row\"><a href=\"bad.hts.html\">bad.hts</a></th><td>conversion fails: "
            "&quot;Cannot read package preamble&quot;</td><td>1 error, 0 warnings, 0 "
            "notes</td></tr>\n";
        QVERIFY2(index.contains("<tbody>\n" + rows + "</tbody>"), index);
        for (const char* name : {"a & <b>%1.hts.html", "bad.hts.html"})
            QVERIFY(batch.result(QString::fromLatin1(name)).startsWith("<!DOCTYPE html>"));
    }

    void wrongFoldersAndMethodsAreRefused_data() { addRecipes(); }

    void wrongFoldersAndMethodsAreRefused()
    {
        QFETCH(QString, recipe);
        QFETCH(int, failure);
        Batch batch;
        batch.startShell(recipe);
        QVERIFY2(batch.output.endsWith("no HTS files in in\n"), batch.output);
        QCOMPARE(batch.exitCode, failure);

        batch.addInput(QStringLiteral("a.hts"));
        batch.startShell(QString(recipe).replace(QStringLiteral("out"), QStringLiteral("in")));
        QCOMPARE(batch.exitCode, failure);
        QCOMPARE(batch.read(QStringLiteral("in/a.hts")), monthlyFile());

        batch.startShell(
            QString(recipe).replace(QStringLiteral("c.txt"), QStringLiteral("none.txt")));
        QVERIFY2(batch.errors.contains("none.txt"), batch.errors);
        QCOMPARE(batch.exitCode, failure);
        QVERIFY(!batch.exists(QStringLiteral("out/a.hts")));
    }

    void parallelTakesAnyName_data()
    {
        QTest::addColumn<QString>("methods");
        QTest::addColumn<QString>("results");
        QTest::addColumn<QString>("recipes"); // the folder of the recipes
        const auto row = [](const char* name, const char* methods, const char* results,
                            const char* recipes) {
            QTest::newRow(name) << QString::fromLatin1(methods) << QString::fromLatin1(results)
                                << QString::fromLatin1(recipes);
        };
        row("for a shell", "it's m;touch X;`touch X`.txt", "a & b | c > \"d\"",
            "$(touch X) 'my' tools");
        row("for GNU parallel", "m{}{.}{= system('touch X') =}.txt", "+{}/::: %1", "{} tools");
        row("blanks", "the methods.txt", "annual new", "my tools");
    }

    void parallelTakesAnyName()
    {
        QFETCH(QString, methods);
        QFETCH(QString, results);
        QFETCH(QString, recipes);
        Batch batch;
        const QStringList names{QStringLiteral("my lake.hts"), QStringLiteral("-x.hts"),
                                QStringLiteral(" it's 50%; {}(a & b)%1.hts")};
        for (const QString& name : names)
            batch.addInput(name);
        batch.set("METHODS", methods);
        batch.set("RESULTS", results);
        batch.set("RECIPES", recipes);
        // Of "annual new" a shell makes two names, and GNU parallel another folder of "{}".
        batch.startShell(QStringLiteral(
            "mkdir '{}' '{}/annual'; echo kept >'{}/annual/-x.hts'; mv in '{}'; "
            "cp -r \"$BATCH/.\" \"$RECIPES\"; mv c.txt \"{}/$METHODS\"; cd '{}'; "
            "\"../$RECIPES/convert-parallel\" in \"$METHODS\" \"$RESULTS\"; echo $?"));
        QCOMPARE(batch.errors, QByteArray());
        QVERIFY2(batch.output.endsWith("3 of 3 files converted, 0 failed\n0\n"), batch.output);
        for (const QString& name : names)
            QCOMPARE(batch.read(QStringLiteral("{}/%1/%2").arg(results, name)), monthlySums());
        QCOMPARE(batch.read(QStringLiteral("{}/annual/-x.hts")), QByteArray("kept\n"));
        QVERIFY(!batch.exists(QStringLiteral("{}/X")));
    }

    void argumentsAreRefusedBeforeResultsAreRemoved_data()
    {
        addColumns<QString, QByteArray>("command", "reason");
        const auto row = [](const char* name, const char* command, const char* reason) {
            QTest::newRow(name) << QString::fromLatin1(command) << QByteArray(reason) + '\n';
        };
        // "parallel" and "sbatch" are those of the folder "bin", first on the PATH.
        row("control file, parallel", "parallel in none.txt out", "cannot read none.txt");
        row("control file, slurm", "slurm in none.txt out", "cannot read none.txt");
        row("control file is a folder", "parallel in in out", "cannot read in");
        row("control file with a variable", "parallel in 'm$(touch X).txt' out",
            "m$(touch X).txt: the program replaces $NAME in a path by an environment variable");
        row("month", "parallel in c.txt out 13", "END_MONTH is 1 to 12, not \"13\"");
        row("month is empty of digits", "slurm in c.txt out '1;x'",
            "END_MONTH is 1 to 12, not \"1;x\"");
        row("folder like an option", "parallel -in c.txt out",
            "\"-\" begins an option, for a name write ./-in/.");
        row("no folder", "parallel '' c.txt out", "a name is empty");
        row("tab", "parallel 'a\tb' c.txt out",
            "control character in a name (a tab, a line break): a?b/.");
        row("line break in a file's name", "parallel odd c.txt out",
            "control characters in names (a tab, a line break), rename the files: odd/a?b.hts");
        row("results over the control file", "parallel in out/a.log out",
            "out/a.log would be overwritten");
        row("no GNU parallel", "parallel in c.txt out",
            "GNU parallel is missing (Debian: the package parallel)");
        row("no htstool", "parallel in c.txt out", "none: not found");
        row("no file for a task", "slurm in c.txt out",
            "FILES_PER_TASK is a number from 1 on, not \"0\"");
        row("no job taken", "slurm in c.txt out", "sbatch: error: no partition");
    }

    void argumentsAreRefusedBeforeResultsAreRemoved()
    {
        QFETCH(QString, command);
        QFETCH(QByteArray, reason);
        Batch batch;
        batch.addInput(QStringLiteral("a.hts"));
        for (const char* file : {"out/a.hts", "out/a.log", "out/summary.txt"}) {
            QDir(batch.path(QStringLiteral("."))).mkdir(QStringLiteral("out"));
            batch.write(QString::fromLatin1(file), "old\n");
        }
        batch.startShell(QStringLiteral("mkdir bin odd; touch \"$(printf 'odd/a\\nb.hts')\"\n"
                                        "printf '#!/bin/sh\\necho sbatch: error: no partition >&2; "
                                        "exit 1\\n' >bin/sbatch; chmod +x bin/sbatch"));
        const QByteArray row = QTest::currentDataTag();
        if (row == "no GNU parallel")
            batch.startShell(QStringLiteral("cp bin/sbatch bin/parallel"));
        else if (row == "no htstool")
            batch.set("HTSTOOL", QStringLiteral("none"));
        else if (row == "no file for a task")
            batch.set("FILES_PER_TASK", QStringLiteral("0"));
        batch.startShell(QStringLiteral("PATH=$PWD/bin:$PATH; \"$BATCH\"/convert-") + command);
        QCOMPARE(batch.errors, reason);
        QCOMPARE(batch.output, QByteArray());
        QCOMPARE(batch.exitCode, 1);
        for (const char* file : {"a.hts", "a.log", "summary.txt"})
            QCOMPARE(batch.result(QString::fromLatin1(file)), QByteArray("old\n"));
    }

    void oneFileIsRefused_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QByteArray>("errors");
        QTest::addColumn<QByteArray>("check"); // what it holds
        const QByteArray none = "(no file)";
        QTest::newRow("like an option")
            << QStringLiteral("-x.hts c.txt out")
            << QByteArray("\"-\" begins an option, for a name write ./-x.hts\n") << none;
        QTest::newRow("tab") << QStringLiteral("\"in/a\tb.hts\" c.txt out")
                             << QByteArray("control character in a name (a tab, a line break): "
                                           "in/a?b.hts\n")
                             << none;
        // The program would convert another file than the check reads.
        QTest::newRow("variable") << QStringLiteral("'in/$HOME.hts' c.txt out") << QByteArray()
                                  << QByteArray(
                                         "in/$HOME.hts: error: the program replaces $NAME in a "
                                         "path by an environment variable\n");
    }

    void oneFileIsRefused()
    {
        QFETCH(QString, arguments);
        QFETCH(QByteArray, errors);
        QFETCH(QByteArray, check);
        Batch batch;
        for (const char* name : {"-x.hts", "a\tb.hts", "$HOME.hts"})
            batch.addInput(QString::fromLatin1(name));
        batch.startShell(QStringLiteral("\"$BATCH/convert-one\" ") + arguments);
        QCOMPARE(batch.errors, errors);
        QCOMPARE(batch.exitCode, 1);
        QCOMPARE(batch.result(QStringLiteral("$HOME.check")), check);
        QVERIFY(!batch.exists(QStringLiteral("out/$HOME.hts")));
    }

    void makeRefusesNames_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name :
             {"my lake.hts", "a:b.hts", "a;b.hts", "100%.hts", "a*.hts", "a?.hts", "a#1.hts",
              "a|b.hts", "a$b.hts", "it's.hts", "a[1].hts", "a\\b.hts"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void makeRefusesNames()
    {
        QFETCH(QString, name);
        Batch batch;
        batch.addInput(QStringLiteral("a.hts"));
        batch.addInput(name);
        batch.startShell(kMake);
        QVERIFY2(batch.errors.contains("make cannot handle these names, rename the files: in/" +
                                       name.toUtf8() + '.'),
                 batch.errors);
        QCOMPARE(batch.exitCode, 2);
        QVERIFY(!batch.exists(QStringLiteral("out/a.hts")));
    }

    void makeRefusesItsVariables_data()
    {
        addColumns<QString, QByteArray>("variable", "reason");
        const auto row = [](const char* variable, const char* reason) {
            QTest::newRow(variable) << QString::fromLatin1(variable) << QByteArray(reason);
        };
        row("RESULTS=annual new", "make cannot handle this name: RESULTS=annual new.");
        row("INPUTS=`touch X`", "make cannot handle this name: INPUTS=`touch X`.");
        row("METHODS=m$(shell touch X).txt",
            "make cannot handle this name: METHODS=m$(shell touch X).txt.");
        row("INPUTS=-in", "\"-\" begins an option, for a name write ./-in/.\n");
        row("END_MONTH=13", "END_MONTH is 1 to 12, not \"13\"\n");
    }

    void makeRefusesItsVariables()
    {
        QFETCH(QString, variable);
        QFETCH(QByteArray, reason);
        Batch batch;
        batch.addInput(QStringLiteral("a.hts"));
        batch.set("VARIABLE", variable);
        batch.startShell(kMake + QStringLiteral(" \"$VARIABLE\""));
        QVERIFY2(batch.errors.contains(reason), batch.errors);
        QCOMPARE(batch.exitCode, 2);
        QVERIFY(!batch.exists(QStringLiteral("X")));
        QVERIFY(!batch.exists(QStringLiteral("out")));
    }

    void makeTakesNamesThatMeanSomethingToAShell()
    {
        Batch batch;
        const QString name =
            QStringLiteral("a&b(1)`touch made`\"<>~!.hts").remove(QLatin1Char(' '));
        batch.addInput(name);
        batch.startShell(kMake);
        QCOMPARE(batch.exitCode, 0);
        QVERIFY(batch.exists(QStringLiteral("out/") + name));
    }

    void onlyWhatChangedIsConverted_data()
    {
        addColumns<QString, QString>("first", "again");
        QTest::newRow("make") << kMake << kMake;
        QTest::newRow("parallel") << kParallel << kResume;
        QTest::newRow("make, parallel") << kMake << kResume;
        QTest::newRow("parallel, make") << kParallel << kMake;
    }

    void onlyWhatChangedIsConverted()
    {
        QFETCH(QString, first);
        QFETCH(QString, again);
        Batch batch;
        const auto names = {"a.hts", "b.hts", "c.hts"};
        for (const char* name : names)
            batch.addInput(QLatin1String(name));
        batch.startShell(first);
        QCOMPARE(batch.exitCode, 0);

        const QByteArray kept = "not converted again\n";
        for (const char* name : names)
            batch.write(QStringLiteral("out/") + QLatin1String(name), kept);
        batch.startShell(again);
        QCOMPARE(batch.output, QByteArray("3 of 3 files converted, 0 failed\n"));
        QCOMPARE(batch.exitCode, 0);
        for (const char* name : names)
            QCOMPARE(batch.result(QLatin1String(name)), kept);

        batch.startShell(QStringLiteral("touch -d 2001-01-01 out/a.hts in/b.hts out/b.hts; ") +
                         again);
        QCOMPARE(batch.exitCode, 0);
        QCOMPARE(batch.result(QStringLiteral("a.hts")), monthlySums()); // older than its input
        QCOMPARE(batch.result(QStringLiteral("b.hts")), monthlySums()); // older than the methods
        QCOMPARE(batch.result(QStringLiteral("c.hts")), kept);
    }

    void allIsConvertedAfterOtherParameters_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("again");
        QTest::addColumn<QByteArray>("line"); // of the results then
        const QByteArray year = "end:2001-6-30 24:00";
        const QByteArray method = "method: Max";
        const QString resume =
            QString(kResume).replace(QStringLiteral("c.txt"), QStringLiteral("d.txt"));
        QTest::newRow("make, month") << kMake << kMake + QStringLiteral(" END_MONTH=6") << year;
        QTest::newRow("parallel, month") << kParallel << kResume + QStringLiteral(" 06") << year;
        QTest::newRow("make, methods")
            << kMake << kMake + QStringLiteral(" METHODS=d.txt") << method;
        QTest::newRow("parallel, methods") << kParallel << resume << method;
    }

    void allIsConvertedAfterOtherParameters()
    {
        QFETCH(QString, first);
        QFETCH(QString, again);
        QFETCH(QByteArray, line);
        Batch batch;
        batch.addInput(QStringLiteral("a.hts"));
        batch.write(QStringLiteral("d.txt"), "*.*: Max\n"); // older than the results
        batch.startShell(first);
        QCOMPARE(batch.result(QStringLiteral("a.hts")), monthlySums());
        batch.startShell(again);
        QCOMPARE(batch.exitCode, 0);
        QVERIFY(batch.result(QStringLiteral("a.hts")).contains('\n' + line + '\n'));
    }

    void runThatEndsEarlyLeavesNoOldResult()
    {
        Batch batch;
        batch.addInput(QStringLiteral("a.hts"));
        batch.addInput(QStringLiteral("b.hts"));
        batch.startShell(kParallel);
        QCOMPARE(batch.exitCode, 0);
        batch.addInput(QStringLiteral("a.hts"), kBadFile);
        batch.startShell(QStringLiteral("PARALLEL='--jobs 1 --halt now,fail=1' ") + kParallel +
                         QStringLiteral(" 6 2>parallel.txt"));
        const QByteArray first = QByteArray("FAILED in/a.hts\n       ") +
                                 QByteArray(kBadFileError).replace("bad.hts", "a.hts");
        QCOMPARE(batch.output, first + "FAILED in/b.hts\n       not run\n"
                                       "0 of 2 files converted, 2 failed\n");
        QCOMPARE(batch.exitCode, 1);
        for (const char* name : {"a.hts", "a.log", "b.hts"})
            QVERIFY(!batch.exists(QStringLiteral("out/") + QLatin1String(name)));
        batch.startShell(kResume + QStringLiteral(" 6"));
        QCOMPARE(batch.output, first + "1 of 2 files converted, 1 failed\n");
    }

    void summaryNamesAResultThatIsTooOld()
    {
        Batch batch;
        batch.addInput(QStringLiteral("a.hts"));
        batch.addInput(QStringLiteral("b.hts"));
        batch.startShell(
            QStringLiteral("mkdir out; touch out/a.hts; touch -d 2001-01-01 out/b.hts; "
                           "\"$BATCH/summary\" in c.txt out"));
        QCOMPARE(batch.output,
                 QByteArray("FAILED in/b.hts\n       its result is older than it or than c.txt\n"
                            "1 of 2 files converted, 1 failed\n"));
        QCOMPARE(batch.exitCode, 1);
    }

    void summaryGivesTheReason_data()
    {
        addColumns<QByteArray, QByteArray, QByteArray>("check", "log", "reason");
        const QByteArray report = "in/a.hts: 0 errors, 1 warning, 0 notes\n"
                                  "in/a.hts:9: warning: \"x: error: y\" is text [text-value]\n"
                                  "in/a.hts: plan: Lake A.Outflow: Sum, rule of line 1\n";
        const QByteArray success = kCreated;
        QTest::newRow("empty last line")
            << report + "b.log: No space left on device\n\n"
            << QByteArray() << QByteArray("b.log: No space left on device");
        QTest::newRow("log") << report << QByteArray("Error:\nNo series\n\n")
                             << QByteArray("No series");
        QTest::newRow("after the log") << report + "mv: cannot move\n"
                                       << success << QByteArray("mv: cannot move");
        QTest::newRow("bytes that are no text")
            << QByteArray("a\xff: error: b\xff\n") << QByteArray()
            << QByteArray("a\xff: error: b\xff");
        QTest::newRow("nothing") << QByteArray() << QByteArray()
                                 << QByteArray(
                                        "no reason in out/a.check: was it interrupted, or is the "
                                        "disk full?");
    }

    void summaryGivesTheReason()
    {
        QFETCH(QByteArray, check);
        QFETCH(QByteArray, log);
        QFETCH(QByteArray, reason);
        Batch batch;
        batch.startShell(QStringLiteral("mkdir out; ln -s none in/a.hts; ln -s none in/b.hts"));
        batch.write(QStringLiteral("out/a.check"), check);
        batch.write(QStringLiteral("out/a.log"), log);
        batch.startShell(QStringLiteral("\"$BATCH/summary\" in c.txt out"));
        QCOMPARE(batch.output, "FAILED in/a.hts\n       " + reason +
                                   "\nFAILED in/b.hts\n       not run\n"
                                   "0 of 2 files converted, 2 failed\n");
        QCOMPARE(batch.exitCode, 1);
    }

    void summaryCountsWarnings()
    {
        Batch batch;
        batch.addInput(QStringLiteral("a.hts"));
        batch.addInput(QStringLiteral("b.hts"), monthlyFile().replace(".000000000000\n", ",0\n"));
        batch.startShell(
            QStringLiteral("for file in a b; do \"$BATCH/convert-one\" in/$file.hts c.txt "
                           "out >>jobs.txt; done; \"$BATCH/summary\" in c.txt out"));
        QByteArrayList lines = batch.output.split('\n');
        QCOMPARE(lines.mid(0, 2).join('\n'),
                 QByteArray("WARNED in/b.hts\n       24 warnings: out/b.check"));
        for (int i = 0; i < 3; ++i)
            QVERIFY2(lines.takeAt(2).startsWith("       in/b.hts:"), batch.output);
        QCOMPARE(lines.mid(2).join('\n'),
                 QByteArray("2 of 2 files converted, 0 failed, 1 with warnings\n"));
        QCOMPARE(batch.exitCode, 0);
    }

    void failOnKeepsFilesFromBeingConverted_data() { addRecipes(); }

    void failOnKeepsFilesFromBeingConverted()
    {
        QFETCH(QString, recipe);
        QFETCH(int, failure);
        Batch batch;
        batch.addInput(QStringLiteral("a.hts"));
        batch.addInput(QStringLiteral("b.hts"), monthlyFile().replace(".000000000000\n", ",0\n"));
        batch.set("FAIL_ON", QStringLiteral("sentinel,text-value"));
        batch.startShell(recipe);
        QVERIFY2(batch.output.endsWith("FAILED in/b.hts\n       not converted, because of "
                                       "FAIL_ON=sentinel,text-value\n"
                                       "1 of 2 files converted, 1 failed\n"),
                 batch.output);
        QCOMPARE(batch.exitCode, failure);
        QVERIFY(!batch.exists(QStringLiteral("out/b.hts")));
        // Other findings than the last time.
        batch.set("FAIL_ON", QStringLiteral("sentinel"));
        batch.startShell(recipe);
        QVERIFY2(batch.output.endsWith("2 of 2 files converted, 0 failed, 1 with warnings\n"),
                 batch.output);
    }

    void documentShowsWhatParallelPrints()
    {
        Batch batch;
        for (const char* name : {"lower.hts", "mid basin.hts", "upper.hts"})
            batch.addInput(QString::fromLatin1(name));
        batch.addInput(QStringLiteral("cut.hts"), kBadFile);
        batch.startShell(
            QStringLiteral("mv in daily; mv c.txt methods.txt; ln -s \"$BATCH/..\" examples"));
        const QByteArray terminal = terminalOf("GNU parallel");
        QVERIFY(!terminal.isEmpty());
        QCOMPARE(typed(batch, terminal), terminal);
    }

    void documentShowsWhatMakePrints()
    {
        Batch batch;
        for (const char* name : {"lower.hts", "middle.hts", "upper.hts"})
            batch.addInput(QString::fromLatin1(name));
        batch.startShell(
            QStringLiteral("mv in daily; mv c.txt methods.txt; ln -s \"$BATCH/..\" examples"));
        const QByteArray terminal = terminalOf("make");
        QVERIFY(!terminal.isEmpty());
        typed(batch, terminal); // the conversions of the first time end in any order
        QCOMPARE(typed(batch, terminal), terminal);
    }

private:
    static void addRecipes()
    {
        QTest::addColumn<QString>("recipe");
        QTest::addColumn<int>("failure"); // its exit code then
        QTest::newRow("parallel") << kParallel << 1;
        QTest::newRow("make") << kMake << 2;
    }
};

HTS_TEST(TestBatch, QCoreApplication)

#include "tst_batch.moc"
