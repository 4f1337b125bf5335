// What the program does when files and disks fail or limits are reached: the text that the user
// sees, the exit code, and what is left on disk. Never a success with an incomplete result.

#include <cerrno>
#include <csignal>

#include <QBuffer>
#include <QTemporaryFile>
#include <QtTest>

#include <unistd.h>

#include "annualize/annualizehts.h"
#include "tests/app/annualizerrun.h"
#include "tests/app/faultsdevice.h"
#include "tests/app/faultsinput.h"
#include "tests/support/faults.h"
#include "tests/support/testmain.h"

namespace {

constexpr int kManySlots = 200;
const char kNoMethods[] = "No series slots with valid methods found in input HTS file";
const char kReadProblem[] = "Problem reading the input hts file: Input/output error";

QByteArray logWithError(const QByteArray& message)
{
    return logWithOutcome("HtsAnnualizer Error: \n" + message + "\n\n");
}

QByteArray bytes(const AnnualizerRun& run, const char* name)
{
    return run.read(QString::fromLatin1(name));
}

// An input with many slots, a control file with a rule for each, and a result of an earlier run.
void writeManySlots(const AnnualizerRun& run)
{
    QByteArray control;
    for (int i = 0; i < kManySlots; ++i)
        control += "Lake " + QByteArray::number(i) + ".Outflow: Sum\n";
    run.write(QStringLiteral("a.hts"), withSlots(monthlyFile(), kManySlots));
    run.write(QStringLiteral("c.txt"), control);
    run.write(QStringLiteral("b.hts"), kOldResult);
}

// A prefix of a command that makes permissions count for it: root ignores them unless it is without
// two of its capabilities.
QString withPermissionsThatCount()
{
    if (::geteuid() != 0)
        return {};
    return QStringLiteral("setpriv --bounding-set -dac_override,-dac_read_search ");
}

// Counts of a coverage build, written when the program ends, are kept out of the run's limits.
void keepCoverageCountsAside(AnnualizerRun& run)
{
    run.environment.insert(QStringLiteral("GCOV_PREFIX"), run.path(QStringLiteral("counts")));
}

// Converts the data of the device with the engine only.
Status annualize(QIODevice& source, QByteArray& result)
{
    QTemporaryFile control;
    QBuffer resultDevice(&result);
    if (!control.open() || control.write("*.*: Sum\n") < 0 || !control.flush() ||
        !source.open(QIODevice::ReadOnly | QIODevice::Text) ||
        !resultDevice.open(QIODevice::WriteOnly))
        qFatal("cannot open the devices");
    AnnualizeHts engine;
    static_cast<void>(engine.setSourceDevice(&source));
    static_cast<void>(engine.setControlFile(control.fileName()));
    static_cast<void>(engine.setResultDevice(&resultDevice));
    static_cast<void>(engine.setEndMonth(12));
    return engine.annualize();
}

} // namespace

class TestFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The process that runs the tests may ignore signals, as a shell does for what it runs in the
    // background, and the program would inherit that.
    void initTestCase()
    {
        for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGPIPE, SIGXFSZ})
            std::signal(signal, SIG_DFL);
    }

    void refusedPaths_data()
    {
        addColumns<QString, QStringList, QByteArray, QByteArray>("preparation", "arguments",
                                                                 "console", "resultAfter");

        const auto row = [](const char* name, const char* preparation, const char* arguments,
                            const char* console, const char* resultAfter) {
            QTest::newRow(name) << QString::fromLatin1(preparation) << words(arguments)
                                << QByteArray("HtsAnnualizer Error: ") + console + "\n\n"
                                << QByteArray(resultAfter);
        };
        row("input without permission", "chmod 000 a.hts", "-i a.hts -o b.hts -c c.txt",
            "Input hts file could not be opened for reading:\nPermission denied", kOldResult);
        row("input in a folder without permission", "mkdir f; mv a.hts f; chmod 000 f",
            "-i f/a.hts -o b.hts -c c.txt",
            "Input hts file could not be opened for reading:\nPermission denied", kOldResult);
        row("input is a folder", "mkdir f", "-i f -o b.hts -c c.txt",
            "Input hts file could not be opened for reading:\nfile to open is a directory",
            kOldResult);
        row("output without permission", "chmod 444 b.hts", "-i a.hts -o b.hts -c c.txt",
            "Output hts file could not be opened for writing:\nPermission denied", kOldResult);
        row("output in a folder without permission", "mkdir f; chmod 555 f",
            "-i a.hts -o f/b.hts -c c.txt",
            "Output hts file could not be opened for writing:\nPermission denied", kOldResult);
        row("output is a folder", "mkdir f", "-i a.hts -o f -c c.txt",
            "Output hts file could not be opened for writing:\nIs a directory", kOldResult);
        // The output is open by then.
        row("log without permission", "echo > b.log; chmod 444 b.log", "-i a.hts -o b.hts -c c.txt",
            "Problem opening log file named b.log: \nPermission denied", "");
        row("log in a folder without permission", "mkdir f; chmod 555 f",
            "-i a.hts -o b.hts -c c.txt -l f/b.log",
            "Problem opening log file named f/b.log: \nPermission denied", "");
        row("log is a folder", "mkdir f", "-i a.hts -o b.hts -c c.txt -l f",
            "Problem opening log file named f: \nIs a directory", "");
    }

    void refusedPaths()
    {
        QFETCH(QString, preparation);
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, console);
        QFETCH(QByteArray, resultAfter);

        AnnualizerRun run;
        writeInputs(run);
        run.write(QStringLiteral("b.hts"), kOldResult);
        run.startShell(preparation);
        const QStringList filesBefore = run.files();
        run.startShell(withPermissionsThatCount() +
                       QStringLiteral("\"$PROGRAM\" %1").arg(arguments.join(QLatin1Char(' '))));
        QCOMPARE(run.output, console);
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.exitCode, 1);
        run.startShell(QStringLiteral("chmod -R u+rwX ."));
        QCOMPARE(bytes(run, "b.hts"), resultAfter);
        QCOMPARE(run.files(), filesBefore);
    }

    void noFreeDescriptor_data()
    {
        addColumns<QString, QByteArray, QByteArray, QByteArray>("file", "console", "log",
                                                                "resultAfter");

        const auto row = [](const char* file, const char* console, const QByteArray& log,
                            const char* resultAfter) {
            QTest::newRow(file) << QString::fromLatin1(file) << QByteArray(console) << log
                                << QByteArray(resultAfter);
        };
        const char noFile[] = "(no file)";
        row("a.hts",
            "HtsAnnualizer Error: Input hts file could not be opened for reading:\n"
            "Too many open files\n\n",
            noFile, kOldResult);
        row("b.hts",
            "HtsAnnualizer Error: Output hts file could not be opened for writing:\n"
            "Too many open files\n\n",
            noFile, kOldResult);
        row("b.log",
            "HtsAnnualizer Error: Problem opening log file named b.log: \n"
            "Too many open files\n\n",
            noFile, "");
        row("c.txt", "", logWithError(kNoMethods), "");
    }

    void noFreeDescriptor()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, console);
        QFETCH(QByteArray, log);
        QFETCH(QByteArray, resultAfter);

        AnnualizerRun run;
        writeInputs(run);
        run.write(QStringLiteral("b.hts"), kOldResult);
        const QByteArray fileName = file.toLatin1();
        preload(run, {fileName.constData(), "open", 0, kAlways, EMFILE});
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.output, console);
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(withoutTime(bytes(run, "b.log")), log);
        QCOMPARE(bytes(run, "b.hts"), resultAfter);
    }

    void unusableControlFile_data()
    {
        QTest::addColumn<QString>("preparation");
        const auto row = [](const char* name, const char* preparation) {
            QTest::newRow(name) << QString::fromLatin1(preparation);
        };
        row("not there", "rm c.txt");
        row("empty", ": > c.txt");
        row("without permission", "chmod 000 c.txt");
        row("a folder", "rm c.txt; mkdir c.txt");
        row("a pipe whose writer says nothing", "rm c.txt; mkfifo c.txt; : > c.txt &");
        row("the null device", "rm c.txt; ln -s /dev/null c.txt");
        row("a link to itself", "rm c.txt; ln -s c.txt c.txt");
        row("cannot be read", "rm c.txt; ln -s /proc/self/mem c.txt");
    }

    void unusableControlFile()
    {
        QFETCH(QString, preparation);

        AnnualizerRun run;
        writeInputs(run);
        run.write(QStringLiteral("b.hts"), kOldResult);
        run.startShell(QStringLiteral("%1\n%2 \"$PROGRAM\" -i a.hts -o b.hts -c c.txt")
                           .arg(preparation, withPermissionsThatCount()));
        QCOMPARE(run.ended(), QByteArray("exit 1"));
        QCOMPARE(withoutTime(bytes(run, "b.log")), logWithError(kNoMethods));
        QCOMPARE(bytes(run, "b.hts"), QByteArray());
    }

    void inputThatCannotBeRead_data()
    {
        addColumns<int, int, QByteArray, QByteArray>("at", "count", "outcome", "result");

        const QByteArray input = withSlots(monthlyFile(), kManySlots);
        const QByteArray whole = withSlots(monthlySums(), kManySlots);
        const int value = input.indexOf("\n7.0", 70000) + 1;
        const auto row = [](const char* name, int at, int count, const QByteArray& result) {
            QTest::newRow(name) << at << count << logWithError(kReadProblem) << result;
        };
        row("from the start", 0, kAlways, "");
        row("in the package preamble", 40, kAlways, "");
        row("in the timesteps", input.indexOf("2000-9"), kAlways, "");
        row("in a value", value + 3, kAlways, "");
        row("between two values", value, kAlways, "");
        // What was read before and what can be read later would together be a file with missing
        // values.
        row("in a value, for a while", value + 3, 2, "");
        row("between two values, for a while", value, 2, "");
        row("between two slots, for a while", input.indexOf("object_type", value), 3, "");
        // Only the last line end is missing; or not even that, when more bytes are asked for than
        // there are.
        row("at the last byte", input.size() - 1, kAlways, whole);
        row("after the last byte", input.size(), kAlways, whole);
        // The toolkit asks again.
        QTest::newRow("once") << value << 1 << logWithOutcome(kCreated) << whole;
    }

    void inputThatCannotBeRead()
    {
        QFETCH(int, at);
        QFETCH(int, count);
        QFETCH(QByteArray, outcome);
        QFETCH(QByteArray, result);

        AnnualizerRun run;
        writeManySlots(run);
        preload(run, {"a.hts", "read", at, count});
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(withoutTime(bytes(run, "b.log")), outcome);
        QCOMPARE(run.exitCode, outcome.endsWith(kCreated) ? 0 : 1);
        QCOMPARE(bytes(run, "b.hts"), result);
    }

    void inputThatEndsEarly_data()
    {
        addColumns<int, QByteArray>("size", "message");

        const QByteArray input = withSlots(monthlyFile(), kManySlots);
        QTest::newRow("at once") << 0 << QByteArray("Cannot read package preamble");
        QTest::newRow("in the package preamble")
            << 50 << QByteArray("Cannot read package preamble");
        QTest::newRow("in the timesteps")
            << input.indexOf("2000-9") << QByteArray("Cannot read run preamble");
        QTest::newRow("in a value")
            << input.indexOf("7.0", 70000) + 3 << QByteArray("Cannot read slot preamble");
        QTest::newRow("between two slots")
            << input.indexOf("object_type", 70000) << QByteArray("Cannot read slot preamble");
        QTest::newRow("before the end of the run")
            << input.indexOf("END_RUN\n", 70000) << QByteArray("Cannot read slot preamble");
    }

    // A file that another process cuts short looks like this, too.
    void inputThatEndsEarly()
    {
        QFETCH(int, size);
        QFETCH(QByteArray, message);

        AnnualizerRun file;
        writeManySlots(file);
        preload(file, {"a.hts", "read", size, kAlways, 0});
        file.start(words("-i a.hts -o b.hts -c c.txt"));
        AnnualizerRun pipe;
        writeManySlots(pipe);
        pipe.startShell(QStringLiteral("mkfifo p; head -c %1 a.hts > p &\n"
                                       "\"$PROGRAM\" -i p -o b.hts -c c.txt")
                            .arg(size));
        for (const AnnualizerRun* run : {&file, &pipe}) {
            QCOMPARE(run->ended(), QByteArray("exit 1"));
            QCOMPARE(withoutTime(bytes(*run, "b.log")).replace("\np\n", "\na.hts\n"),
                     logWithError(message));
            QCOMPARE(bytes(*run, "b.hts"), QByteArray());
        }
    }

    // A device can only report to the engine that nothing more comes. Only the last line end may be
    // missing.
    void inputErrorAtAnyByteOfADevice()
    {
        const QByteArray input = withSlots(monthlyFile(), 2);
        const QByteArray sums = withSlots(monthlySums(), 2);
        for (int at = 0; at < input.size(); ++at) {
            FaultsDevice device(input, at);
            QByteArray result;
            const Status status = annualize(device, result);
            const bool isWhole = at == input.size() - 1;
            QVERIFY2(status.ok() == isWhole, QByteArray::number(at));
            QVERIFY2(result == (isWhole ? sums : QByteArray()), QByteArray::number(at));
        }
    }

    void controlFileThatCannotBeRead_data()
    {
        addColumns<int, int>("at", "count");
        // The first ten lines of "Lake 0.Outflow: Sum".
        QTest::newRow("between two rules") << 200 << kAlways;
        QTest::newRow("in a rule") << 210 << kAlways;
        QTest::newRow("between two rules, for a while") << 200 << 2;
        QTest::newRow("at the last byte") << -1 << kAlways;
    }

    // With only some of the rules the result would silently lack slots.
    void controlFileThatCannotBeRead()
    {
        QFETCH(int, at);
        QFETCH(int, count);

        AnnualizerRun run;
        writeManySlots(run);
        const int size = bytes(run, "c.txt").size();
        preload(run, {"c.txt", "read", at < 0 ? size + at : at, count});
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.ended(), QByteArray("exit 1"));
        QCOMPARE(withoutTime(bytes(run, "b.log")), logWithError(kNoMethods));
        QCOMPARE(bytes(run, "b.hts"), QByteArray());
    }

    void resultThatCannotBeWritten_data()
    {
        addColumns<QString, int, int, QByteArray>("call", "at", "error", "message");

        const int size = withSlots(monthlySums(), kManySlots).size();
        const auto row = [](const char* name, const char* call, int at, int error,
                            const char* message) {
            QTest::newRow(name) << QString::fromLatin1(call) << at << error << QByteArray(message);
        };
        const char full[] = "No space left on device";
        row("full from the start", "write", 0, ENOSPC, full);
        row("full in the first block", "write", 5000, ENOSPC, full);
        row("full between two blocks", "write", 16384, ENOSPC, full);
        row("full in a later block", "write", 30000, ENOSPC, full);
        row("full at the last byte", "write", size - 1, ENOSPC, full);
        row("broken", "write", 20000, EIO, "Input/output error");
        row("quota", "write", 20000, EDQUOT, "Disk quota exceeded");
        row("reported when the file is closed", "close", size, EIO, "Input/output error");
    }

    void resultThatCannotBeWritten()
    {
        QFETCH(QString, call);
        QFETCH(int, at);
        QFETCH(int, error);
        QFETCH(QByteArray, message);

        AnnualizerRun run;
        writeManySlots(run);
        const QByteArray callName = call.toLatin1();
        preload(run, {"b.hts", callName.constData(), at, kAlways, error});
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.ended(), QByteArray("exit 1"));
        QCOMPARE(withoutTime(bytes(run, "b.log")), logWithError(message));
        // What the disk has accepted stays.
        const QByteArray sums = withSlots(monthlySums(), kManySlots);
        const QByteArray result = bytes(run, "b.hts");
        QVERIFY2(sums.startsWith(result), result);
        QCOMPARE(result.size(), at);
    }

    void resultOnADiskThatIsFullForAWhile_data()
    {
        addColumns<int, int>("at", "count");
        for (const int at : {5000, 20000}) {
            for (const int count : {1, 2, 3, 4, 5})
                QTest::addRow("%d times at byte %d", count, at) << at << count;
        }
    }

    // When there is room again, the program may have tried again in time; else what follows would
    // leave a hole.
    void resultOnADiskThatIsFullForAWhile()
    {
        QFETCH(int, at);
        QFETCH(int, count);

        AnnualizerRun run;
        writeManySlots(run);
        preload(run, {"b.hts", "write", at, count, ENOSPC});
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.errors, QByteArray());
        const bool isSuccess = run.exitCode == 0;
        QVERIFY(count > 1 || isSuccess);
        QVERIFY(count < 4 || !isSuccess);
        QCOMPARE(withoutTime(bytes(run, "b.log")),
                 isSuccess ? logWithOutcome(kCreated) : logWithError("No space left on device"));
        const QByteArray sums = withSlots(monthlySums(), kManySlots);
        const QByteArray result = bytes(run, "b.hts");
        QVERIFY2(isSuccess ? result == sums : sums.startsWith(result), result);
    }

    void logThatCannotBeWritten_data()
    {
        addColumns<QString, int, int>("call", "at", "size");
        const auto row = [](const char* name, const char* call, int at, int size) {
            QTest::newRow(name) << QString::fromLatin1(call) << at << size;
        };
        row("full from the start", "write", 0, 0);
        row("full in the header", "write", 40, 40);
        row("full in the outcome", "write", 150, 150);
        row("reported when the file is closed", "close", 0, -1);
    }

    // The result is then complete, but whoever reads it can't know that.
    void logThatCannotBeWritten()
    {
        QFETCH(QString, call);
        QFETCH(int, at);
        QFETCH(int, size);

        AnnualizerRun run;
        writeManySlots(run);
        const QByteArray callName = call.toLatin1();
        preload(run, {"b.log", callName.constData(), at, kAlways, ENOSPC});
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.output,
                 QByteArray("HtsAnnualizer Error: Problem writing log file named b.log: \n"
                            "No space left on device\n\n"));
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(bytes(run, "b.hts"), withSlots(monthlySums(), kManySlots));
        const QByteArray log = bytes(run, "b.log");
        const QByteArray whole = logWithOutcome(kCreated);
        QVERIFY2(whole.startsWith(withoutTime(log)), log);
        QVERIFY2(size < 0 ? withoutTime(log) == whole : log.size() == size, log);
    }

    void limitOfTheFileSize_data()
    {
        QTest::addColumn<int>("blocks"); // of 512 bytes
        QTest::addColumn<bool>("isSignalIgnored");
        for (const int blocks : {1, 32, 33, 64, 80}) {
            QTest::addRow("%d blocks", blocks) << blocks << true;
            QTest::addRow("%d blocks, ends the process", blocks) << blocks << false;
        }
    }

    // A limit behaves as a disk that is full at a block's end. Its signal ends a process that
    // doesn't ignore it.
    void limitOfTheFileSize()
    {
        QFETCH(int, blocks);
        QFETCH(bool, isSignalIgnored);

        AnnualizerRun run;
        keepCoverageCountsAside(run);
        writeManySlots(run);
        run.startShell(QStringLiteral("%1 ulimit -c 0; ulimit -f %2; "
                                      "exec \"$PROGRAM\" -i a.hts -o b.hts -c c.txt")
                           .arg(isSignalIgnored ? QStringLiteral("trap '' XFSZ;") : QString())
                           .arg(blocks));
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.exitCode, isSignalIgnored ? 1 : -1);
        QCOMPARE(withoutTime(bytes(run, "b.log")),
                 isSignalIgnored ? logWithError("File too large") : logWithOutcome(""));
        QCOMPARE(bytes(run, "b.hts"), withSlots(monthlySums(), kManySlots).left(blocks * 512));
    }

    // How many files the libraries open is not known, so every limit is tried until the conversion
    // succeeds.
    void fewOpenFiles()
    {
        int limit = 2;
        bool isSuccess = false;
        while (!isSuccess && limit < 64) {
            ++limit;
            AnnualizerRun run;
            keepCoverageCountsAside(run);
            writeInputs(run);
            run.write(QStringLiteral("b.hts"), kOldResult);
            run.startShell(QStringLiteral("ulimit -c 0; ulimit -n %1; "
                                          "exec \"$PROGRAM\" -i a.hts -o b.hts -c c.txt")
                               .arg(limit));
            isSuccess = run.exitCode == 0;
            const QByteArray result = bytes(run, "b.hts");
            if (isSuccess) {
                QCOMPARE(result, monthlySums());
            } else {
                // The program says so, or the system when it cannot load a library.
                QVERIFY2(run.exitCode == 1 || run.exitCode == 127, QByteArray::number(limit));
                const QByteArray reported = run.output + run.errors + bytes(run, "b.log");
                QVERIFY2(reported.contains("rror"), QByteArray::number(limit));
                QVERIFY2(result == kOldResult || result.isEmpty(), result);
            }
        }
        QVERIFY(isSuccess);
        QVERIFY(limit > 3);
    }

    void endedBySignalWhileReading_data()
    {
        addColumns<QString, QByteArray>("signal", "status");
        QTest::newRow("terminated") << QStringLiteral("TERM") << QByteArray("143\n");
        QTest::newRow("hung up") << QStringLiteral("HUP") << QByteArray("129\n");
        QTest::newRow("killed") << QStringLiteral("KILL") << QByteArray("137\n");
    }

    // The buffer of the pipe is smaller than what is written to it, so the program is reading when
    // the signal comes.
    void endedBySignalWhileReading()
    {
        QFETCH(QString, signal);
        QFETCH(QByteArray, status);

        AnnualizerRun run;
        writeInputs(run);
        run.write(QStringLiteral("b.hts"), kOldResult);
        run.startShell(QStringLiteral("mkfifo p; \"$PROGRAM\" -i p -o b.hts -c c.txt & exec 3>p; "
                                      "yes ignored | head -c 2000000 >&3; kill -%1 $!; wait $!; "
                                      "echo $?")
                           .arg(signal));
        QCOMPARE(run.output, status);
        QCOMPARE(withoutTime(bytes(run, "b.log")), logWithOutcome("").replace("a.hts", "p"));
        QCOMPARE(bytes(run, "b.hts"), QByteArray());
    }

    void endedBySignalWhileWriting_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("interrupted") << SIGINT;
        QTest::newRow("terminated") << SIGTERM;
        QTest::newRow("killed") << SIGKILL;
    }

    void endedBySignalWhileWriting()
    {
        QFETCH(int, signal);

        AnnualizerRun run;
        writeManySlots(run);
        preload(run, {"b.hts", "write", 20000, 1, 0, signal});
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.ended(), QByteArray("exit -1"));
        QCOMPARE(withoutTime(bytes(run, "b.log")), logWithOutcome(""));
        QCOMPARE(bytes(run, "b.hts"), withSlots(monthlySums(), kManySlots).left(20000));
    }

    void consoleWithoutReader_data()
    {
        addColumns<QString, QString, QByteArray>("trap", "arguments", "status");
        const auto row = [](const char* name, const char* trap, const char* arguments,
                            const char* status) {
            QTest::newRow(name) << QString::fromLatin1(trap) << QString::fromLatin1(arguments)
                                << QByteArray(status);
        };
        row("usage", "", "-h", "141\n");
        row("error", "", "-i none.hts", "141\n");
        row("usage, signal ignored", "trap '' PIPE;", "-h", "1\n");
        row("error, signal ignored", "trap '' PIPE;", "-i none.hts", "1\n");
    }

    // As for any Unix tool: writing what nothing reads ends it, unless the signal is ignored.
    void consoleWithoutReader()
    {
        QFETCH(QString, trap);
        QFETCH(QString, arguments);
        QFETCH(QByteArray, status);

        AnnualizerRun run;
        run.startShell(QStringLiteral("%1 mkfifo p; exec 3<>p; exec 4>p; exec 3>&-; "
                                      "\"$PROGRAM\" %2 >&4 4>&-; echo $?")
                           .arg(trap, arguments));
        QCOMPARE(run.output, status);
        QCOMPARE(run.errors, QByteArray());
    }

    void resultWithoutReader_data()
    {
        addColumns<QString, QByteArray, QByteArray>("trap", "status", "outcome");
        QTest::newRow("ends the process") << QString() << QByteArray("141\n") << QByteArray();
        QTest::newRow("signal ignored") << QStringLiteral("trap '' PIPE;") << QByteArray("1\n")
                                        << QByteArray("HtsAnnualizer Error: \nBroken pipe\n\n");
    }

    // The reader goes away before the program gets its input.
    void resultWithoutReader()
    {
        QFETCH(QString, trap);
        QFETCH(QByteArray, status);
        QFETCH(QByteArray, outcome);

        AnnualizerRun run;
        writeInputs(run);
        run.startShell(QStringLiteral("%1 mkfifo p; { \"$PROGRAM\" -i p -o /dev/stdout -c c.txt "
                                      "-l b.log; echo $? >&2; } | { exec <&-; cat a.hts > p; }")
                           .arg(trap));
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.errors, status);
        QCOMPARE(
            withoutTime(bytes(run, "b.log")),
            logWithOutcome(outcome).replace("\na.hts\n", "\np\n").replace("b.hts", "/dev/stdout"));
    }
};

HTS_TEST(TestFaults, QCoreApplication)

#include "tst_faults.moc"
