// The reader of hts/ on any bytes: on every kind of device, in text mode and not, it must have the
// same message and model as the plain line-by-line reader, and leave the device at the same
// position.

#include <algorithm>

#include <QBuffer>

#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "tests/hts/readercompare.h"

namespace {

// A buffer whose first read ends at a place that depends on its content: to the reader this is the
// end of a block, without a block before it.
class SplitBuffer : public QBuffer
{
public:
    explicit SplitBuffer(const QByteArray& text)
        : m_firstSize(static_cast<qint64>(fuzz::seedOf(text) >> 16) % (text.size() + 1))
    {
        setData(text);
    }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        const qint64 size = m_firstSize > 0 ? std::min(m_firstSize, maxSize) : maxSize;
        m_firstSize = 0;
        return QBuffer::readData(data, size);
    }

private:
    qint64 m_firstSize; // 0 after the first read
};

std::unique_ptr<QIODevice> splitBufferOf(const QByteArray& text)
{
    return std::make_unique<SplitBuffer>(text);
}

void checkCase(const DeviceKind& kind, bool isTextMode, const QByteArray& text)
{
    const QString fault = compareReaders(kind, isTextMode, text).difference;
    fuzz::require(fault.isEmpty(), QLatin1String(kind.name) +
                                       QLatin1String(isTextMode ? ", text mode: " : ": ") + fault);
}

// The last `size` of many bytes in lines that begin with no key.
QByteArray padding(int size)
{
    static const QByteArray kLines = QByteArray(QByteArray(999, '#') + '\n').repeated(100);
    return kLines.right(size);
}

} // namespace

// Every input is read from a buffer, whole or in two parts, as its seed says. Few inputs are read
// from another device, and fewer after a whole block: some of these take a hundred times as long.
FUZZ_TARGET(reader)
{
    constexpr quint64 kDeviceShare = 256;
    constexpr quint64 kBlockShare = 2048;
    constexpr int kBlockSize = 64 * 1024; // of the reader
    const std::vector<DeviceKind>& kinds = deviceKinds();
    const DeviceKind splitBuffer = {"split buffer", splitBufferOf, kinds.front().makeReference,
                                    QIODevice::ReadOnly | QIODevice::Unbuffered};
    quint64 seed = fuzz::seedOf(input) >> 8; // the lowest bits depend only on the last bytes
    const bool isTextMode = seed % 2 == 1;
    const bool isSplit = seed / 2 % 2 == 1;
    seed /= 4;
    checkCase(isSplit ? splitBuffer : kinds.front(), isTextMode, input);
    const quint64 choice = seed / kBlockShare;
    if (seed % kDeviceShare == 0)
        checkCase(kinds[1 + choice % (kinds.size() - 1)], isTextMode, input);
    if (seed % kBlockShare == 1) {
        const int blockEnd = static_cast<int>(choice % static_cast<quint64>(input.size() + 1));
        checkCase(kinds[choice % kQuickKinds], isTextMode, padding(kBlockSize - blockEnd) + input);
    }
}
