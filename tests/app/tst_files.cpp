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
        QTest::addColumn<QString>("command");
        QTest::newRow("decompressed") << QStringLiteral(
            "gzip -c a.hts > a.gz; zcat a.gz | \"$PROGRAM\" -i /dev/stdin -o b.hts -c "
            "c.txt -l b.log");
        QTest::newRow("in short pieces") << QStringLiteral(
            "{ head -c 5 a.hts; tail -c +6 a.hts | dd bs=7 2>/dev/null; } | \"$PROGRAM\" "
            "-i /dev/stdin -o b.hts -c c.txt");
        QTest::newRow("named pipe")
            << QStringLiteral("mkfifo p; cat a.hts > p & \"$PROGRAM\" -i p -o b.hts -c c.txt");
        QTest::newRow("control file from a named pipe")
            << QStringLiteral("mkfifo p; cat c.txt > p & \"$PROGRAM\" -i a.hts -o b.hts -c p");
        QTest::newRow("redirected file")
            << QStringLiteral("\"$PROGRAM\" -i /dev/stdin -o b.hts -c c.txt < a.hts");
    }

    void inputFromAPipe()
    {
        QFETCH(QString, command);

        AnnualizerRun run;
        writeInputs(run);
        run.startShell(command);
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        QCOMPARE(run.read(QStringLiteral("b.hts")), monthlySums());
        QVERIFY(run.read(QStringLiteral("b.log")).endsWith(kCreated));
    }

    void resultIntoAPipe()
    {
        AnnualizerRun run;
        writeInputs(run);
        run.startShell(
            QStringLiteral("\"$PROGRAM\" -i a.hts -o /dev/stdout -c c.txt -l b.log | cat"));
        QCOMPARE(run.output, monthlySums());
        QCOMPARE(run.errors, QByteArray());
    }

    void windowsLineEndsGiveTheSameResult()
    {
        AnnualizerRun run;
        run.write(QStringLiteral("a.hts"), monthlyFile().replace("\n", "\r\n"));
        run.write(QStringLiteral("c.txt"), "\r\n*.*: Sum\r\n\r\n");
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.read(QStringLiteral("b.hts")), monthlySums());
    }

    void oneFileInTwoRolesIsRefused_data()
    {
        addColumns<QStringList, QByteArray>("arguments", "console");

        const auto output = [](const char* detail) -> QByteArray {
            return QByteArray("HtsAnnualizer Error: Output hts file could not be opened for "
                              "writing:\n") +
                   detail + "\n\n";
        };
        const auto log = [](const char* path, const char* detail) -> QByteArray {
            return QByteArray("HtsAnnualizer Error: Problem opening log file named ") + path +
                   ": \n" + detail + "\n\n";
        };
        const auto row = [](const char* name, const char* arguments, const QByteArray& console) {
            QTest::newRow(name) << words(arguments) << console;
        };
        row("output is the input", "-i a.hts -o a.hts -c c.txt",
            output("The output hts file is the input hts file a.hts"));
        row("output is the input, spelt otherwise", "-i a.hts -o sub/.././a.hts -c c.txt",
            output("The output hts file is the input hts file a.hts"));
        row("output is a symbolic link to the input", "-i a.hts -o symbolic.hts -c c.txt",
            output("The output hts file is the input hts file a.hts"));
        row("output is a hard link to the input", "-i a.hts -o hard.hts -c c.txt",
            output("The output hts file is the input hts file a.hts"));
        row("input is a symbolic link to the output", "-i symbolic.hts -o a.hts -c c.txt",
            output("The output hts file is the input hts file symbolic.hts"));
        row("output is the control file", "-i a.hts -o c.txt -c c.txt",
            output("The output hts file is the method control file c.txt"));
        row("log is the input", "-i a.hts -o b.hts -c c.txt -l a.hts",
            log("a.hts", "The log file is the input hts file a.hts"));
        row("log is a hard link to the input", "-i a.hts -o b.hts -c c.txt -l hard.hts",
            log("hard.hts", "The log file is the input hts file a.hts"));
        row("log is the control file", "-i a.hts -o b.hts -c c.txt -l c.txt",
            log("c.txt", "The log file is the method control file c.txt"));
        row("log is the output", "-i a.hts -o b.hts -c c.txt -l b.hts",
            log("b.hts", "The log file is the output hts file b.hts"));
        row("log is the output, not there yet", "-i a.hts -o new.hts -c c.txt -l ./new.hts",
            log("./new.hts", "The log file is the output hts file new.hts"));
        row("log is a dangling link to the output",
            "-i a.hts -o target.hts -c c.txt -l dangling.hts",
            log("dangling.hts", "The log file is the output hts file target.hts"));
        row("log is the input, no control file", "-i a.hts -o b.hts -l a.hts",
            log("a.hts", "The log file is the input hts file a.hts"));
        row("output named like a log", "-i a.hts -o b.log -c c.txt",
            log("b.log", "The log file is the output hts file b.log"));
    }

    void oneFileInTwoRolesIsRefused()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, console);

        AnnualizerRun run;
        writeInputs(run);
        run.write(QStringLiteral("b.hts"), "an old result");
        run.startShell(QStringLiteral("mkdir sub; ln -s a.hts symbolic.hts; ln a.hts hard.hts; "
                                      "ln -s target.hts dangling.hts"));
        const QStringList filesBefore = run.files();
        run.start(arguments);
        QCOMPARE(run.output, console);
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.exitCode, 1);
        // Nothing was truncated and nothing created.
        QCOMPARE(run.read(QStringLiteral("a.hts")), monthlyFile());
        QCOMPARE(run.read(QStringLiteral("c.txt")), QByteArray("*.*: Sum\n"));
        QCOMPARE(run.read(QStringLiteral("b.hts")), QByteArray("an old result"));
        QCOMPARE(run.files(), filesBefore);
    }

    void rolesMayShareADevice()
    {
        AnnualizerRun run;
        writeInputs(run);
        run.start(words("-i a.hts -o /dev/null -c c.txt -l /dev/null"));
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.exitCode, 0);
    }

    void closedStandardStreamsDoNotBecomeFiles_data()
    {
        QTest::addColumn<QString>("redirections");
        for (const char* redirections :
             {"<&-", ">&-", "2>&-", "<&- >&-", ">&- 2>&-", "<&- 2>&-", "<&- >&- 2>&-"})
            QTest::newRow(redirections) << QString::fromLatin1(redirections);
    }

    // A file that the program opens would take the number of a stream that it was started without,
    // and the texts for that stream would go into the file.
    void closedStandardStreamsDoNotBecomeFiles()
    {
        QFETCH(QString, redirections);
        const auto startWith = [&](AnnualizerRun& run, const QByteArray& arguments) {
            run.startShell(QStringLiteral("\"$PROGRAM\" %1 %2")
                               .arg(QString::fromLatin1(arguments), redirections));
        };
        AnnualizerRun version;
        startWith(version, "-v");
        QCOMPARE(version.exitCode, 0);
        QCOMPARE(version.errors, QByteArray());

        AnnualizerRun conversion;
        writeInputs(conversion);
        startWith(conversion, "-i a.hts -o b.hts -c c.txt");
        QCOMPARE(conversion.exitCode, 0);
        QCOMPARE(conversion.read(QStringLiteral("b.hts")), monthlySums());
        QCOMPARE(withoutTime(conversion.read(QStringLiteral("b.log"))), logWithOutcome(kCreated));
        QCOMPARE(conversion.read(QStringLiteral("a.hts")), monthlyFile());
        QCOMPARE(conversion.read(QStringLiteral("c.txt")), QByteArray("*.*: Sum\n"));

        for (const char* stream : {"/dev/stdout", "/dev/stderr"}) {
            AnnualizerRun logToStream;
            writeInputs(logToStream);
            startWith(logToStream, QByteArray("-i a.hts -o b.hts -c c.txt -l ") + stream);
            QCOMPARE(logToStream.read(QStringLiteral("a.hts")), monthlyFile());
            QCOMPARE(logToStream.read(QStringLiteral("b.hts")), monthlySums());
            QCOMPARE(logToStream.exitCode, 0);
        }

        // Both print while the files are open.
        AnnualizerRun noLog;
        writeInputs(noLog);
        startWith(noLog, "-i a.hts -o b.hts -c c.txt -l none/b.log");
        QCOMPARE(noLog.exitCode, 1);
        QCOMPARE(noLog.read(QStringLiteral("b.hts")), QByteArray());
        AnnualizerRun fullLog;
        writeInputs(fullLog);
        startWith(fullLog, "-i a.hts -o b.hts -c c.txt -l /dev/full");
        QCOMPARE(fullLog.exitCode, 1);
        QCOMPARE(fullLog.read(QStringLiteral("b.hts")), monthlySums());
    }

    void fullDiskForTheResultIsAnError()
    {
        AnnualizerRun run;
        writeInputs(run);
        run.start(words("-i a.hts -o /dev/full -c c.txt -l b.log"));
        QCOMPARE(run.ended(), QByteArray("exit 1"));
        QCOMPARE(withoutTime(run.read(QStringLiteral("b.log"))),
                 logWithOutcome("HtsAnnualizer Error: \nNo space left on device\n\n")
                     .replace("b.hts", "/dev/full"));
    }

    // The log reports the outcome, so a lost log is reported on the console.
    void fullDiskForTheLogIsAnError()
    {
        AnnualizerRun run;
        writeInputs(run);
        run.start(words("-i a.hts -o b.hts -c c.txt -l /dev/full"));
        QCOMPARE(run.output, QByteArray("HtsAnnualizer Error: Problem writing log file named "
                                        "/dev/full: \nNo space left on device\n\n"));
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.read(QStringLiteral("b.hts")), monthlySums());
    }

    void namesThatAreNotTextAreRefused_data()
    {
        addColumns<QString, QByteArray>("arguments", "console");
        const QByteArray reason = "\nThe name is not text in the encoding of file names\n\n";
        const auto row = [](const char* name, const char* arguments, const QByteArray& console) {
            QTest::newRow(name) << QString::fromLatin1(arguments) << console;
        };
        row("input", "-i $e -o b.hts -c c.txt",
            "HtsAnnualizer Error: Input hts file could not be opened for reading:" + reason);
        row("output", "-i a.hts -o $e -c c.txt",
            "HtsAnnualizer Error: Output hts file could not be opened for writing:" + reason);
        row("log", "-i a.hts -o b.hts -c c.txt -l $e",
            "HtsAnnualizer Error: Problem opening log file named ?c.hts: " + reason);
        row("control file", "-i a.hts -o b.hts -c $e", {}); // the log has the engine's message
    }

    // Two such names would become one file.
    void namesThatAreNotTextAreRefused()
    {
        QFETCH(QString, arguments);
        QFETCH(QByteArray, console);
        // A letter in Latin-1, and a byte order mark.
        for (const char* name : {"\\351c.hts", "\\357\\273\\277c.hts"}) {
            AnnualizerRun run;
            writeInputs(run);
            // What the names might become.
            const QStringList others = {QString::fromUtf8("\xef\xbf\xbd"
                                                          "c.hts"),
                                        QStringLiteral("?c.hts"), QStringLiteral("c.hts")};
            for (const QString& other : others)
                run.write(other, "*.*: Sum\n");
            run.startShell(QStringLiteral("e=$(printf '%1'); \"$PROGRAM\" %2; code=$?; "
                                          "rm -f b.hts b.log; exit $code")
                               .arg(QString::fromLatin1(name), arguments));
            // Of the bytes that are no text; Qt 6 shows them in UTF-8 in any locale.
            run.output.replace("\xef\xbf\xbd", "?").replace("???", "?");
            QCOMPARE(run.output, console);
            QCOMPARE(run.errors, QByteArray());
            QCOMPARE(run.exitCode, 1);
            for (const QString& other : others)
                QCOMPARE(run.read(other), QByteArray("*.*: Sum\n"));
            QCOMPARE(run.files().size(), others.size() + 2);
        }
    }

    void fullDiskForTheConsoleIsAnError_data()
    {
        QTest::addColumn<QString>("arguments");
        for (const char* arguments : {"-h", "-v", "-x", "-i none.hts"})
            QTest::newRow(arguments) << QString::fromLatin1(arguments);
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
