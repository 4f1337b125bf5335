// The reader of hts/ against the plain reader: on the same bytes both give the same message, the
// same model, bit by bit, and leave the device at the same place.

#include <algorithm>

#include <QRandomGenerator>
#include <QSet>
#include <QtTest>

#include "tests/hts/randomhts.h"
#include "tests/hts/readercompare.h"
#include "tests/plain/plainreader.h"
#include "tests/support/testmain.h"

namespace {

const QString kInput = QStringLiteral("input %1: %2");

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
    void init();
    void agreesOnGeneratedFiles_data();
    void agreesOnGeneratedFiles();
    void agreesOnBrokenFiles_data();
    void agreesOnBrokenFiles();
    void agreesStepByStep_data();
    void agreesStepByStep();
    void agreesOnOddBytesAfterKeys_data();
    void agreesOnOddBytesAfterKeys();
    void agreesOnFilesLongerThanABlock_data();
    void agreesOnFilesLongerThanABlock();
    void agreesOnLineEndsAroundTheEndOfARun_data();
    void agreesOnLineEndsAroundTheEndOfARun();
    void agreesOnFilesCutAtEveryByte_data();
    void agreesOnFilesCutAtEveryByte();

private:
    // What the two readers do differently on the device of the current data row; empty if nothing.
    QString disagreement(const QByteArray& text, const PackageReader& reader,
                         const PackageReader& plainReader);
    QString disagreement(const QByteArray& text);

    // What the plain reader reported in the current test.
    QSet<QString> m_messages;
};

QString ReaderAgreementTest::disagreement(const QByteArray& text, const PackageReader& reader,
                                          const PackageReader& plainReader)
{
    QFETCH(int, kind);
    QFETCH(bool, isTextMode);
    const ReaderComparison comparison = compareReaders(
        deviceKinds()[static_cast<std::size_t>(kind)], isTextMode, text, reader, plainReader);
    m_messages.insert(comparison.message);
    return comparison.difference;
}

QString ReaderAgreementTest::disagreement(const QByteArray& text)
{
    QFETCH(int, kind);
    QFETCH(bool, isTextMode);
    const ReaderComparison comparison =
        compareReaders(deviceKinds()[static_cast<std::size_t>(kind)], isTextMode, text);
    m_messages.insert(comparison.message);
    return comparison.difference;
}

static void addDeviceRows()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("isTextMode");
    int index = 0;
    for (const DeviceKind& kind : deviceKinds()) {
        QTest::addRow("%s", kind.name) << index << false;
        QTest::addRow("%s, text mode", kind.name) << index << true;
        ++index;
    }
}

void ReaderAgreementTest::init()
{
    m_messages.clear();
}

void ReaderAgreementTest::agreesOnGeneratedFiles_data()
{
    addDeviceRows();
}

void ReaderAgreementTest::agreesOnGeneratedFiles()
{
    for (quint32 seed = 0; seed < 150; ++seed) {
        const QString fault = disagreement(RandomHts(seed).file(12));
        QVERIFY2(fault.isEmpty(), qPrintable(kInput.arg(seed).arg(fault)));
    }
    // What the generator makes can be read.
    QCOMPARE(m_messages, QSet<QString>{QString()});
}

void ReaderAgreementTest::agreesOnBrokenFiles_data()
{
    addDeviceRows();
}

void ReaderAgreementTest::agreesOnBrokenFiles()
{
    for (quint32 seed = 0; seed < 500; ++seed) {
        RandomHts random(seed);
        const QString fault = disagreement(random.broken(random.file(6)));
        QVERIFY2(fault.isEmpty(), qPrintable(kInput.arg(seed).arg(fault)));
    }
    // Success, the four messages and the endless search have all been seen.
    QCOMPARE(m_messages.size(), 6);
}

void ReaderAgreementTest::agreesStepByStep_data()
{
    addDeviceRows();
}

void ReaderAgreementTest::agreesStepByStep()
{
    for (quint32 seed = 0; seed < 300; ++seed) {
        RandomHts random(seed);
        const QByteArray text = random.broken(random.file(6));
        const QString fault = disagreement(text, stepReader(kSteps), stepReader(kPlainSteps));
        QVERIFY2(fault.isEmpty(), qPrintable(kInput.arg(seed).arg(fault)));
    }
    QCOMPARE(m_messages.size(), 5);
}

void ReaderAgreementTest::agreesOnOddBytesAfterKeys_data()
{
    addDeviceRows();
}

