// The commands of README.md, examples/README.md, and some of docs/, typed as they are shown in a
// folder that looks like the source tree after scripts/run-example: they give what the text shows
// after them.

#include <QtTest>

#include "tests/help/examplerun.h"
#include "tests/help/markdown.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

QByteArray example(const char* name)
{
    return sourceFile(QStringLiteral("examples/") + QLatin1String(name));
}

// Whether the lines of `block`, which may end with "...", follow one another in `text`.
bool hasLines(const QByteArray& text, QByteArray block)
{
    if (block.endsWith("\n..."))
        block.chop(4);
    const QByteArray lines = '\n' + text;
    return !block.isEmpty() && lines.contains('\n' + block + '\n');
}

} // namespace

class TestReadme : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyBlockIsTested()
    {
        QByteArrayList starts;
        for (const QByteArray& block : m_blocks)
            starts.append(block.split(' ').first());
        QCOMPARE(starts.join('|'),
                 QByteArray("git|scripts/test|PATH=$PWD/build/release/app:$PWD/build/release/tool:"
                            "$PATH|object_type:|Choptank.Volume.Daily:|HtsAnnualizer|units:|echo|"
                            "HtsAnnualizer|htstool|run,trace,object,slot,units,time,value,year"
                            "\n1,,Choptank,Flow,m3/s,2000-10-01T00:00:00,4.723110711085,2000|$|"
                            "scripts/package\nsudo|cmake"));
    }

    void everyTerminalHasATest_data()
    {
        QTest::addColumn<QString>("document");
        const QString root = QStringLiteral(SOURCE_DIR "/");
        for (const char* folder : {"", "docs/", "examples/"}) {
            for (const QString& name :
                 QDir(root + QLatin1String(folder)).entryList({QStringLiteral("*.md")}))
                QTest::newRow(qPrintable(QLatin1String(folder) + name))
                    << QLatin1String(folder) + name;
        }
    }

    // A terminal is a block that shows commands and what they print. A new one needs a test that
    // types it; this one only counts.
    void everyTerminalHasATest()
    {
        const QMap<QString, int> tested = {
            {QStringLiteral("README.md"), 1},            // here
            {QStringLiteral("docs/hts-format.md"), 2},   // tst_formatdocs
            {QStringLiteral("docs/control-file.md"), 3}, // tst_formatdocs
            {QStringLiteral("docs/import.md"), 6},       // tst_formatdocs
            {QStringLiteral("docs/htstool.md"), 3},      // tst_tooldoc
            {QStringLiteral("docs/batch.md"), 3},        // tst_batch, and tests/examples/test-slurm
        };
        QFETCH(QString, document);
        int terminals = 0;
        for (const QByteArray& block : codeBlocks(sourceFile(document)))
            terminals += block.startsWith("$ ") || block.contains("\n$ ") ? 1 : 0;
        QCOMPARE(terminals, tested.value(document));
    }

    void conversionGivesTheLinesShown()
    {
        QVERIFY(hasLines(example("rivers_daily.hts"), block("object_type: ")));
        QCOMPARE(block("Choptank.Volume.Daily: ") + '\n', example("rivers_daily_methods.txt"));

        ExampleRun run;
        type(run, block("HtsAnnualizer -i examples/"));
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        const QByteArray result = run.read("build/rivers_annual.hts");
        QCOMPARE(result, golden("rivers_september.expected"));
        QVERIFY(hasLines(result, block("units: ")));
        QVERIFY(run.read("build/rivers_annual.log").endsWith(kCreated));
    }

    void failureShowsWhatIsShown()
    {
        ExampleRun run;
        QCOMPARE(run.type(block("$ "), block("PATH=")), block("$ "));
        QCOMPARE(run.errors, QByteArray());
    }

    void ownFileIsConverted()
    {
        ExampleRun run;
        run.write("mine.hts", example("rivers_daily.hts"));
        type(run, block("echo "));
        QVERIFY(run.output.contains("mine.hts: plan: Choptank.Flow: Average, rule of line 1\n"));
        type(run, block("HtsAnnualizer -i mine.hts "));
        QCOMPARE(run.exitCode, 0);
        QVERIFY(hasLines(run.read("annual.hts"), block("units: ")));
        QVERIFY(run.read("mine.html").contains("4.723110711085"));
    }

    void tableGivesTheAnnualValueShown()
    {
        ExampleRun run;
        type(run, block("htstool "));
        QCOMPARE(asShown(run.output), block("run,trace,"));
        QCOMPARE(run.exitCode, 0);
    }

    void uncheckedFileGivesTheAverageShown()
    {
        AnnualizerRun run;
        run.startShell(QStringLiteral("$PROGRAM -i '" SOURCE_DIR
                                      "/tests/tool/files/pond.hts' -c '" SOURCE_DIR
                                      "/tests/tool/files/pond_methods.txt' -o annual.hts"));
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        const QByteArray text = sourceFile("docs/htstool.md");
        const int begin = text.indexOf("the average of 2022 is\n") + 23;
        const QByteArray shown = text.mid(begin, text.indexOf(".\n", begin) - begin);
        const QByteArrayList lines = run.read("annual.hts").split('\n');
        // Of the years 2021, 2022 and 2023 that slot has one value each.
        QCOMPARE(lines.value(lines.indexOf("method: Average") + 2), shown);
    }

    void exampleCommandGivesTheComputedResult()
    {
        QCOMPARE(m_exampleBlocks.size(), 2);
        ExampleRun run;
        type(run, m_exampleBlocks.first());
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        QCOMPARE(run.read("build/basins_annual.hts"), golden("basins_december.expected"));
    }

    void pandasReadsTheExport()
    {
        QByteArray program;
        for (const QByteArray& block : codeBlocks(sourceFile("docs/exchange.md"))) {
            if (block.startsWith("from read import "))
                program = block;
        }
        const int lastLine = program.lastIndexOf('\n') + 1;
        QVERIFY(lastLine > 0);
        MonthlyRun run;
        run.write("mean.py",
                  program.left(lastLine) + "print(" + program.mid(lastLine) + ".to_dict())\n");
        run.startShell(QStringLiteral("'" HTSTOOL "' export -o flows.csv a.hts && "
                                      "PYTHONDONTWRITEBYTECODE=1 PYTHONPATH='" SOURCE_DIR
                                      "/examples/exchange' /usr/bin/python3 mean.py"));
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.output, QByteArray("{'Lake A': 12.5}\n"));
    }

    void resultIsDrawn()
    {
        ExampleRun run;
        // Debian's Python has the packages.
        run.set("PATH", QStringLiteral("/usr/bin:/bin"));
        run.set("HOME", run.path("home"));
        type(run, block("HtsAnnualizer -i examples/"));
        const QByteArray draw = m_exampleBlocks.value(1);
        for (const QByteArray& command :
             {draw, QByteArray(draw).replace("plot.py", "plot-gnuplot")}) {
            type(run, "rm -f build/plot.png\n" + command);
            QCOMPARE(run.errors, QByteArray());
            QCOMPARE(run.exitCode, 0);
            QVERIFY(run.read("build/plot.png").startsWith("\x89PNG"));
        }
    }

    // The commands of docs/reliability.md that keep an old result, and conversions, from each
    // other.
    void saferCommandsConvert()
    {
        const QByteArrayList blocks = codeBlocks(sourceFile("docs/reliability.md"));
        QCOMPARE(blocks.size(), 2);
        for (const QByteArray& block : blocks) {
            CommandRun run;
            writeInputs(run);
            run.startShell(QString::fromUtf8(block));
            QCOMPARE(run.ended(), QByteArray("exit 0"));
            QCOMPARE(run.result(), monthlySums());
            QVERIFY(!run.exists("b.new"));
            QVERIFY(run.log().endsWith(kCreated));
        }
    }

private:
    // The only block that begins with `start`; empty when there is none, or more than one.
    QByteArray block(const QByteArray& start) const
    {
        QByteArrayList found;
        for (const QByteArray& block : m_blocks) {
            if (block.startsWith(start))
                found.append(block);
        }
        return found.size() == 1 ? found.first() : QByteArray();
    }

    // Types the commands in a shell that finds the programs as the README has it.
    void type(AnnualizerRun& run, const QByteArray& commands) const
    {
        run.startShell(QString::fromUtf8(block("PATH=") + '\n' + commands));
    }

    QByteArrayList m_blocks = codeBlocks(sourceFile("README.md"));
    QByteArrayList m_exampleBlocks = codeBlocks(sourceFile("examples/README.md"));
};

HTS_TEST(TestReadme, QCoreApplication)

#include "tst_readme.moc"
