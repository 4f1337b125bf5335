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
const char kFull[] = "No space left on device";

QByteArray manySlots()
{
    return withSlots(monthlyFile(), kManySlots);
}

QByteArray manySums()
{
    return withSlots(monthlySums(), kManySlots);
}

// The inputs, and a result of an earlier run.
class RunOverOldResult : public MonthlyRun
{
public:
    RunOverOldResult() { write("b.hts", kOldResult); }
};

// The same with many slots, and a rule for each.
class RunWithManySlots : public RunOverOldResult
{
public:
    RunWithManySlots()
    {
        QByteArray control;
        for (int i = 0; i < kManySlots; ++i)
            control += "Lake " + QByteArray::number(i) + ".Outflow: Sum\n";
        write("a.hts", manySlots());
        write("c.txt", control);
    }

    void convertWith(const Fault& fault)
    {
        preload(*this, fault);
        convert();
    }
};

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
    run.set("GCOV_PREFIX", run.path("counts"));
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
        const char unreadable[] =
            "Input hts file could not be opened for reading:\nPermission denied";
        const char unwritable[] =
            "Output hts file could not be opened for writing:\nPermission denied";
        addTable<const char*, const char*, QByteArray, QByteArray>(
            {"preparation", "arguments", "message", "resultAfter"},
            {{"input without permission", "chmod 000 a.hts", "-i a.hts -o b.hts -c c.txt",
              unreadable, kOldResult},
             {"input in a folder without permission", "mkdir f; mv a.hts f; chmod 000 f",
              "-i f/a.hts -o b.hts -c c.txt", unreadable, kOldResult},
             {"input is a folder", "mkdir f", "-i f -o b.hts -c c.txt",
              "Input hts file could not be opened for reading:\nfile to open is a directory",
              kOldResult},
             {"output without permission", "chmod 444 b.hts", "-i a.hts -o b.hts -c c.txt",
              unwritable, kOldResult},
             {"output in a folder without permission", "mkdir f; chmod 555 f",
              "-i a.hts -o f/b.hts -c c.txt", unwritable, kOldResult},
             {"output is a folder", "mkdir f", "-i a.hts -o f -c c.txt",
              "Output hts file could not be opened for writing:\nIs a directory", kOldResult},
             // The output is open by then.
             {"log without permission", "echo > b.log; chmod 444 b.log",
              "-i a.hts -o b.hts -c c.txt",
              "Problem opening log file named b.log: \nPermission denied", ""},
             {"log in a folder without permission", "mkdir f; chmod 555 f",
              "-i a.hts -o b.hts -c c.txt -l f/b.log",
              "Problem opening log file named f/b.log: \nPermission denied", ""},
             {"log is a folder", "mkdir f", "-i a.hts -o b.hts -c c.txt -l f",
              "Problem opening log file named f: \nIs a directory", ""}});
    }

    void refusedPaths()
    {
        QFETCH(QString, preparation);
        QFETCH(QString, arguments);
        QFETCH(QByteArray, message);
        QFETCH(QByteArray, resultAfter);

        RunOverOldResult run;
        run.startShell(preparation);
        const QStringList filesBefore = run.files();
        run.startShell(withPermissionsThatCount() + QStringLiteral("\"$PROGRAM\" ") + arguments);
        QCOMPARE(run.ended(), errorText(message) + "exit 1");
        run.startShell("chmod -R u+rwX .");
        QCOMPARE(run.result(), resultAfter);
        QCOMPARE(run.files(), filesBefore);
    }

    void noFreeDescriptor_data()
    {
        const auto refused = [](const QByteArray& opening, const char* resultAfter) {
            return QByteArrayList{errorText(opening + "\nToo many open files") + "exit 1",
                                  "(no file)", resultAfter};
        };
        addTable<QByteArrayList>(
            {"outcome"},
            {{"a.hts", refused("Input hts file could not be opened for reading:", kOldResult)},
             {"b.hts", refused("Output hts file could not be opened for writing:", kOldResult)},
             {"b.log", refused("Problem opening log file named b.log: ", "")},
             {"c.txt", failed(kNoMethods)}});
    }

    void noFreeDescriptor()
    {
        QFETCH(QByteArrayList, outcome);
        RunOverOldResult run;
        preload(run, {QTest::currentDataTag(), "open", 0, kAlways, EMFILE});
        run.convert();
        QCOMPARE(run.outcome(), outcome);
    }

    void unusableControlFile_data()
    {
        addTable<const char*>(
            {"preparation"},
            {{"not there", "rm c.txt"},
             {"empty", ": > c.txt"},
             {"without permission", "chmod 000 c.txt"},
             {"a folder", "rm c.txt; mkdir c.txt"},
             {"a pipe whose writer says nothing", "rm c.txt; mkfifo c.txt; : > c.txt &"},
             {"the null device", "rm c.txt; ln -s /dev/null c.txt"},
             {"a link to itself", "rm c.txt; ln -s c.txt c.txt"},
             {"cannot be read", "rm c.txt; ln -s /proc/self/mem c.txt"}});
    }

    void unusableControlFile()
    {
        QFETCH(QString, preparation);
        RunOverOldResult run;
        run.convertAfter(preparation + QLatin1Char('\n') + withPermissionsThatCount());
        QCOMPARE(run.outcome(), failed(kNoMethods));
    }

    void inputThatCannotBeRead_data()
    {
        const QByteArray input = manySlots();
        const int value = input.indexOf("\n7.0", 70000) + 1;
        const QByteArrayList nothing =
            failed("Problem reading the input hts file: Input/output error");
        const QByteArrayList whole =
            failed("Problem reading the input hts file: Input/output error", manySums());
        addTable<int, int, QByteArrayList>(
            {"at", "count", "outcome"},
            {{"from the start", 0, kAlways, nothing},
             {"in the package preamble", 40, kAlways, nothing},
             {"in the timesteps", input.indexOf("2000-9"), kAlways, nothing},
             {"in a value", value + 3, kAlways, nothing},
             {"between two values", value, kAlways, nothing},
             // What was read before and what can be read later would together be a file with
             // missing values.
             {"in a value, for a while", value + 3, 2, nothing},
             {"between two values, for a while", value, 2, nothing},
             {"between two slots, for a while", input.indexOf("object_type", value), 3, nothing},
             // Only the last line end is missing; or not even that, when more bytes are asked for
             // than there are.
             {"at the last byte", input.size() - 1, kAlways, whole},
             {"after the last byte", input.size(), kAlways, whole},
             // The toolkit asks again.
             {"once", value, 1, converted(manySums())}});
    }

    void inputThatCannotBeRead()
    {
        QFETCH(int, at);
        QFETCH(int, count);
        QFETCH(QByteArrayList, outcome);
        RunWithManySlots run;
        run.convertWith({"a.hts", "read", at, count});
        QCOMPARE(run.outcome(), outcome);
    }

    void inputThatEndsEarly_data()
    {
        const QByteArray input = manySlots();
        const char noPackage[] = "Cannot read package preamble";
        const char noSlot[] = "Cannot read slot preamble";
        addTable<int, QByteArray>(
            {"size", "message"},
            {{"at once", 0, noPackage},
             {"in the package preamble", 50, noPackage},
             {"in the timesteps", input.indexOf("2000-9"), "Cannot read run preamble"},
             {"in a value", input.indexOf("7.0", 70000) + 3, noSlot},
             {"between two slots", input.indexOf("object_type", 70000), noSlot},
             {"before the end of the run", input.indexOf("END_RUN\n", 70000), noSlot}});
    }

    // A file that another process cuts short looks like this, too.
    void inputThatEndsEarly()
    {
        QFETCH(int, size);
        QFETCH(QByteArray, message);

        RunWithManySlots file;
        file.convertWith({"a.hts", "read", size, kAlways, 0});
        QCOMPARE(file.outcome(), failed(message));
        RunWithManySlots pipe;
        pipe.convertAfter(QStringLiteral("mv a.hts whole.hts; mkfifo a.hts; "
                                         "head -c %1 whole.hts > a.hts &\n")
                              .arg(size));
        QCOMPARE(pipe.outcome(), failed(message));
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
        // The first ten lines of "Lake 0.Outflow: Sum".
        addTable<int, int>({"at", "count"}, {{"between two rules", 200, kAlways},
                                             {"in a rule", 210, kAlways},
                                             {"between two rules, for a while", 200, 2},
                                             {"at the last byte", -1, kAlways}});
    }

    // With only some of the rules the result would silently lack slots.
    void controlFileThatCannotBeRead()
    {
        QFETCH(int, at);
        QFETCH(int, count);
        RunWithManySlots run;
        run.convertWith({"c.txt", "read", at < 0 ? run.read("c.txt").size() + at : at, count});
        QCOMPARE(run.outcome(), failed(kNoMethods));
    }

    void resultThatCannotBeWritten_data()
    {
        const int size = manySums().size();
        addTable<QByteArray, int, int, QByteArray>(
            {"call", "at", "error", "message"},
            {{"full from the start", "write", 0, ENOSPC, kFull},
             {"full in the first block", "write", 5000, ENOSPC, kFull},
             {"full between two blocks", "write", 16384, ENOSPC, kFull},
             {"full in a later block", "write", 30000, ENOSPC, kFull},
             {"full at the last byte", "write", size - 1, ENOSPC, kFull},
             {"broken", "write", 20000, EIO, "Input/output error"},
             {"quota", "write", 20000, EDQUOT, "Disk quota exceeded"},
             {"reported when the file is closed", "close", size, EIO, "Input/output error"}});
    }

    void resultThatCannotBeWritten()
    {
        QFETCH(QByteArray, call);
        QFETCH(int, at);
        QFETCH(int, error);
        QFETCH(QByteArray, message);
        RunWithManySlots run;
        run.convertWith({"b.hts", call.constData(), at, kAlways, error});
        // What the disk has accepted stays.
        QCOMPARE(run.outcome(), failed(message, manySums().left(at)));
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
        RunWithManySlots run;
        run.convertWith({"b.hts", "write", at, count, ENOSPC});
        const bool isSuccess = run.exitCode == 0;
        QVERIFY(count > 1 || isSuccess);
        QVERIFY(count < 4 || !isSuccess);
        QVERIFY2(manySums().startsWith(run.result()), run.result());
        QCOMPARE(run.outcome(), isSuccess ? converted(manySums()) : failed(kFull, run.result()));
    }

    void logThatCannotBeWritten_data()
    {
        const int whole = -1;
        addTable<QByteArray, int, int>({"call", "at", "size"},
                                       {{"full from the start", "write", 0, 0},
                                        {"full in the header", "write", 40, 40},
                                        {"full in the outcome", "write", 150, 150},
                                        {"reported when the file is closed", "close", 0, whole}});
    }

    // The result is then complete, but whoever reads it can't know that.
    void logThatCannotBeWritten()
    {
        QFETCH(QByteArray, call);
        QFETCH(int, at);
        QFETCH(int, size);
        RunWithManySlots run;
        run.convertWith({"b.log", call.constData(), at, kAlways, ENOSPC});
        const QByteArray log = run.log();
        QCOMPARE(run.outcome(),
                 (QByteArrayList{"HtsAnnualizer Error: Problem writing log file named b.log: \n"
                                 "No space left on device\n\nexit 1",
                                 log, manySums()}));
        const QByteArray whole = logWithOutcome(kCreated);
        QVERIFY2(whole.startsWith(log), log);
        QVERIFY2(size < 0 ? log == whole : run.read("b.log").size() == size, log);
    }

    void limitOfTheFileSize_data()
    {
        addColumns<int, bool>("blocks", "isSignalIgnored"); // of 512 bytes
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
        RunWithManySlots run;
        keepCoverageCountsAside(run);
        run.convertAfter(QStringLiteral("%1 ulimit -c 0; ulimit -f %2; exec")
                             .arg(QLatin1String(isSignalIgnored ? "trap '' XFSZ;" : ""),
                                  QString::number(blocks)));
        const QByteArray begun = manySums().left(blocks * 512);
        QCOMPARE(run.outcome(), isSignalIgnored
                                    ? failed("File too large", begun)
                                    : QByteArrayList({"exit -1", logWithOutcome(""), begun}));
    }

    // How many files the libraries open is not known, so every limit is tried until the conversion
    // succeeds.
    void fewOpenFiles()
    {
        int limit = 2;
        bool isSuccess = false;
        while (!isSuccess && limit < 64) {
            ++limit;
            RunOverOldResult run;
            keepCoverageCountsAside(run);
            run.convertAfter(QStringLiteral("ulimit -c 0; ulimit -n %1; exec").arg(limit));
            isSuccess = run.exitCode == 0;
            const QByteArray result = run.result();
            if (isSuccess) {
                QCOMPARE(result, monthlySums());
            } else {
                // The program says so, or the system when it cannot load a library.
                QVERIFY2(run.exitCode == 1 || run.exitCode == 127, QByteArray::number(limit));
                const QByteArray reported = run.output + run.errors + run.log();
                QVERIFY2(reported.contains("rror"), QByteArray::number(limit));
                QVERIFY2(result == kOldResult || result.isEmpty(), result);
            }
        }
        QVERIFY(isSuccess);
        QVERIFY(limit > 3);
    }

    void endedBySignalWhileReading_data()
    {
        addTable<const char*, QByteArray>({"signal", "status"}, {{"terminated", "TERM", "143\n"},
                                                                 {"hung up", "HUP", "129\n"},
                                                                 {"killed", "KILL", "137\n"}});
    }

    // The buffer of the pipe is smaller than what is written to it, so the program is reading when
    // the signal comes.
    void endedBySignalWhileReading()
    {
        QFETCH(QString, signal);
        QFETCH(QByteArray, status);
        RunOverOldResult run;
        run.startShell(QStringLiteral("mkfifo p; \"$PROGRAM\" -i p -o b.hts -c c.txt & exec 3>p; "
                                      "yes ignored | head -c 2000000 >&3; kill -%1 $!; wait $!; "
                                      "echo $?")
                           .arg(signal));
        QCOMPARE(run.output, status);
        QCOMPARE(run.log(), logWithOutcome("").replace("a.hts", "p"));
        QCOMPARE(run.result(), QByteArray());
    }

    void endedBySignalWhileWriting_data()
    {
        addTable<int>({"signal"},
                      {{"interrupted", SIGINT}, {"terminated", SIGTERM}, {"killed", SIGKILL}});
    }

    void endedBySignalWhileWriting()
    {
        QFETCH(int, signal);
        RunWithManySlots run;
        run.convertWith({"b.hts", "write", 20000, 1, 0, signal});
        QCOMPARE(run.outcome(),
                 (QByteArrayList{"exit -1", logWithOutcome(""), manySums().left(20000)}));
    }

    void consoleWithoutReader_data()
    {
        addTable<const char*, const char*, QByteArray>(
            {"trap", "arguments", "status"},
            {{"usage", "", "-h", "141\n"},
             {"error", "", "-i none.hts", "141\n"},
             {"usage, signal ignored", "trap '' PIPE;", "-h", "1\n"},
             {"error, signal ignored", "trap '' PIPE;", "-i none.hts", "1\n"}});
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
        addTable<const char*, QByteArray, QByteArray>(
            {"trap", "status", "outcome"},
            {{"ends the process", "", "141\n", ""},
             {"signal ignored", "trap '' PIPE;", "1\n", "HtsAnnualizer Error: \nBroken pipe\n\n"}});
    }

    // The reader goes away before the program gets its input.
    void resultWithoutReader()
    {
        QFETCH(QString, trap);
        QFETCH(QByteArray, status);
        QFETCH(QByteArray, outcome);

        MonthlyRun run;
        run.startShell(QStringLiteral("%1 mkfifo p; { \"$PROGRAM\" -i p -o /dev/stdout -c c.txt "
                                      "-l b.log; echo $? >&2; } | { exec <&-; cat a.hts > p; }")
                           .arg(trap));
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.errors, status);
        QCOMPARE(
            run.log(),
            logWithOutcome(outcome).replace("\na.hts\n", "\np\n").replace("b.hts", "/dev/stdout"));
    }
};

HTS_TEST(TestFaults, QCoreApplication)

#include "tst_faults.moc"
