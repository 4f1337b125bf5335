// The engine, which converts in one pass and reports afterwards, against the plain conversion,
// which reads all and takes one step after the other: the same message, the same log lines, the
// same result, and the source left at the same place. The environment variable HTS_PROPERTY_CASES
// sets how many random conversions are compared; a failure names the seed.

#include <array>
#include <functional>
#include <memory>

#include <QBuffer>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/inotify.h>
#include <unistd.h>

#include "tests/annualize/conversioncompare.h"
#include "tests/annualize/randomcase.h"
#include "tests/annualize/randomruns.h"
#include "tests/hts/htstext.h"
#include "tests/hts/piecedevice.h"
#include "tests/hts/randomhts.h"
#include "tests/plain/plainreader.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

constexpr int kUsualFiles = 600;
constexpr qint64 kAnySize = 1 << 30;

const char kSuccess[] = "";

int caseCount()
{
    const int count = qEnvironmentVariableIntValue("HTS_PROPERTY_CASES");
    return count > 0 ? count : kUsualFiles;
}

// The pieces of a hand-made file. All runs have three timesteps and one complete year, unless given
// otherwise.

const QByteArray kSteps = "2000-1-31 24:00\n2000-6-30 24:00\n2000-12-31 24:00\n";

// The preamble and the timesteps of a run; a key of `keys` replaces one of the usual ones.
QByteArray head(const QByteArray& keys = {}, const QByteArray& steps = kSteps)
{
    return "start:2000-1-31 24:00\nend:2000-12-31 24:00\ntime_step_unit:month\ntime_steps:" +
           QByteArray::number(steps.count('\n')) + "\nslot_set:first\n" + keys +
           "END_RUN_PREAMBLE\n" + steps;
}

QByteArray series(const QByteArray& name, const QByteArray& values = ";1;2;3",
                  const QByteArray& type = "SeriesSlot")
{
    return slotText("Lake." + name, "units: cms;scale: 1" + values, type);
}

QByteArray scalar(const QByteArray& name)
{
    return series(name, ";7", "ScalarSlot");
}

QByteArray table(const QByteArray& name)
{
    return tableText("Lake." + name);
}

QByteArray run(const QByteArray& slotTexts, const QByteArray& keys = {},
               const QByteArray& steps = kSteps)
{
    return head(keys, steps) + slotTexts + "END_RUN\n";
}

const QByteArray kLaterTiming = "start:2002-1-31 24:00\nend:2002-12-31 24:00\n";
const QByteArray kLaterSteps = "2002-1-31 24:00\n2002-6-30 24:00\n2002-12-31 24:00\n";

// Returns one line at a time, and reports before each how many have been read.
class LineByLine : public QIODevice
{
public:
    LineByLine(const QByteArray& text, std::function<void(int line)> onLine)
        : m_lines(text.split('\n')), m_onLine(std::move(onLine))
    {
        m_lines.removeLast(); // the text ends with a line end
    }

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        if (maxSize == 0)
            return 0;
        if (m_rest.isEmpty()) {
            m_onLine(m_next);
            if (m_next == m_lines.size())
                return -1;
            m_rest = m_lines.at(m_next++) + '\n';
        }
        const int size = static_cast<int>(qMin<qint64>(maxSize, m_rest.size()));
        std::copy_n(m_rest.constData(), size, data);
        m_rest.remove(0, size);
        return size;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArrayList m_lines;
    const std::function<void(int line)> m_onLine;
    int m_next = 0;
    QByteArray m_rest;
};

// Counts how often a file is opened.
class OpenCounter
{
public:
    explicit OpenCounter(const QString& path) : m_watch(inotify_init1(IN_NONBLOCK))
    {
        // The system joins equal events that follow each other; between two times of opening there
        // is a time of closing.
        if (inotify_add_watch(m_watch, qPrintable(path), IN_OPEN | IN_CLOSE) < 0)
            qFatal("cannot watch %s", qPrintable(path));
    }
    ~OpenCounter() { ::close(m_watch); }
    OpenCounter(const OpenCounter&) = delete;
    OpenCounter& operator=(const OpenCounter&) = delete;

