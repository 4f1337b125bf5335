// The program as one end of a pipe whose other end stays open. It must take what it needs and end;
// a program that waits for more than that, or waits in another order, hangs here.

#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/support/testmain.h"

// "a.hts" is the input, "w.hts" has Windows line ends.
struct PipeRun : MonthlyRun
{
    PipeRun() { write("w.hts", monthlyFile().replace("\n", "\r\n")); }
};

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
        PipeRun run;
        run.startShell(commandWithOpenPipe(writer));
        compareSuccess(run, writer);
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
            PipeRun run;
            run.startShell(QString::fromLatin1(command).arg(exchange));
            compareSuccess(run, writer);
        }
    }

    void writerWaitsForTheFailure_data()
    {
        const char noYear[] = "Cannot create a complete year from the input HTS file";
        addTable<const char*, QByteArray>(
            {"writer", "reason"},
            {{"no run", "printf 'number_of_runs:0\nEND_PACKAGE_PREAMBLE\n'", noYear},
             {"empty line in a preamble", "printf '\n'", "Cannot read package preamble"},
             {"bad timestep", "sed s/2001-12-31.24:00$/June/ a.hts", "Cannot read run preamble"},
             {"annual already", "sed s/unit:month/unit:year/ a.hts",
              "Source HTS File already in annual timestep"},
             {"no complete year", "sed s/unit:month/unit:week/ a.hts", noYear},
             {"missing units", "sed s/units/unit/ a.hts",
              "Cannot read HTS file: Missing units or scale"}});
    }

    void writerWaitsForTheFailure()
    {
        QFETCH(QString, writer);
        QFETCH(QByteArray, reason);
        MonthlyRun run;
        run.startShell(commandWithOpenPipe(writer));
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.result(), QByteArray());
        QVERIFY(run.log().endsWith(errorText('\n' + reason)));
    }

private:
    static void compareSuccess(const AnnualizerRun& run, const QString& writer)
    {
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        QCOMPARE(run.result(), expectedResult(writer));
        QVERIFY(run.log().endsWith(kCreated));
    }

    // Rows of shell commands that write an input.
    static void addWriterRows()
    {
        addTable<const char*>(
            {"writer"},
            {{"at once", "cat a.hts"},
             {"Windows line ends", "cat w.hts"},
             {"byte by byte", "dd if=a.hts bs=1 2>dd.txt"},
             {"byte by byte, Windows line ends", "dd if=w.hts bs=1 2>dd.txt"},
             {"last line end on its own", "printf %s \"$(cat a.hts)\"; echo"},
             {"text after the last run", "cat a.hts; echo END_RUN; echo text"},
             {"no line end after the last run", "cat a.hts; printf 'not a line'"},
             {"several runs",
              "sed s/number_of_runs:1/number_of_runs:3/ a.hts; sed 1,/END_PACKAGE_PREAMBLE/d "
              "a.hts; sed 1,/END_PACKAGE_PREAMBLE/d a.hts"}});
    }
};

HTS_TEST(TestPipes, QCoreApplication)

#include "tst_pipes.moc"
