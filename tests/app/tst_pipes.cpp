// The program as one end of a pipe whose other end stays open. It must take what it needs and end;
// a program that waits for more than that, or waits in another order, hangs here.

#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/support/testmain.h"

static void writeBothInputs(const AnnualizerRun& run)
{
    writeInputs(run);
    run.write(QStringLiteral("w.hts"), monthlyFile().replace("\n", "\r\n"));
}

// What the rows of addWriterRows() are converted to.
static QByteArray expectedResult(const QString& writer)
{
    if (!writer.contains(QLatin1String("number_of_runs:3")))
        return monthlySums();
    const QByteArray sums = monthlySums();
    const int runStart = sums.indexOf("start:");
    return sums.left(runStart).replace("number_of_runs:1", "number_of_runs:3") +
           sums.mid(runStart).repeated(3);
}

// The shell has the pipe open until the program has ended. It may write to it after that.
static QString commandWithOpenPipe(const QString& writer)
{
    return QStringLiteral("mkfifo p; \"$PROGRAM\" -i p -o b.hts -c c.txt & exec 3>p; "
                          "trap '' PIPE; { %1; } >&3 2>writer.txt; wait $!")
        .arg(writer);
}

class TestPipes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writerStaysOpen_data() { addWriterRows(); }

    void writerStaysOpen()
    {
        QFETCH(QString, writer);
        AnnualizerRun run;
        writeBothInputs(run);
        run.startShell(commandWithOpenPipe(writer));
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        QCOMPARE(run.read(QStringLiteral("b.hts")), expectedResult(writer));
        QVERIFY(run.read(QStringLiteral("b.log")).endsWith(kCreated));
    }

    void writerWaitsForTheResult_data() { addWriterRows(); }

    // Whoever writes the input reads the result to its end before it closes the input.
    void writerWaitsForTheResult()
    {
        QFETCH(QString, writer);
        const QString exchange =
            QStringLiteral("{ trap '' PIPE; cat q > b.hts & { %1; } 2>writer.txt; wait; }")
                .arg(writer);
        for (const char* command :
             {"mkfifo p q; %1 > p & \"$PROGRAM\" -i p -o q -c c.txt -l b.log; code=$?; wait; exit "
              "$code",
              "mkfifo q; %1 | \"$PROGRAM\" -i /dev/stdin -o q -c c.txt -l b.log"}) {
            AnnualizerRun run;
            writeBothInputs(run);
            run.startShell(QString::fromLatin1(command).arg(exchange));
            QCOMPARE(run.ended(), QByteArray("exit 0"));
            QCOMPARE(run.read(QStringLiteral("b.hts")), expectedResult(writer));
            QVERIFY(run.read(QStringLiteral("b.log")).endsWith(kCreated));
        }
    }

    void writerWaitsForTheFailure_data()
    {
        addColumns<QString, QByteArray>("writer", "reason");
        const QByteArray noYear = "Cannot create a complete year from the input HTS file";
        QTest::newRow("no run") << QStringLiteral(
                                       "printf 'number_of_runs:0\nEND_PACKAGE_PREAMBLE\n'")
                                << noYear;
        QTest::newRow("empty line in a preamble")
            << QStringLiteral("printf '\n'") << QByteArray("Cannot read package preamble");
        QTest::newRow("bad timestep") << QStringLiteral("sed s/2001-12-31.24:00$/June/ a.hts")
                                      << QByteArray("Cannot read run preamble");
        QTest::newRow("annual already") << QStringLiteral("sed s/unit:month/unit:year/ a.hts")
                                        << QByteArray("Source HTS File already in annual timestep");
        QTest::newRow("no complete year")
            << QStringLiteral("sed s/unit:month/unit:week/ a.hts") << noYear;
        QTest::newRow("missing units")
            << QStringLiteral("sed s/units/unit/ a.hts")
            << QByteArray("Cannot read HTS file: Missing units or scale");
    }

    void writerWaitsForTheFailure()
    {
        QFETCH(QString, writer);
        QFETCH(QByteArray, reason);
        AnnualizerRun run;
        writeInputs(run);
        run.startShell(commandWithOpenPipe(writer));
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.read(QStringLiteral("b.hts")), QByteArray());
        QVERIFY(run.read(QStringLiteral("b.log"))
                    .endsWith("HtsAnnualizer Error: \n" + reason + "\n\n"));
    }

private:
    // Rows of shell commands that write an input. "a.hts" is the input, "w.hts" has Windows line
    // ends.
    static void addWriterRows()
    {
        QTest::addColumn<QString>("writer");
        QTest::newRow("at once") << QStringLiteral("cat a.hts");
        QTest::newRow("Windows line ends") << QStringLiteral("cat w.hts");
        QTest::newRow("byte by byte") << QStringLiteral("dd if=a.hts bs=1 2>dd.txt");
        QTest::newRow("byte by byte, Windows line ends")
            << QStringLiteral("dd if=w.hts bs=1 2>dd.txt");
        QTest::newRow("last line end on its own")
            << QStringLiteral("printf %s \"$(cat a.hts)\"; echo");
        QTest::newRow("text after the last run")
            << QStringLiteral("cat a.hts; echo END_RUN; echo text");
        QTest::newRow("no line end after the last run")
            << QStringLiteral("cat a.hts; printf 'not a line'");
        QTest::newRow("several runs") << QStringLiteral(
            "sed s/number_of_runs:1/number_of_runs:3/ a.hts; sed 1,/END_PACKAGE_PREAMBLE/d a.hts; "
            "sed 1,/END_PACKAGE_PREAMBLE/d a.hts");
    }
};

HTS_TEST(TestPipes, QCoreApplication)

#include "tst_pipes.moc"
