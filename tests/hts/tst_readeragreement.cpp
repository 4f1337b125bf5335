// The reader of hts/ against the plain reader: on the same bytes both give the same message, the
// same model, bit by bit, and leave the device at the same place. The environment variable
// HTS_PROPERTY_CASES sets how many random files a test tries on each kind of device.

#include <functional>

#include <QRandomGenerator>
#include <QSet>
#include <QtTest>

#include "tests/hts/devicerows.h"
#include "tests/hts/randomhts.h"
#include "tests/plain/plainreader.h"
#include "tests/support/testmain.h"

namespace {

constexpr int kUsualCases = 150;

// The steps of reading, each on a device.
struct Steps
{
    Status (*readPackagePreamble)(QIODevice& device, HtsPackage& package);
    Status (*readRunPreamble)(QIODevice& device, HtsRun& run);
    Status (*readSlotPreamble)(QIODevice& device, HtsSlot& slot);
    Status (*readColumnHeader)(QIODevice& device, QString& units, double& scale, QString& method);
};

const Steps kSteps = {
    [](QIODevice& device, HtsPackage& package) { return package.readPreamble(device); },
    [](QIODevice& device, HtsRun& run) { return run.readPreamble(device); },
    [](QIODevice& device, HtsSlot& slot) { return slot.readPreamble(device); },
    HtsPackage::readColumnHeader,
};

const Steps kPlainSteps = {plainreader::readPackagePreamble, plainreader::readRunPreamble,
                           plainreader::readSlotPreamble, plainreader::readColumnHeader};

// Reads as far as a column header step by step, and keeps all in the package.
Status readBySteps(const Steps& steps, QIODevice& device, HtsPackage& package)
{
    Status status = steps.readPackagePreamble(device, package);
    if (!status.ok())
        return status;
    package.runs.resize(1);
    status = steps.readRunPreamble(device, package.runs[0]);
    if (!status.ok())
        return status;
    package.slots.resize(1);
    status = steps.readSlotPreamble(device, package.slots[0]);
    if (!status.ok())
        return status;
    QString units;
    double scale = -1.0;
    QString method;
    status = steps.readColumnHeader(device, units, scale, method);
    package.slots[0].units.append(units);
    package.slots[0].scales.append(scale);
    package.slots[0].methods.append(method);
    return status;
}

PackageReader stepReader(const Steps& steps)
{
    return [steps](QIODevice& device, HtsPackage& package) {
        return readBySteps(steps, device, package);
    };
}

// `text` with a byte order mark or a NUL byte after every third colon, or after the blank that
// follows it, by chance.
QByteArray withOddBytesAfterKeys(const QByteArray& text, quint32 seed)
{
    QRandomGenerator random(seed);
    QByteArray result;
    bool isAfterKey = false;
    for (int i = 0; i < text.size(); ++i) {
        const char character = text.at(i);
        result += character;
        isAfterKey = character == ':' || (isAfterKey && character == ' ');
        const bool isNext = isAfterKey && (i + 1 == text.size() || text.at(i + 1) != ' ');
        if (isNext && random.bounded(3) == 0) {
            static const QByteArray kOdd[] = {"\xef\xbb\xbf", QByteArray(1, '\0'), "\xef\xbb\xbf ",
                                              "\xef\xbb", "\xef\xbb\xbf\xef\xbb\xbf"};
            result += kOdd[random.bounded(5)];
        }
    }
    return result;
}

} // namespace

class ReaderAgreementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void agreesOnGeneratedFiles_data() { addRows(); }
    void agreesOnGeneratedFiles()
    {
        tryAll([](quint32 seed) { return RandomHts(seed).file(12); }, 4);
        // What the generator makes can be read.
        QCOMPARE(m_messages, QSet<QString>{QString()});
    }

    void agreesOnBrokenFiles_data() { addRows(); }
    void agreesOnBrokenFiles()
    {
        tryAll(brokenFile);
        // Success, the four messages and the endless search have all been seen.
        haveReported(6);
    }

    void agreesStepByStep_data() { addRows(); }
    void agreesStepByStep()
    {
        tryAll(brokenFile, 1, Reading::StepByStep);
        haveReported(5);
    }

    void agreesOnOddBytesAfterKeys_data() { addRows(); }
    void agreesOnOddBytesAfterKeys()
    {
        tryAll([](quint32 seed) { return withOddBytesAfterKeys(RandomHts(seed).file(6), seed); },
               4);
        QVERIFY(m_messages.contains(QString()));
        // Far more of these get to a column header.
        tryAll(
            [](quint32 seed) {
                return withOddBytesAfterKeys(
                    "name:x\nnumber_of_runs:1\nowner:y\nEND_PACKAGE_PREAMBLE\n"
                    "start:2000-1-1 6:00\ntrace:1\nslot_set:s\nEND_RUN_PREAMBLE\n"
                    "object_type: R\nrows: 1\nslot_type: S\nEND_SLOT_PREAMBLE\n"
                    "units: cms\nscale: 2\nmethod: Sum\n1\n",
                    seed);
            },
            2, Reading::StepByStep);
    }

    void agreesOnFilesLongerThanABlock_data() { addRows(); }
    void agreesOnFilesLongerThanABlock()
    {
        const QByteArray text = RandomHts(kLongSeed).file(4000);
        QVERIFY2(text.size() > 2 * 64 * 1024, qPrintable(QString::number(text.size())));
        check(text, "long");
    }

    void agreesOnLineEndsAroundTheEndOfARun_data() { addRows(); }
    // What the look ahead for "END_RUN" sees depends on the device: a file in text mode leaves out
    // every carriage return, a buffer none.
    void agreesOnLineEndsAroundTheEndOfARun()
    {
        const QByteArray opening = "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\n";
        const QByteArrayList endings = {
            "END_RUN\r\n",    "END_RUN",           "\r\nEND_RUN\r\n", "\r\nEND_RUN",
            "\nEND_RUN\r\n",  "\r\n\r\nEND_RUN\n", "\n\nEND_RUN\n",   "\r\nEND_RUNS\r\n",
            "\r\nEND_RU\r\n", "END_RU\r\n",        " END_RUN\r\n",    "END_RUN \r\n",
        };
        for (const QByteArray& ending : endings) {
            for (const char* rest : {"", "slot_name: a\r\n\r\nEND_RUN\r\n", "END_RUN\n"})
                check(opening + ending + rest, ending.toPercentEncoding() + rest);
        }
    }

    void agreesOnFilesCutAtEveryByte_data() { addRows(); }
    void agreesOnFilesCutAtEveryByte()
    {
        const QByteArray whole =
            "name:cut\nnumber_of_runs:2\nEND_PACKAGE_PREAMBLE\ntime_steps:2\n"
            "END_RUN_PREAMBLE\n2000-1-31 24:00\n2000-2-29 24:00\nobject_type: R\n"
            "END_SLOT_PREAMBLE\nunits: cms\nscale: 2\nmethod: Max\n1.5\nNaN\n"
            "END_COLUMN\nEND_SLOT\nslot_type: ScalarSlot\nEND_SLOT_PREAMBLE\nunits: x\n"
            "scale: 1.25\n-0.125\nEND_COLUMN\nEND_SLOT\nrows: 2\ncols: 1\nEND_SLOT_PREAMBLE\n1\n"
            "2\nunits: m\nEND_SLOT\nEND_RUN\ntrace:2\ntime_steps:1\nEND_RUN_PREAMBLE\n"
            "2000-1-31 24:00\nEND_SLOT_PREAMBLE\nunits: \nscale: 0\n1e2\nEND_COLUMN\nEND_SLOT\n"
            "END_RUN\nmore";
        for (const char* lineEnd : {"\n", "\r\n"}) {
            const QByteArray lines = QByteArray(whole).replace("\n", lineEnd);
            // The devices take turns.
            for (int length = rowKind() % 3; length <= lines.size(); length += 3)
                check(lines.left(length), "cut at " + QByteArray::number(length));
        }
    }

private:
    static constexpr quint32 kLongSeed = 3;

    enum class Reading { Whole, StepByStep };

    void addRows()
    {
        m_messages.clear();
        m_rowsDone = 0;
        addDeviceRows();
    }

    static QByteArray brokenFile(quint32 seed)
    {
        RandomHts random(seed);
        return random.broken(random.file(6));
    }

    // Fails when the two readers do something different on the device of the current data row.
    void check(const QByteArray& text, const QByteArray& what, Reading reading = Reading::Whole)
    {
        const ReaderComparison comparison =
            reading == Reading::Whole ? compareReaders(rowDeviceKind(), isRowTextMode(), text)
                                      : compareReaders(rowDeviceKind(), isRowTextMode(), text,
                                                       stepReader(kSteps), stepReader(kPlainSteps));
        m_messages.insert(comparison.message);
        QVERIFY2(comparison.difference.isEmpty(),
                 qPrintable(QString::fromLatin1(what + ": ") + comparison.difference));
    }

    // Checks the usual number of texts, divided by `divisor`, other ones on each kind of device.
    void tryAll(const std::function<QByteArray(quint32 seed)>& make, int divisor = 1,
                Reading reading = Reading::Whole)
    {
        const int wanted = qEnvironmentVariableIntValue("HTS_PROPERTY_CASES");
        const int count = (wanted > 0 ? wanted : kUsualCases) / divisor;
        const int first = (2 * rowKind() + (isRowTextMode() ? 1 : 0)) * count;
        for (int seed = first; seed < first + count && !QTest::currentTestFailed(); ++seed)
            check(make(static_cast<quint32>(seed)), "seed " + QByteArray::number(seed), reading);
    }

    // After all rows of a test, the plain reader must have reported so many different things.
    void haveReported(int messages)
    {
        if (++m_rowsDone == 2 * static_cast<int>(deviceKinds().size()))
            QCOMPARE(m_messages.size(), messages);
    }

    // What the plain reader reported in the current test, and on how many devices.
    QSet<QString> m_messages;
    int m_rowsDone = 0;
};

HTS_TEST(ReaderAgreementTest, NoApplication)
#include "tst_readeragreement.moc"