void ReaderAgreementTest::agreesOnOddBytesAfterKeys()
{
    for (quint32 seed = 0; seed < 200; ++seed) {
        const QByteArray text = withOddBytesAfterKeys(RandomHts(seed).file(6), seed);
        QString fault = disagreement(text);
        QVERIFY2(fault.isEmpty(), qPrintable(kInput.arg(seed).arg(fault)));
        // Far more of them get to a column header.
        const QByteArray inOrder = withOddBytesAfterKeys(
            "name:x\nnumber_of_runs:1\nowner:y\nEND_PACKAGE_PREAMBLE\nstart:2000-1-1 6:00\n"
            "trace:1\nslot_set:s\nEND_RUN_PREAMBLE\nobject_type: R\nrows: 1\nslot_type: S\n"
            "END_SLOT_PREAMBLE\nunits: cms\nscale: 2\nmethod: Sum\n1\n",
            seed);
        fault = disagreement(inOrder, stepReader(kSteps), stepReader(kPlainSteps));
        QVERIFY2(fault.isEmpty(), qPrintable(kInput.arg(seed).arg(fault)));
    }
    QVERIFY(m_messages.contains(QString()));
}

void ReaderAgreementTest::agreesOnFilesLongerThanABlock_data()
{
    addDeviceRows();
}

void ReaderAgreementTest::agreesOnFilesLongerThanABlock()
{
    int longest = 0;
    for (quint32 seed = 0; seed < 4; ++seed) {
        const QByteArray text = RandomHts(seed).file(4000);
        longest = std::max(longest, text.size());
        const QString fault = disagreement(text);
        QVERIFY2(fault.isEmpty(), qPrintable(kInput.arg(seed).arg(fault)));
    }
    QVERIFY2(longest > 2 * 64 * 1024, qPrintable(QString::number(longest)));
}

void ReaderAgreementTest::agreesOnLineEndsAroundTheEndOfARun_data()
{
    addDeviceRows();
}

// What the look ahead for "END_RUN" sees depends on the device: a file in text mode leaves out
// every
// "\r", a buffer none.
void ReaderAgreementTest::agreesOnLineEndsAroundTheEndOfARun()
{
    const QByteArray opening = "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\n";
    const QByteArrayList endings = {
        "END_RUN\r\n",    "END_RUN",           "\r\nEND_RUN\r\n", "\r\nEND_RUN",
        "\nEND_RUN\r\n",  "\r\n\r\nEND_RUN\n", "\n\nEND_RUN\n",   "\r\nEND_RUNS\r\n",
        "\r\nEND_RU\r\n", "END_RU\r\n",        " END_RUN\r\n",    "END_RUN \r\n",
    };
    for (const QByteArray& ending : endings) {
        for (const char* rest : {"", "slot_name: a\r\n\r\nEND_RUN\r\n", "END_RUN\n"}) {
            const QByteArray text = opening + ending + rest;
            const QString fault = disagreement(text);
            QVERIFY2(fault.isEmpty(), qPrintable(QString::fromLatin1(ending.toHex()) + fault));
        }
    }
}

void ReaderAgreementTest::agreesOnFilesCutAtEveryByte_data()
{
    addDeviceRows();
}

void ReaderAgreementTest::agreesOnFilesCutAtEveryByte()
{
    const QByteArray whole =
        "name:cut\nnumber_of_runs:1\nEND_PACKAGE_PREAMBLE\ntime_steps:2\n"
        "END_RUN_PREAMBLE\n2000-1-31 24:00\n2000-2-29 24:00\nobject_type: R\n"
        "END_SLOT_PREAMBLE\nunits: cms\nscale: 2\nmethod: Max\n1.5\nNaN\n"
        "END_COLUMN\nEND_SLOT\nslot_type: ScalarSlot\nEND_SLOT_PREAMBLE\nunits: \n"
        "units: x\nscale: 1\n2\nEND_COLUMN\nEND_SLOT\nEND_RUN\nmore";
    for (const char* lineEnd : {"\n", "\r\n"}) {
        QByteArray lines = whole;
        lines.replace("\n", lineEnd);
        for (int length = 0; length <= lines.size(); ++length) {
            const QString fault = disagreement(lines.left(length));
            QVERIFY2(fault.isEmpty(), qPrintable(kInput.arg(length).arg(fault)));
        }
    }
}

HTS_TEST(ReaderAgreementTest, NoApplication)
#include "tst_readeragreement.moc"
