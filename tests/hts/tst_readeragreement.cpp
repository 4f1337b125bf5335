// The reader of hts/ against the plain reader: on the same bytes both give the same message, the
// same model, bit by bit, and leave the device at the same place.

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

#include <QBuffer>
#include <QFile>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include "bench/plainreader/plainreader.h"
#include "tests/hts/packagecompare.h"
#include "tests/hts/piecedevice.h"
#include "tests/hts/randomhts.h"

namespace {

constexpr qint64 kAnySize = 1 << 30;

// In place of a message: a table has no "END_SLOT", and the reader of hts/ would look for it for
// ever.
const QLatin1String kEndless("endless");
const QString kInput = QStringLiteral("input %1: %2");

enum class Kind { Buffer, File, OneByte, SevenBytes, RandomPieces };

bool isSequential(Kind kind)
{
    return kind != Kind::Buffer && kind != Kind::File;
}

struct Outcome
{
    Status status;
    HtsPackage package;
    qint64 position = 0;
    bool isTextMode = false;
    QByteArray rest;
};

using Reader = std::function<Status(QIODevice& device, HtsPackage& package)>;

Outcome outcomeOf(QIODevice& device, const Reader& reader)
{
    Outcome outcome;
    outcome.status = reader(device, outcome.package);
    outcome.position = device.pos();
    outcome.isTextMode = device.isTextModeEnabled();
    device.setTextModeEnabled(false);
    outcome.rest = device.readAll();
    return outcome;
}

QString difference(const Outcome& left, const Outcome& right)
{
    if (left.status.message != right.status.message)
        return left.status.message + QStringLiteral(" | ") + right.status.message;
    if (left.status.flag || right.status.flag)
        return QStringLiteral("flag is set");
    if (left.rest != right.rest || left.position != right.position)
        return QStringLiteral("stopped at %1 (%2 left) and %3 (%4 left)")
            .arg(left.position)
            .arg(left.rest.size())
            .arg(right.position)
            .arg(right.rest.size());
    if (left.isTextMode != right.isTextMode)
        return QStringLiteral("text mode has changed");
    return difference(left.package, right.package);
}

Status readAtOnce(QIODevice& device, HtsPackage& package)
{
    return package.read(device);
}

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

Reader stepReader(const Steps& steps)
{
    return [steps](QIODevice& device, HtsPackage& package) {
        return readBySteps(steps, device, package);
    };
}

// `text` with a byte order mark or a NUL byte behind every third colon, or behind the blank that
// follows it, by chance.
QByteArray withOddBytesBehindKeys(const QByteArray& text, quint32 seed)
{
    QRandomGenerator random(seed);
    QByteArray result;
    bool isBehindKey = false;
    for (int i = 0; i < text.size(); ++i) {
        const char character = text.at(i);
        result += character;
        isBehindKey = character == ':' || (isBehindKey && character == ' ');
        const bool isNext = isBehindKey && (i + 1 == text.size() || text.at(i + 1) != ' ');
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
    void initTestCase();
    void init();
    void agreesOnGeneratedFiles_data();
    void agreesOnGeneratedFiles();
    void agreesOnBrokenFiles_data();
    void agreesOnBrokenFiles();
    void agreesStepByStep_data();
    void agreesStepByStep();
    void agreesOnOddBytesBehindKeys_data();
    void agreesOnOddBytesBehindKeys();
    void agreesOnFilesLongerThanABlock_data();
    void agreesOnFilesLongerThanABlock();
    void agreesOnLineEndsAroundTheEndOfARun_data();
    void agreesOnLineEndsAroundTheEndOfARun();
    void agreesOnFilesCutAtEveryByte_data();
    void agreesOnFilesCutAtEveryByte();

private:
    std::unique_ptr<QIODevice> opened(Kind kind, const QByteArray& text, bool isTextMode);
    // A reference device for `kind` on which the plain reader sees what it asks for: its look ahead
    // of eight bytes comes up short on small pieces.
    std::unique_ptr<QIODevice> reference(Kind kind, const QByteArray& text, bool isTextMode);
    // What the two readers do differently on the device of the current data row; empty if nothing.
    QString disagreement(const QByteArray& text, const Reader& reader, const Reader& plainReader);
    QString disagreement(const QByteArray& text);

    QTemporaryDir m_folder;
    // What the plain reader reported in the current test.
    QSet<QString> m_messages;
};

void ReaderAgreementTest::initTestCase()
{
    QVERIFY(m_folder.isValid());
}

std::unique_ptr<QIODevice> ReaderAgreementTest::opened(Kind kind, const QByteArray& text,
                                                       bool isTextMode)
{
    std::unique_ptr<QIODevice> device;
    if (kind == Kind::Buffer) {
        auto buffer = std::make_unique<QBuffer>();
        buffer->setData(text);
        device = std::move(buffer);
    } else if (kind == Kind::File) {
        auto file = std::make_unique<QFile>(m_folder.filePath(QStringLiteral("file.hts")));
        if (!file->open(QIODevice::WriteOnly) || file->write(text) != text.size())
            qFatal("cannot write %s", qPrintable(file->fileName()));
        file->close();
        device = std::move(file);
    } else {
        auto pieces = std::make_unique<PieceDevice>(text, kind == Kind::OneByte ? 1 : 7);
        if (kind == Kind::RandomPieces)
            pieces->setRandomPieces(static_cast<quint32>(text.size()));
        device = std::move(pieces);
    }
    if (!device->open(isTextMode ? QIODevice::ReadOnly | QIODevice::Text
                                 : QIODevice::OpenMode(QIODevice::ReadOnly)))
        qFatal("cannot open the device");
    return device;
}

std::unique_ptr<QIODevice> ReaderAgreementTest::reference(Kind kind, const QByteArray& text,
                                                          bool isTextMode)
{
    if (!isSequential(kind))
        return opened(kind, text, isTextMode);
    auto device = std::make_unique<PieceDevice>(text, kAnySize);
    device->open(isTextMode ? QIODevice::ReadOnly | QIODevice::Text
                            : QIODevice::OpenMode(QIODevice::ReadOnly));
    return device;
}

QString ReaderAgreementTest::disagreement(const QByteArray& text, const Reader& reader,
                                          const Reader& plainReader)
{
    QFETCH(int, kind);
    QFETCH(bool, isTextMode);
    const QByteArray bytes = isTextMode ? withoutLoneCarriageReturns(text) : text;
    const auto deviceKind = static_cast<Kind>(kind);

    const auto expectedDevice = reference(deviceKind, bytes, isTextMode);
    const Outcome expected = outcomeOf(*expectedDevice, plainReader);
    m_messages.insert(expected.status.message);
    if (expected.status.message == kEndless)
        return {};
    const auto actualDevice = opened(deviceKind, bytes, isTextMode);
    return difference(outcomeOf(*actualDevice, reader), expected);
}

QString ReaderAgreementTest::disagreement(const QByteArray& text)
{
    return disagreement(text, readAtOnce, [&text](QIODevice& device, HtsPackage& package) {
        plainreader::LineBudget budget{text.count('\n') + 10};
        const Status status = plainreader::read(device, package, &budget);
        return budget.isExhausted ? failure(kEndless) : status;
    });
}

static void addDeviceRows()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("isTextMode");
    const std::pair<const char*, Kind> kKinds[] = {{"buffer", Kind::Buffer},
                                                   {"file", Kind::File},
                                                   {"1 byte at a time", Kind::OneByte},
                                                   {"7 bytes at a time", Kind::SevenBytes},
                                                   {"random pieces", Kind::RandomPieces}};
    for (const auto& [name, kind] : kKinds) {
        QTest::addRow("%s", name) << static_cast<int>(kind) << false;
        QTest::addRow("%s, text mode", name) << static_cast<int>(kind) << true;
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

void ReaderAgreementTest::agreesOnOddBytesBehindKeys_data()
{
    addDeviceRows();
}

void ReaderAgreementTest::agreesOnOddBytesBehindKeys()
{
    for (quint32 seed = 0; seed < 200; ++seed) {
        const QByteArray text = withOddBytesBehindKeys(RandomHts(seed).file(6), seed);
        QString fault = disagreement(text);
        QVERIFY2(fault.isEmpty(), qPrintable(kInput.arg(seed).arg(fault)));
        // Far more of them get to a column header.
        const QByteArray inOrder = withOddBytesBehindKeys(
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

QTEST_APPLESS_MAIN(ReaderAgreementTest)
#include "tst_readeragreement.moc"
