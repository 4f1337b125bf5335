// What the program does to files: pipes, one file in two roles, disks that are full.

#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/support/testmain.h"

class TestFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void inputFromAPipe_data()
    {
        addTable<const char*>(
            {"command"},
            {{"decompressed", "gzip -c a.hts > a.gz; zcat a.gz | \"$PROGRAM\" -i /dev/stdin "
                              "-o b.hts -c c.txt -l b.log"},
             {"in short pieces", "{ head -c 5 a.hts; tail -c +6 a.hts | dd bs=7 2>/dev/null; } | "
                                 "\"$PROGRAM\" -i /dev/stdin -o b.hts -c c.txt"},
             {"named pipe", "mkfifo p; cat a.hts > p & \"$PROGRAM\" -i p -o b.hts -c c.txt"},
             {"control file from a named pipe",
              "mkfifo p; cat c.txt > p & \"$PROGRAM\" -i a.hts -o b.hts -c p"},
             {"redirected file", "\"$PROGRAM\" -i /dev/stdin -o b.hts -c c.txt < a.hts"}});
    }

    void inputFromAPipe()
    {
        QFETCH(QString, command);
        MonthlyRun run;
        run.startShell(command);
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        QCOMPARE(run.result(), monthlySums());
        QVERIFY(run.log().endsWith(kCreated));
    }

    void resultIntoAPipe()
    {
        MonthlyRun run;
        run.startShell("\"$PROGRAM\" -i a.hts -o /dev/stdout -c c.txt -l b.log | cat");
        QCOMPARE(run.output, monthlySums());
        QCOMPARE(run.errors, QByteArray());
    }

    void windowsLineEndsGiveTheSameResult()
    {
        AnnualizerRun run;
        run.write("a.hts", monthlyFile().replace("\n", "\r\n"));
        run.write("c.txt", "\r\n*.*: Sum\r\n\r\n");
        run.convert();
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.result(), monthlySums());
    }

    void oneFileInTwoRolesIsRefused_data()
    {
        addColumns<QStringList, QByteArray>("arguments", "message");
        const auto output = [](const char* name, const char* arguments, const char* role) {
            QTest::newRow(name) << words(arguments)
                                << QByteArray("Output hts file could not be opened for writing:\n"
                                              "The output hts file is the ") +
                                       role;
        };
        output("output is the input", "-i a.hts -o a.hts -c c.txt", "input hts file a.hts");
        output("output is the input, spelt otherwise", "-i a.hts -o sub/.././a.hts -c c.txt",
               "input hts file a.hts");
        output("output is a symbolic link to the input", "-i a.hts -o symbolic.hts -c c.txt",
               "input hts file a.hts");
        output("output is a hard link to the input", "-i a.hts -o hard.hts -c c.txt",
               "input hts file a.hts");
        output("input is a symbolic link to the output", "-i symbolic.hts -o a.hts -c c.txt",
               "input hts file symbolic.hts");
        output("output is the control file", "-i a.hts -o c.txt -c c.txt",
               "method control file c.txt");

        const auto log = [](const char* name, const char* arguments, const char* path,
                            const char* role) {
            QTest::newRow(name) << words(arguments)
                                << QByteArray("Problem opening log file named ") + path +
                                       ": \nThe log file is the " + role;
        };
        log("log is the input", "-i a.hts -o b.hts -c c.txt -l a.hts", "a.hts",
            "input hts file a.hts");
        log("log is a hard link to the input", "-i a.hts -o b.hts -c c.txt -l hard.hts", "hard.hts",
            "input hts file a.hts");
        log("log is the control file", "-i a.hts -o b.hts -c c.txt -l c.txt", "c.txt",
            "method control file c.txt");
        log("log is the output", "-i a.hts -o b.hts -c c.txt -l b.hts", "b.hts",
            "output hts file b.hts");
        log("log is the output, not there yet", "-i a.hts -o new.hts -c c.txt -l ./new.hts",
            "./new.hts", "output hts file new.hts");
        log("log is a dangling link to the output",
            "-i a.hts -o target.hts -c c.txt -l dangling.hts", "dangling.hts",
            "output hts file target.hts");
        log("log is the input, no control file", "-i a.hts -o b.hts -l a.hts", "a.hts",
            "input hts file a.hts");
        log("output named like a log", "-i a.hts -o b.log -c c.txt", "b.log",
            "output hts file b.log");
    }

    void oneFileInTwoRolesIsRefused()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, message);

        MonthlyRun run;
        run.write("b.hts", "an old result");
        run.startShell("mkdir sub; ln -s a.hts symbolic.hts; ln a.hts hard.hts; "
                       "ln -s target.hts dangling.hts");
        const QStringList filesBefore = run.files();
        run.start(arguments);
        QCOMPARE(run.ended(), errorText(message) + "exit 1");
        // Nothing was truncated and nothing created.
        QCOMPARE(run.read("a.hts"), monthlyFile());
        QCOMPARE(run.read("c.txt"), QByteArray("*.*: Sum\n"));
        QCOMPARE(run.result(), QByteArray("an old result"));
        QCOMPARE(run.files(), filesBefore);
    }

    void rolesMayShareADevice()
    {
        MonthlyRun run;
        run.start("-i a.hts -o /dev/null -c c.txt -l /dev/null");
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.exitCode, 0);
    }

    void closedStandardStreamsDoNotBecomeFiles_data()
    {
        addTexts("redirections",
                 {"<&-", ">&-", "2>&-", "<&- >&-", ">&- 2>&-", "<&- 2>&-", "<&- >&- 2>&-"});
    }

    // A file that the program opens would take the number of a stream that it was started without,
    // and the texts for that stream would go into the file.
    void closedStandardStreamsDoNotBecomeFiles()
    {
        QFETCH(QString, redirections);
        const auto startWith = [&](AnnualizerRun& run, const char* arguments) {
            run.startShell(
                QStringLiteral("\"$PROGRAM\" %1 %2").arg(QLatin1String(arguments), redirections));
        };
        AnnualizerRun version;
        startWith(version, "-v");
        QCOMPARE(version.exitCode, 0);
        QCOMPARE(version.errors, QByteArray());

        MonthlyRun conversion;
        startWith(conversion, "-i a.hts -o b.hts -c c.txt");
        QCOMPARE(conversion.exitCode, 0);
        QCOMPARE(conversion.result(), monthlySums());
        QCOMPARE(conversion.log(), logWithOutcome(kCreated));
        QCOMPARE(conversion.read("a.hts"), monthlyFile());
        QCOMPARE(conversion.read("c.txt"), QByteArray("*.*: Sum\n"));

        for (const char* arguments : {"-i a.hts -o b.hts -c c.txt -l /dev/stdout",
                                      "-i a.hts -o b.hts -c c.txt -l /dev/stderr"}) {
            MonthlyRun logToStream;
            startWith(logToStream, arguments);
            QCOMPARE(logToStream.read("a.hts"), monthlyFile());
            QCOMPARE(logToStream.result(), monthlySums());
            QCOMPARE(logToStream.exitCode, 0);
        }

        // Both print while the files are open.
        MonthlyRun noLog;
        startWith(noLog, "-i a.hts -o b.hts -c c.txt -l none/b.log");
        QCOMPARE(noLog.exitCode, 1);
        QCOMPARE(noLog.result(), QByteArray());
        MonthlyRun fullLog;
        startWith(fullLog, "-i a.hts -o b.hts -c c.txt -l /dev/full");
        QCOMPARE(fullLog.exitCode, 1);
        QCOMPARE(fullLog.result(), monthlySums());
    }

    void fullDiskForTheResultIsAnError()
    {
        MonthlyRun run;
        run.start("-i a.hts -o /dev/full -c c.txt -l b.log");
        QByteArrayList expected = failed("No space left on device", "(no file)");
        expected[1].replace("b.hts", "/dev/full");
        QCOMPARE(run.outcome(), expected);
    }

    // The log reports the outcome, so a lost log is reported on the console.
    void fullDiskForTheLogIsAnError()
    {
        MonthlyRun run;
        run.start("-i a.hts -o b.hts -c c.txt -l /dev/full");
        QCOMPARE(run.ended(),
                 errorText("Problem writing log file named /dev/full: \nNo space left on device") +
                     "exit 1");
        QCOMPARE(run.result(), monthlySums());
    }

    void namesThatAreNotTextAreRefused_data()
    {
        const QByteArray reason = "\nThe name is not text in the encoding of file names";
        addTable<const char*, QByteArray>(
            {"arguments", "console"},
            {{"input", "-i $e -o b.hts -c c.txt",
              errorText("Input hts file could not be opened for reading:" + reason)},
             {"output", "-i a.hts -o $e -c c.txt",
              errorText("Output hts file could not be opened for writing:" + reason)},
             {"log", "-i a.hts -o b.hts -c c.txt -l $e",
              errorText("Problem opening log file named ?c.hts: " + reason)},
             // The log has the engine's message.
             {"control file", "-i a.hts -o b.hts -c $e", ""}});
    }

    // Two such names would become one file.
    void namesThatAreNotTextAreRefused()
    {
        QFETCH(QString, arguments);
        QFETCH(QByteArray, console);
        // A letter in Latin-1, and a byte order mark.
        for (const char* name : {"\\351c.hts", "\\357\\273\\277c.hts"}) {
            MonthlyRun run;
            // What the names might become.
            const char* const others[] = {"\357\277\275c.hts", "?c.hts", "c.hts"};
            for (const char* other : others)
                run.write(other, "*.*: Sum\n");
            run.startShell(QStringLiteral("e=$(printf '%1'); \"$PROGRAM\" %2; code=$?; "
                                          "rm -f b.hts b.log; exit $code")
                               .arg(QString::fromLatin1(name), arguments));
            // Of the bytes that are no text; Qt 6 shows them in UTF-8 in any locale.
            run.output.replace("\xef\xbf\xbd", "?").replace("???", "?");
            QCOMPARE(run.ended(), console + "exit 1");
            for (const char* other : others)
                QCOMPARE(run.read(other), QByteArray("*.*: Sum\n"));
            QCOMPARE(run.files().size(), 5);
        }
    }

    void fullDiskForTheConsoleIsAnError_data()
    {
        addTexts("arguments", {"-h", "-v", "-x", "-i none.hts"});
    }

    void fullDiskForTheConsoleIsAnError()
    {
        QFETCH(QString, arguments);
        AnnualizerRun run;
        run.startShell(QStringLiteral("\"$PROGRAM\" %1 > /dev/full").arg(arguments));
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.exitCode, 1);
    }
};

HTS_TEST(TestFiles, QCoreApplication)

#include "tst_files.moc"
