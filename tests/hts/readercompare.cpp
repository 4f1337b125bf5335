#include "tests/hts/readercompare.h"

#include <functional>
#include <string>

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

#include "tests/hts/packagecompare.h"
#include "tests/hts/piecedevice.h"
#include "tests/hts/randomhts.h"
#include "tests/plain/plainreader.h"

const QLatin1String kEndless("endless");

namespace {

constexpr qint64 kAnySize = 1 << 30;

std::unique_ptr<QIODevice> bufferOf(const QByteArray& text)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(text);
    return buffer;
}

std::unique_ptr<QIODevice> fileOf(const QByteArray& text)
{
    static const QTemporaryDir kFolder;
    auto file = std::make_unique<QFile>(kFolder.filePath(QStringLiteral("file.hts")));
    if (!file->open(QIODevice::WriteOnly) || file->write(text) != text.size())
        qFatal("cannot write %s", qPrintable(file->fileName()));
    file->close();
    return file;
}

std::unique_ptr<QIODevice> sequentialOf(const QByteArray& text)
{
    return std::make_unique<PieceDevice>(text, kAnySize);
}

std::unique_ptr<QIODevice> oneByteOf(const QByteArray& text)
{
    return std::make_unique<PieceDevice>(text, 1);
}

std::unique_ptr<QIODevice> sevenBytesOf(const QByteArray& text)
{
    return std::make_unique<PieceDevice>(text, 7);
}

std::unique_ptr<QIODevice> randomPiecesOf(const QByteArray& text)
{
    auto pieces = std::make_unique<PieceDevice>(text, 40);
    pieces->setRandomPieces(static_cast<quint32>(std::hash<std::string>()(text.toStdString())));
    return pieces;
}

struct Outcome
{
    Status status;
    HtsPackage package;
    qint64 position = 0;
    bool isTextMode = false;
    QByteArray rest;
};

Outcome outcomeOf(QIODevice& device, QIODevice::OpenMode mode, bool isTextMode,
                  const PackageReader& reader)
{
    mode.setFlag(QIODevice::Text, isTextMode);
    if (!device.open(mode))
        qFatal("cannot open the device");
    Outcome outcome;
    outcome.status = reader(device, outcome.package);
    outcome.position = device.pos();
    outcome.isTextMode = device.isTextModeEnabled();
    device.setTextModeEnabled(false);
    outcome.rest = device.readAll();
    return outcome;
}

QString difference(const Outcome& actual, const Outcome& expected)
{
    if (actual.status.message != expected.status.message)
        return QStringLiteral("message \"%1\" instead of \"%2\"")
            .arg(actual.status.message, expected.status.message);
    if (actual.status.flag || expected.status.flag)
        return QStringLiteral("the flag is set");
    if (actual.rest != expected.rest || actual.position != expected.position)
        return QStringLiteral("stopped at %1 (%2 left) instead of %3 (%4 left)")
            .arg(actual.position)
            .arg(actual.rest.size())
            .arg(expected.position)
            .arg(expected.rest.size());
    if (actual.isTextMode != expected.isTextMode)
        return QStringLiteral("text mode has changed");
    const QString fault = difference(actual.package, expected.package);
    return fault.isEmpty() ? fault : QStringLiteral("model: ") + fault;
}

} // namespace

const std::vector<DeviceKind>& deviceKinds()
{
    static const std::vector<DeviceKind> kKinds = {
        {"buffer", bufferOf, bufferOf},
        {"file", fileOf, fileOf},
        {"unbuffered file", fileOf, fileOf, QIODevice::ReadOnly | QIODevice::Unbuffered},
        {"sequential device", sequentialOf, sequentialOf},
        {"1 byte at a time", oneByteOf, sequentialOf},
        {"7 bytes at a time", sevenBytesOf, sequentialOf},
        {"random pieces", randomPiecesOf, sequentialOf},
    };
    return kKinds;
}

ReaderComparison compareReaders(const DeviceKind& kind, bool isTextMode, const QByteArray& text,
                                const PackageReader& reader, const PackageReader& plainReader)
{
    const QByteArray bytes = isTextMode ? withoutLoneCarriageReturns(text) : text;
    const auto reference = kind.makeReference(bytes);
    const Outcome expected = outcomeOf(*reference, QIODevice::ReadOnly, isTextMode, plainReader);
    if (expected.status.message == kEndless)
        return {QString(), kEndless};
    const auto device = kind.make(bytes);
    const Outcome actual = outcomeOf(*device, kind.mode, isTextMode, reader);
    return {difference(actual, expected), expected.status.message};
}

ReaderComparison compareReaders(const DeviceKind& kind, bool isTextMode, const QByteArray& text)
{
    const auto read = [](QIODevice& device, HtsPackage& package) { return package.read(device); };
    const auto readPlainly = [&text](QIODevice& device, HtsPackage& package) {
        bool isEndless = false;
        const Status status = plainreader::readUnlessEndless(device, text, package, isEndless);
        return isEndless ? failure(kEndless) : status;
    };
    return compareReaders(kind, isTextMode, text, read, readPlainly);
}