    // So far.
    int count()
    {
        alignas(inotify_event) std::array<char, 4096> events{};
        for (;;) {
            const ssize_t size = ::read(m_watch, events.data(), events.size());
            if (size <= 0)
                return m_count;
            // The events of a file have no name, so they all have the same size.
            for (ssize_t next = 0; next < size; next += ssize_t(sizeof(inotify_event))) {
                const auto* event = reinterpret_cast<const inotify_event*>(events.data() + next);
                m_count += (event->mask & IN_OPEN) != 0 ? 1 : 0;
            }
        }
    }

private:
    const int m_watch;
    int m_count = 0;
};

} // namespace

class OnePassAgreementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid());
        m_rules = m_folder.filePath(QStringLiteral("rules.txt"));
    }

    void agreesOnHandMadeFiles_data()
    {
        addColumns<QByteArray, QString>("text", "message");
        const auto row = [](const char* name, const QByteArray& text, const char* message) {
            QTest::newRow(name) << text << QString::fromLatin1(message);
        };
        const QByteArray usual = series("A") + series("B");
        const QByteArray mixed =
            table("T") + series("A") + series("Salt") + scalar("C") + series("B");

        row("one run", packageText(1) + run(usual), kSuccess);
        row("all kinds of slots in every run", packageText(3) + run(mixed).repeated(3), kSuccess);
        row("text after the last run", packageText(1) + run(usual) + run(usual), kSuccess);

        row("empty", "", kBadPackagePreamble);
        row("no run", packageText(0) + run(usual), kNoCompleteYear);
        row("negative number of runs", packageText(-3) + run(usual), kNoCompleteYear);
        row("two billion runs, none there", packageText(2000000000), kBadRunPreamble);
        row("two billion runs, two there", packageText(2000000000) + run(mixed).repeated(2),
            kBadRunPreamble);
        row("no series", packageText(1) + run(table("T") + scalar("C")), kNoSlots);
        row("runs without slots", packageText(2) + run("").repeated(2), kNoSlots);

        row("later run's own keys",
            packageText(2) + run(usual) +
                run(usual, "trace:5\nslot_set:second\nrule_set:r\nconsecutive:1\nidx_sequential:9\n"
                           "time_step_unit:day\nunit_quantity:3\n"),
            kSuccess);
        row("later run's own timesteps of the same number",
            packageText(2) + run(usual) +
                run(usual, {}, "1999-1-1 1:00\n2003-2-1 1:00\n2000-1-1 1:00\n"),
            kSuccess);
        row("later run with same timing and annual unit",
            packageText(2) + run(usual) + run(usual, "time_step_unit:year\n"), kSuccess);
        row("later run with annual unit",
            packageText(2) + run(mixed) +
                run(mixed, kLaterTiming + "time_step_unit:year\n", kLaterSteps),
            kAlreadyAnnual);
        row("later run with other timing",
            packageText(3) + run(mixed) + run(mixed, kLaterTiming, kLaterSteps) + run(mixed),
            kUnequalSizes);
        row("later run with another start",
            packageText(2) + run(mixed) + run(mixed, "start:2000-1-31 23:00\n"), kUnequalSizes);
        row("later run with another end",
            packageText(2) + run(mixed) + run(mixed, "end:2000-12-31 23:00\n"), kUnequalSizes);
        row("later run with other timing and no complete year",
            packageText(2) + run(mixed) +
                run(series("A", ";1;2"), {}, "2000-1-31 24:00\n2000-6-30 24:00\n"),
            kNoCompleteYear);
        row("later run without timesteps",
            packageText(2) + run(usual) + run(series("A", ""), {}, ""), kNoCompleteYear);
        row("other timing after a slot without values",
            packageText(3) + run(mixed) + run(series("T")) + run(mixed, kLaterTiming, kLaterSteps),
            kUnequalSizes);

        row("fewer slots later", packageText(2) + run(mixed) + run(table("T") + series("A")),
            kUnequalSizes);
        row("no slots later", packageText(2) + run(mixed) + run(""), kUnequalSizes);
        row("only a slot that is skipped is missing later",
            packageText(2) + run(usual + scalar("C")) + run(usual), kSuccess);
        row("more slots later", packageText(2) + run(usual) + run(usual + mixed) + "rest",
            kSuccess);
        row("other names and order later",
            packageText(2) + run(usual) + run(series("Salt") + series("A")), kSuccess);
        row("scalar where the first has a series",
            packageText(2) + run(mixed) + run(table("T") + scalar("A") + mixed), kUnequalSizes);
        row("table where the first has a series",
            packageText(2) + run(mixed) + run(table("T") + table("A") + mixed), kUnequalSizes);
        row("table after a series where the first has two series",
            packageText(2) + run(usual) + run(series("A") + table("B")), kUnequalSizes);
        row("series where the first has another kind",
            packageText(2) + run(scalar("C") + table("T") + series("A")) +
                run(series("C") + series("T") + series("A")),
            kSuccess);
        row("second failure does not count",
            packageText(4) + run(mixed) + run(scalar("A")) +
                run(mixed, kLaterTiming + "time_step_unit:year\n", kLaterSteps) + run(mixed),
            kUnequalSizes);

        row("unknown unit from the second day",
            packageText(1) + run(series("A", ";1;2"), "time_step_unit:fortnight\n",
                                 "2000-1-2 6:00\n2000-12-31 24:00\n"),
            kNoCompleteYear);
        row("unknown unit from the first day",
            packageText(1) + run(series("A", ";1;2"),
                                 "time_step_unit:fortnight\nstart:2000-1-1 24:00\n",
                                 "2000-1-1 24:00\n2000-12-31 24:00\n"),
            kSuccess);
        row("digits of another script in a timestep",
            packageText(1) + run(usual, {},
                                 "2000-1-31 24:00\n2000-6-30 24:00\n\xd9\xa2\xd9\xa0\xd9\xa0\xd9"
                                 "\xa0-12-31 24:00\n"),
            kNoCompleteYear);
        row("text for a timestep", packageText(1) + run(usual, {}, "2000-1-31 24:00\nJune\n"),
            kBadRunPreamble);

        row("annual unit", packageText(1) + run(mixed, "time_step_unit:year\n"), kAlreadyAnnual);
        row("annual unit, then a read error",
            packageText(2) + run(mixed, "time_step_unit:year\n") + head() + "\n", kBadSlotPreamble);
        row("no complete year, then a read error",
            packageText(2) + run(series("A", ";1"), {}, "2000-1-31 24:00\n") + "\n",
            kBadRunPreamble);
        row("bad timing, then a read error in a late run",
            packageText(4) + run(mixed) + run(mixed, kLaterTiming, kLaterSteps) + run(mixed) +
                head() + QByteArray(mixed).replace("scale", "scales"),
            kBadColumnHeader);
        row("slot without values, then a read error",
            packageText(3) + run(mixed) + run("") + head(), kBadSlotPreamble);
        row("no slot with a method, then a read error",
            packageText(2) + run(scalar("C")) + run(scalar("C")).chopped(9), kBadSlotPreamble);
        row("header of the first slot missing", packageText(1) + head() + "END_SLOT_PREAMBLE\n",
            kBadColumnHeader);
    }
    void agreesOnHandMadeFiles()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, message);
        writeFile(m_rules, "*.Salt: Salinity\n*.A: Sum\n*.*: MaxNaN\n");
        for (const char* lineEnd : {"\n", "\r\n"}) {
            QByteArray lines = text;
            QString actual;
            QCOMPARE(disagreement(lines.replace("\n", lineEnd), m_rules, 12, actual), QString());
            QCOMPARE(actual, message);
        }
    }

    void agreesForEveryOutcomeOfTheControlFile_data()
    {
        addColumns<int, QByteArray, QString>("control", "rules", "message");
        const auto row = [](const char* name, RandomRuns::Control control, const char* rules,
                            const char* message) {
            QTest::newRow(name) << static_cast<int>(control) << QByteArray(rules)
                                << QString::fromLatin1(message);
        };
        using Control = RandomRuns::Control;
        row("missing", Control::Missing, "", kNoSlots);
        row("folder", Control::Folder, "", kNoSlots);
        row("can be opened and not read", Control::Unreadable, "", kNoSlots);
        row("empty", Control::File, "", kNoSlots);
        row("blank lines", Control::File, "\n \r\n\n", kNoSlots);
        row("bad line first", Control::File, "no rule\n*.*: Sum\n", kNoSlots);
        row("bad line last", Control::File, "*.*: Sum\nLake.A: Median\n", kNoSlots);
        row("rules for other slots", Control::File, "Hill.A: Sum\n", kNoSlots);
        row("Salinity alone", Control::File, "*.*: Salinity\n", kNoSlots);
        row("rules for one slot", Control::File, "Lake.B: Begin\n", kSuccess);
    }
    void agreesForEveryOutcomeOfTheControlFile()
    {
        QFETCH(int, control);
        QFETCH(QByteArray, rules);
        QFETCH(QString, message);
        writeFile(m_rules, rules);
        const QString controlPath = path(static_cast<RandomRuns::Control>(control));
        const QByteArray runs =
            run(table("T") + series("A") + scalar("C") + series("B") + series("A")).repeated(2);
        QString actual;
        QCOMPARE(disagreement(packageText(2) + runs, controlPath, 12, actual), QString());
        QCOMPARE(actual, message);
        // The steps before the control file, and the reading, come first.
        QCOMPARE(disagreement(packageText(3) + runs, controlPath, 12, actual), QString());
        QCOMPARE(actual, QString::fromLatin1(kBadRunPreamble));
        QCOMPARE(disagreement(packageText(2) + runs, controlPath, 6, actual), QString());
        QCOMPARE(actual, QString::fromLatin1(kNoCompleteYear));
    }

    void agreesOnRunsThatDoNotMatch()
    {
        QSet<QString> messages;
        tryAll([](quint32 seed) { return RandomRuns(seed); }, messages);
        // Every outcome that a whole file can have has been seen.
        for (const char* message :
             {kSuccess, kBadRunPreamble, kAlreadyAnnual, kNoCompleteYear, kNoSlots, kUnequalSizes})
            QVERIFY2(messages.contains(QString::fromLatin1(message)), message);
    }

    void agreesOnBrokenFiles()
    {
        QSet<QString> messages;
        tryAll(
            [](quint32 seed) {
                RandomRuns conversion(seed);
                RandomHts breaker(seed);
                conversion.fileText = breaker.broken(conversion.fileText);
                if (seed % 4 == 0)
                    conversion.controlText = breaker.broken(conversion.controlText);
                return conversion;
            },
            messages);
        for (const char* message :
             {kSuccess, kBadPackagePreamble, kBadRunPreamble, kBadSlotPreamble, kBadColumnHeader,
              kAlreadyAnnual, kNoCompleteYear, kNoSlots, kUnequalSizes, "(endless)"})
            QVERIFY2(messages.contains(QString::fromLatin1(message)), message);
    }

    // With odd numbers and lines. Few of them have a complete year.
    void agreesOnFilesOfAllKindsOfSlots()
    {
        QSet<QString> messages;
        tryAll(
            [](quint32 seed) {
                RandomRuns conversion(seed);
                conversion.fileText = RandomHts(seed).file(6);
                return conversion;
            },
            messages, 2);
        QVERIFY(messages.contains(QString::fromLatin1(kNoCompleteYear)));
    }

    void agreesOnConversionsThatSucceed()
    {
        const auto count = static_cast<quint32>(qMax(caseCount() / 60, 1));
        for (quint32 seed = 1; seed <= count; ++seed) {
            const RandomCase conversion(seed);
            writeFile(m_rules, conversion.controlText());
            QString message;
            const QString fault =
                disagreement(conversion.fileText(), m_rules, conversion.endMonth, message);
            QVERIFY2(fault.isEmpty(), qPrintable(conversion.description() + fault));
        }
    }

    void asksAPipeForNothingAfterTheLastRun()
    {
        writeFile(m_rules, "*.*: Sum\n");
        int converted = 0;
        for (quint32 seed = 1; seed <= 400; ++seed) {
            const QByteArray whole = RandomRuns(seed).fileText;
            QBuffer buffer;
            buffer.setData(whole);
            QVERIFY(buffer.open(QIODevice::ReadOnly));
            const ConversionOutcome expected = convertInOnePass(buffer, m_rules, 12);
            // If the file itself is bad, that may only show at the end of the input.
            if (expected.status.message.startsWith(QLatin1String("Cannot read")))
                continue;
            ++converted;
            const QByteArray used = whole.left(static_cast<int>(expected.position));
            for (const QIODevice::OpenMode mode :
                 {QIODevice::OpenMode(QIODevice::ReadOnly), QIODevice::ReadOnly | QIODevice::Text,
                  QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered}) {
                PieceDevice pipe(used, kAnySize);
                QVERIFY(pipe.open(mode));
                QBuffer result;
                QVERIFY(result.open(QIODevice::WriteOnly));
                QCOMPARE(convertDevices(pipe, m_rules, result).message, expected.status.message);
                QVERIFY2(!pipe.isOverdrawn(), qPrintable(QString::number(seed)));
                QCOMPARE(result.data(), expected.written);
            }
        }
        QVERIFY(converted > 100);
    }

    void opensControlFileOnceAfterTimestepsOfFirstRun_data()
    {
        QTest::addColumn<QByteArray>("rest"); // of the file, after the timesteps of the first run
        QTest::addColumn<QByteArray>("rules");
        const QByteArray usual = series("A") + table("T");
        QTest::newRow("one run") << usual + "END_RUN\n" << QByteArray("*.*: Sum\n");
        QTest::newRow("no rule") << usual + "END_RUN\n" << QByteArray();
        QTest::newRow("bad line") << usual + "END_RUN\n" << QByteArray("no rule\n");
        QTest::newRow("no slot") << QByteArray("END_RUN\n") << QByteArray("*.*: Sum\n");
        QTest::newRow("nothing after the timesteps") << QByteArray() << QByteArray("*.*: Sum\n");
        QTest::newRow("several runs of several timings")
            << usual + "END_RUN\n" + run(usual) + run(usual, kLaterTiming, kLaterSteps) + run("")
            << QByteArray("*.*: Sum\n");
    }
    void opensControlFileOnceAfterTimestepsOfFirstRun()
    {
        QFETCH(QByteArray, rest);
        QFETCH(QByteArray, rules);
        writeFile(m_rules, rules);
        const QByteArray start = packageText(1 + rest.count("END_RUN_PREAMBLE")) + head();
        const int startLines = start.count('\n');

        OpenCounter opens(m_rules);
        QVector<int> opensByLine;
        LineByLine source(start + rest, [&](int) { opensByLine.append(opens.count()); });
        QVERIFY(source.open(QIODevice::ReadOnly));
        static_cast<void>(convertInOnePass(source, m_rules, 12));
        opensByLine.append(opens.count());

        QVERIFY(opensByLine.size() > startLines);
        const QVector<int> before = opensByLine.mid(0, startLines);
        const QVector<int> after = opensByLine.mid(startLines);
        QCOMPARE(before, QVector<int>(before.size(), 0));
        QCOMPARE(after, QVector<int>(after.size(), 1));
    }

    void doesNotOpenControlFileWithoutCompleteYear_data()
    {
        QTest::addColumn<QByteArray>("text");
        const QByteArray usual = series("A");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no run") << packageText(0) + run(usual);
        QTest::newRow("negative number of runs") << packageText(-1) + run(usual);
        QTest::newRow("no complete year")
            << packageText(2) + run(series("A", ";1"), {}, "2000-1-31 24:00\n") + run(usual);
        QTest::newRow("annual unit")
            << packageText(2) + run(usual, "time_step_unit:year\n") + run(usual);
        QTest::newRow("package preamble cut off") << packageText(1).chopped(5);
        QTest::newRow("run preamble cut off") << packageText(1) + head().chopped(80);
        QTest::newRow("bad last timestep") << packageText(1) + run(usual, {}, kSteps + "June\n");
        QTest::newRow("last timestep missing") << packageText(1) + head().chopped(17);
    }
    void doesNotOpenControlFileWithoutCompleteYear()
    {
        QFETCH(QByteArray, text);
        writeFile(m_rules, "*.*: Sum\n");
        OpenCounter opens(m_rules);
        QBuffer source(&text);
        QVERIFY(source.open(QIODevice::ReadOnly));
        const ConversionOutcome outcome = convertInOnePass(source, m_rules, 12);
        QVERIFY(!outcome.status.message.isEmpty());
        QCOMPARE(opens.count(), 0);
    }

