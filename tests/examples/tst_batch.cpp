// The recipes of examples/batch that need no daemon, over folders of small files.

#include <QtTest>

#include "tests/app/annualizerrun.h"
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
    // GNU parallel keeps its own folder there.
    environment.insert(QStringLiteral("HOME"), path(QStringLiteral("home")));
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

const char kBadFile[] = "no HTS file\n";
const char kBadFileError[] =
    "in/bad.hts:1: error: the file ends where \"END_PACKAGE_PREAMBLE\" is expected; a conversion "
    "fails: \"Cannot read package preamble\" [package-preamble]\n";

} // namespace

class TestBatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goodFilesAreAllConverted_data();
    void goodFilesAreAllConverted();
    void badFileIsNamedAndTheOthersAreConverted_data();
    void badFileIsNamedAndTheOthersAreConverted();
    void emptyFolderIsAnError_data();
    void emptyFolderIsAnError();
    void resultsNeedASeparateFolder_data();
    void resultsNeedASeparateFolder();
    void methodsThatAreNotThereAreAnError_data();
    void methodsThatAreNotThereAreAnError();
    void parallelTakesNamesWithBlanks();
    void parallelListsItsJobs();
    void makeRefusesNames_data();
    void makeRefusesNames();
    void makeTakesNamesThatMeanSomethingToAShell();
    void makeConvertsOnlyWhatChanged();
    void makeConvertsAllAfterAnotherMonth();
    void failedFileLosesItsOldResult();
    void summaryNamesAResultThatIsTooOld();
    void documentShowsWhatParallelPrints();
    void documentShowsWhatMakePrints();
};

namespace {

void addRecipes()
{
    QTest::addColumn<QString>("recipe");
    QTest::addColumn<int>("failure"); // its exit code then
    QTest::newRow("parallel") << kParallel << 1;
    QTest::newRow("make") << kMake << 2;
}

} // namespace

void TestBatch::goodFilesAreAllConverted_data()
{
    addRecipes();
}

void TestBatch::goodFilesAreAllConverted()
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

void TestBatch::badFileIsNamedAndTheOthersAreConverted_data()
{
    addRecipes();
}

void TestBatch::badFileIsNamedAndTheOthersAreConverted()
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
}

void TestBatch::emptyFolderIsAnError_data()
{
    addRecipes();
}

void TestBatch::emptyFolderIsAnError()
{
    QFETCH(QString, recipe);
    QFETCH(int, failure);
    Batch batch;
    batch.startShell(recipe);
    QVERIFY2(batch.output.endsWith("no HTS files in in\n"), batch.output);
    QCOMPARE(batch.exitCode, failure);
}

void TestBatch::resultsNeedASeparateFolder_data()
{
    addRecipes();
}

void TestBatch::resultsNeedASeparateFolder()
{
    QFETCH(QString, recipe);
    QFETCH(int, failure);
    Batch batch;
    batch.addInput(QStringLiteral("a.hts"));
    batch.startShell(QString(recipe).replace(QStringLiteral("out"), QStringLiteral("in")));
    QCOMPARE(batch.exitCode, failure);
    QCOMPARE(batch.read(QStringLiteral("in/a.hts")), monthlyFile());
}

void TestBatch::methodsThatAreNotThereAreAnError_data()
{
    addRecipes();
}

void TestBatch::methodsThatAreNotThereAreAnError()
{
    QFETCH(QString, recipe);
    QFETCH(int, failure);
    Batch batch;
    batch.addInput(QStringLiteral("a.hts"));
    batch.startShell(QString(recipe).replace(QStringLiteral("c.txt"), QStringLiteral("none.txt")));
    QVERIFY2(batch.errors.contains("none.txt"), batch.errors);
    QCOMPARE(batch.exitCode, failure);
    QVERIFY(!batch.exists(QStringLiteral("out/a.hts")));
}

void TestBatch::parallelTakesNamesWithBlanks()
{
    Batch batch;
    for (const char* name : {"my lake.hts", " it's 50%; (a & b)\n.hts"})
        batch.addInput(QString::fromLatin1(name));
    batch.startShell(kParallel);
    QCOMPARE(batch.output, QByteArray("2 of 2 files converted, 0 failed\n"));
    QCOMPARE(batch.exitCode, 0);
    QCOMPARE(batch.result(QStringLiteral("my lake.hts")), monthlySums());
    QCOMPARE(batch.result(QStringLiteral(" it's 50%; (a & b)\n.hts")), monthlySums());
}

