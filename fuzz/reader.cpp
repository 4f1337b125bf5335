// The reader of hts/ on any bytes: on every kind of device, in text mode and not, it must give the
// message and the model that the plain line-by-line reader gives, and leave the device where that
// one does.

#include <iterator>
#include <memory>
#include <utility>

#include <QBuffer>
#include <QFile>

#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "hts/htspackage.h"
#include "tests/hts/packagecompare.h"
#include "tests/hts/piecedevice.h"
#include "tests/hts/randomhts.h"

namespace {

constexpr qint64 kAnySize = 1 << 30;

struct Outcome
{
    Status status;
    HtsPackage package;
    qint64 position = 0;
    bool isTextMode = false;
    QByteArray rest;
};

std::unique_ptr<QIODevice> bufferOf(const QByteArray& text)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(text);
    return buffer;
}

std::unique_ptr<QIODevice> fileOf(const QByteArray& text)
{
    static const fuzz::ScratchFile kFile;
    kFile.write(text);
    return std::make_unique<QFile>(kFile.path());
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
    pieces->setRandomPieces(static_cast<quint32>(fuzz::seedOf(text)));
    return pieces;
}

// A device to read from, and the one on which the plain reader sees what it asks for: its look
// ahead of eight bytes comes up short on small pieces.
struct Kind
{
    const char* name;
    std::unique_ptr<QIODevice> (*make)(const QByteArray& text);
    std::unique_ptr<QIODevice> (*makeReference)(const QByteArray& text);
    QIODevice::OpenMode mode = QIODevice::ReadOnly;
};

constexpr quint64 kQuickKinds = 4; // the first ones

const Kind kKinds[] = {
    {"buffer", bufferOf, bufferOf},
    {"file", fileOf, fileOf},
    {"unbuffered file", fileOf, fileOf, QIODevice::ReadOnly | QIODevice::Unbuffered},
    {"sequential device", sequentialOf, sequentialOf},
    {"1 byte at a time", oneByteOf, sequentialOf},
    {"7 bytes at a time", sevenBytesOf, sequentialOf},
    {"random pieces", randomPiecesOf, sequentialOf},
};

void open(QIODevice& device, QIODevice::OpenMode mode, bool isTextMode)
{
    mode.setFlag(QIODevice::Text, isTextMode);
    fuzz::require(device.open(mode), QStringLiteral("cannot open the device"));
}

void takeDeviceState(QIODevice& device, Outcome& outcome)
{
    outcome.position = device.pos();
    outcome.isTextMode = device.isTextModeEnabled();
    device.setTextModeEnabled(false);
    outcome.rest = device.readAll();
}

void requireSame(const QString& what, const Outcome& actual, const Outcome& expected)
{
    fuzz::requireEqual(what + QStringLiteral(", message"), actual.status.message,
                       expected.status.message);
    fuzz::require(!actual.status.flag, what + QStringLiteral(": the flag is set"));
    const QString fault = difference(actual.package, expected.package);
    fuzz::require(fault.isEmpty(), what + QStringLiteral(", model: ") + fault);
    fuzz::requireEqual(what + QStringLiteral(", position"), QString::number(actual.position),
                       QString::number(expected.position));
    fuzz::require(actual.rest == expected.rest, QStringLiteral("%1: %2 bytes left instead of %3")
                                                    .arg(what)
                                                    .arg(actual.rest.size())
                                                    .arg(expected.rest.size()));
    fuzz::require(actual.isTextMode == expected.isTextMode,
                  what + QStringLiteral(": text mode has changed"));
}

void checkOn(const Kind& kind, const QString& what, const QByteArray& text, bool isTextMode)
{
    Outcome expected;
    const auto reference = kind.makeReference(text);
    open(*reference, QIODevice::ReadOnly, isTextMode);
    bool isEndless = false;
    expected.status = fuzz::readPlainly(*reference, text, expected.package, isEndless);
    if (isEndless)
        return;
    takeDeviceState(*reference, expected);

    Outcome actual;
    const auto device = kind.make(text);
    open(*device, kind.mode, isTextMode);
    actual.status = actual.package.read(*device);
    takeDeviceState(*device, actual);
    requireSame(what, actual, expected);
}

// The last `size` of many bytes in lines that no key fits.
QByteArray padding(int size)
{
    static const QByteArray kLines = QByteArray(QByteArray(999, '#') + '\n').repeated(100);
    return kLines.right(size);
}

void checkCase(const QByteArray& text, quint64 number, int paddingSize = 0)
{
    const bool isTextMode = number % 2 == 1;
    const Kind& kind = kKinds[number / 2];
    const QString what = QLatin1String(kind.name) + QLatin1String(isTextMode ? ", text mode" : "") +
                         QLatin1String(paddingSize > 0 ? ", behind other lines" : "");
    const QByteArray adapted = isTextMode ? withoutLoneCarriageReturns(text) : text;
    checkOn(kind, what, padding(paddingSize) + adapted, isTextMode);
}

} // namespace

// By chance and not on all devices: some make an input cost a hundred times what the reading takes.
void checkInput(const QByteArray& input)
{
    constexpr quint64 kCases = 2 * std::size(kKinds);
    constexpr quint64 kQuickCases = 2 * kQuickKinds;
    constexpr int kBlockSize = 64 * 1024;          // of the reader
    const quint64 seed = fuzz::seedOf(input) >> 8; // the lowest bits hang on the last bytes alone
    checkCase(input, 0);
    checkCase(input, 1 + seed % (kCases - 1));
    // Once more with the end of a block somewhere in the input.
    const auto size = static_cast<quint64>(input.size());
    const int blockEnd = static_cast<int>(seed / kCases % (size + 1));
    checkCase(input, seed % kQuickCases, kBlockSize - blockEnd);
}
