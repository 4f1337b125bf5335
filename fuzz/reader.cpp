// The reader of hts/ on any bytes: on every kind of device, in text mode and not, it must have the
// same message and model as the plain line-by-line reader, and leave the device at the same
// position.

#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "tests/hts/readercompare.h"

namespace {

// The last `size` of many bytes in lines that begin with no key.
QByteArray padding(int size)
{
    static const QByteArray kLines = QByteArray(QByteArray(999, '#') + '\n').repeated(100);
    return kLines.right(size);
}

void checkCase(const QByteArray& text, quint64 number, int paddingSize = 0)
{
    const bool isTextMode = number % 2 == 1;
    const DeviceKind& kind = deviceKinds()[number / 2];
    const QString fault = compareReaders(kind, isTextMode, padding(paddingSize) + text).difference;
    fuzz::require(fault.isEmpty(), QLatin1String(kind.name) +
                                       QLatin1String(isTextMode ? ", text mode" : "") +
                                       QLatin1String(paddingSize > 0 ? ", after other lines" : "") +
                                       QLatin1String(": ") + fault);
}

} // namespace

// Chosen at random and not on all devices: with some an input takes a hundred times as long as
// reading it.
void checkInput(const QByteArray& input)
{
    const quint64 kCases = 2 * deviceKinds().size();
    constexpr quint64 kQuickCases = 2 * kQuickKinds;
    constexpr int kBlockSize = 64 * 1024;          // of the reader
    const quint64 seed = fuzz::seedOf(input) >> 8; // the lowest bits depend only on the last bytes
    checkCase(input, 0);
    checkCase(input, 1 + seed % (kCases - 1));
    // Once more with the end of a block somewhere in the input.
    const auto size = static_cast<quint64>(input.size());
    const int blockEnd = static_cast<int>(seed / kCases % (size + 1));
    checkCase(input, seed % kQuickCases, kBlockSize - blockEnd);
}