private:
    QString path(RandomRuns::Control control) const
    {
        switch (control) {
        case RandomRuns::Control::File:
            break;
        case RandomRuns::Control::Missing:
            return m_folder.filePath(QStringLiteral("missing.txt"));
        case RandomRuns::Control::Folder:
            return m_folder.path();
        case RandomRuns::Control::Unreadable:
            // Can be opened, but not read: nothing is mapped at address 0.
            return QStringLiteral("/proc/self/mem");
        }
        return m_rules;
    }

    // Converts on several kinds of devices; says where the two differ. Sets `message`.
    QString disagreement(const QByteArray& text, const QString& controlPath, int endMonth,
                         QString& message) const
    {
        for (const bool isSequential : {false, true}) {
            for (const bool isTextMode : {false, true}) {
                const QIODevice::OpenMode mode =
                    isTextMode ? QIODevice::ReadOnly | QIODevice::Text : QIODevice::ReadOnly;
                const QByteArray bytes = isTextMode ? withoutLoneCarriageReturns(text) : text;
                if (plainreader::isEndless(bytes)) {
                    message = QStringLiteral("(endless)");
                    return {};
                }
                const auto plainSource = openDevice(bytes, isSequential ? kAnySize : 0, mode);
                const ConversionOutcome expected =
                    convertPlainly(*plainSource, controlPath, endMonth);
                message = expected.status.message;
                const auto source = openDevice(bytes, isSequential ? 5 : 0, mode);
                const QString fault =
                    difference(convertInOnePass(*source, controlPath, endMonth), expected);
                if (!fault.isEmpty())
                    return fault + QLatin1String(isSequential ? ", sequential" : "") +
                           QLatin1String(isTextMode ? ", text mode" : "");
            }
        }
        return {};
    }

    // Tries the usual number of seeds, divided by `divisor`; the messages seen go to `messages`.
    void tryAll(const std::function<RandomRuns(quint32 seed)>& make, QSet<QString>& messages,
                int divisor = 1) const
    {
        const auto count = static_cast<quint32>(qMax(caseCount() / divisor, 1));
        for (quint32 seed = 1; seed <= count; ++seed) {
            const RandomRuns conversion = make(seed);
            writeFile(m_rules, conversion.controlText);
            QString message;
            const QString fault = disagreement(conversion.fileText, path(conversion.control),
                                               conversion.endMonth, message);
            QVERIFY2(fault.isEmpty(),
                     qPrintable(QStringLiteral("seed %1: %2").arg(seed).arg(fault)));
            messages.insert(message);
        }
    }

    QTemporaryDir m_folder;
    QString m_rules; // path of a file with rules
};

HTS_TEST(OnePassAgreementTest, QCoreApplication)
#include "tst_onepassagreement.moc"