void TestBatch::parallelListsItsJobs()
{
    Batch batch;
    batch.addInput(QStringLiteral("a.hts"));
    batch.addInput(QStringLiteral("bad.hts"), kBadFile);
    batch.startShell(kParallel);
    QByteArrayList rows = batch.result(QStringLiteral("jobs.tsv")).trimmed().split('\n');
    QVERIFY(rows.takeFirst().startsWith("Seq\tHost\tStarttime\tJobRuntime\t"));
    QMap<QByteArray, QByteArray> exitCodes;
    for (const QByteArray& row : rows) {
        const QByteArrayList fields = row.split('\t');
        QCOMPARE(fields.size(), 9);
        exitCodes.insert(fields.at(0), fields.at(6));
    }
    QCOMPARE(exitCodes, (QMap<QByteArray, QByteArray>{{"1", "0"}, {"2", "1"}}));
}

void TestBatch::makeRefusesNames_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"my lake.hts", "a:b.hts", "a;b.hts", "100%.hts", "a*.hts", "a?.hts",
                             "a#1.hts", "a|b.hts", "a$b.hts", "it's.hts", "a[1].hts", "a\\b.hts"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void TestBatch::makeRefusesNames()
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

void TestBatch::makeTakesNamesThatMeanSomethingToAShell()
{
    Batch batch;
    const QString name = QStringLiteral("a&b(1)`touch made`\"<>~!.hts").remove(QLatin1Char(' '));
    batch.addInput(name);
    batch.startShell(kMake);
    QCOMPARE(batch.exitCode, 0);
    QVERIFY(batch.exists(QStringLiteral("out/") + name));
}

void TestBatch::makeConvertsOnlyWhatChanged()
{
    Batch batch;
    batch.addInput(QStringLiteral("a.hts"));
    batch.addInput(QStringLiteral("b.hts"));
    batch.startShell(kMake);
    QCOMPARE(batch.exitCode, 0);

    const QByteArray kept = "not converted again\n";
    for (const QString& name : {QStringLiteral("out/a.hts"), QStringLiteral("out/b.hts")})
        batch.write(name, kept);
    batch.startShell(kMake);
    QCOMPARE(batch.exitCode, 0);
    QCOMPARE(batch.result(QStringLiteral("a.hts")), kept);
    QCOMPARE(batch.result(QStringLiteral("b.hts")), kept);

    batch.startShell(QStringLiteral("touch -d 2001-01-01 out/a.hts; ") + kMake);
    QCOMPARE(batch.exitCode, 0);
    QCOMPARE(batch.result(QStringLiteral("a.hts")), monthlySums());
    QCOMPARE(batch.result(QStringLiteral("b.hts")), kept);

    batch.startShell(QStringLiteral("touch -d 2001-01-01 in/b.hts out/b.hts; ") + kMake);
    QCOMPARE(batch.exitCode, 0);
    QCOMPARE(batch.result(QStringLiteral("b.hts")), monthlySums()); // older than the methods
}

void TestBatch::makeConvertsAllAfterAnotherMonth()
{
    Batch batch;
    batch.addInput(QStringLiteral("a.hts"));
    batch.startShell(kMake);
    QCOMPARE(batch.result(QStringLiteral("a.hts")), monthlySums());
    batch.startShell(kMake + QStringLiteral(" END_MONTH=6"));
    QCOMPARE(batch.exitCode, 0);
    QVERIFY(batch.result(QStringLiteral("a.hts")).contains("\nend:2001-6-30 24:00\n"));
}

void TestBatch::failedFileLosesItsOldResult()
{
    Batch batch;
    batch.addInput(QStringLiteral("a.hts"));
    batch.startShell(kParallel);
    QVERIFY(batch.exists(QStringLiteral("out/a.hts")));
    batch.addInput(QStringLiteral("a.hts"), kBadFile);
    batch.startShell(kParallel);
    QCOMPARE(batch.exitCode, 1);
    QVERIFY(!batch.exists(QStringLiteral("out/a.hts")));
    QVERIFY(!batch.exists(QStringLiteral("out/a.log")));
}

void TestBatch::summaryNamesAResultThatIsTooOld()
{
    Batch batch;
    batch.addInput(QStringLiteral("a.hts"));
    batch.addInput(QStringLiteral("b.hts"));
    batch.startShell(kParallel);
    QCOMPARE(batch.exitCode, 0);
    batch.startShell(
        QStringLiteral("touch -d 2001-01-01 out/b.hts; \"$BATCH/summary\" in c.txt out"));
    QCOMPARE(batch.output,
             QByteArray("FAILED in/b.hts\n       its result is older than it or than c.txt\n"
                        "1 of 2 files converted, 1 failed\n"));
    QCOMPARE(batch.exitCode, 1);
}

void TestBatch::documentShowsWhatParallelPrints()
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

void TestBatch::documentShowsWhatMakePrints()
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

QTEST_GUILESS_MAIN(TestBatch)

#include "tst_batch.moc"
