// The program with less memory than it needs. For every limit a conversion has the whole result or
// fails, and if the program could start, it reports the failure.

#include <QRegularExpression>
#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/app/faultsinput.h"
#include "tests/support/testmain.h"

namespace {

const char kNoMemory[] = "Not enough memory";

// Steps of the limit, in KiB.
constexpr int kCoarse = 2048;
constexpr int kFine = 128;
constexpr int kMaxLimit = 4 * 1024 * 1024;

} // namespace

class TestFaultsMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        constexpr int kSlots = 3000;
        m_input = withSlots(monthlyFile(), kSlots);
        m_result = withSlots(monthlySums(), kSlots);
    }

    void limitsAroundTheLowestThatSuffices()
    {
        const int least = lowestSufficientLimit();
        QVERIFY2(least > 0, m_details);
        int successes = 0;
        int failures = 0;
        for (int limit = least - 2 * kCoarse; limit <= least + kFine; limit += kFine) {
            const Outcome outcome = runWithLimit(limit);
            QVERIFY2(outcome != Outcome::Wrong, m_details);
            successes += outcome == Outcome::Success ? 1 : 0;
            failures += outcome == Outcome::NoMemory ? 1 : 0;
        }
        QVERIFY(successes > 0);
        QVERIFY(failures > 0);
    }

    void fileWithoutEnd_data()
    {
        addTable<QByteArray>({"file"}, {{"input", "a.hts"}, {"control file", "c.txt"}});
    }

    // A device that returns bytes for ever, without a line end, fills any memory.
    void fileWithoutEnd()
    {
        QFETCH(QByteArray, file);
        const int limit = lowestSufficientLimit();
        QVERIFY2(limit > 0, m_details);
        MonthlyRun run;
        run.startShell(QStringLiteral("rm %1; ln -s /dev/zero %1").arg(QString::fromLatin1(file)));
        run.convertAfter(QStringLiteral("ulimit -c 0; ulimit -v %1; exec").arg(limit + 16 * 1024));
        QCOMPARE(run.outcome(), failed(kNoMemory));
    }

private:
    enum class Outcome {
        NotStarted, // the system or the toolkit had no memory for the program
        NoMemory,
        Success,
        Wrong
    };

    Outcome runWithLimit(int kilobytes)
    {
        MonthlyRun run;
        run.write("a.hts", m_input);
        run.write("b.hts", kOldResult);
        // Without the counts of a coverage build.
        run.set("GCOV_PREFIX", run.path("counts"));
        run.convertAfter(
            QStringLiteral("ulimit -c 0; ulimit -v %1 || exit 127; exec").arg(kilobytes));
        const QByteArray result = run.result();
        const QByteArray log = run.log();
        m_details = QByteArray::number(kilobytes) + " KiB: exit code " +
                    QByteArray::number(run.exitCode) + ", result of " +
                    QByteArray::number(result.size()) + " bytes\n" + run.output + run.errors + log;
        if (run.exitCode == 0) {
            const bool isWhole =
                result == m_result && log == converted().at(1) && run.output.isEmpty();
            return isWhole ? Outcome::Success : Outcome::Wrong;
        }
        if (run.exitCode == 127)
            return result == kOldResult ? Outcome::NotStarted : Outcome::Wrong;
        // Libraries that are started with the toolkit, GLib and one of Qt 6, have their own texts.
        static const QRegularExpression libraryText(
            QStringLiteral("^([./]*glib/gprintf\\.c:\\d+: failed to allocate memory|"
                           "GLib \\(gthread-posix\\.c\\): Unexpected error from C library during "
                           "'malloc': Cannot allocate memory\\.  Aborting\\.|"
                           "\n\\*\\*\\*MEMORY-ERROR\\*\\*\\*: .*: GSlice: failed to allocate .*\n|"
                           "\nlibgomp: Out of memory allocating \\d+ bytes)\n$"));
        const bool isWithoutLibrary = run.exitCode != 0 && run.output.isEmpty() &&
                                      libraryText.match(QString::fromLatin1(run.errors)).hasMatch();
        if (isWithoutLibrary)
            return result == kOldResult && log == "(no file)" ? Outcome::NotStarted
                                                              : Outcome::Wrong;
        const bool isReportedInTheLog = log == failed(kNoMemory).at(1) && run.output.isEmpty();
        const bool isReportedOnTheConsole = run.output == errorText(kNoMemory);
        const bool isReported = run.exitCode == 1 && (isReportedInTheLog || isReportedOnTheConsole);
        const bool isResultUnfinished = result == kOldResult || m_result.startsWith(result);
        return isReported && isResultUnfinished ? Outcome::NoMemory : Outcome::Wrong;
    }

    // Found by bisection; -1 when a run went wrong.
    int lowestSufficientLimit()
    {
        int tooLittle = 0;
        int enough = kMaxLimit;
        while (enough - tooLittle > kCoarse) {
            const int middle = tooLittle + (enough - tooLittle) / 2;
            const Outcome outcome = runWithLimit(middle);
            if (outcome == Outcome::Wrong)
                return -1;
            (outcome == Outcome::Success ? enough : tooLittle) = middle;
        }
        return enough;
    }

    QByteArray m_input;
    QByteArray m_result;
    // Of the last run, for messages.
    QByteArray m_details;
};

HTS_TEST(TestFaultsMemory, QCoreApplication)

#include "tst_faultsmemory.moc"
