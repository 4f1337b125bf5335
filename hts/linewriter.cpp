#include "hts/linewriter.h"

#include <algorithm>

#include <QIODevice>

#include "hts/numbertext.h"
#include "hts/writetext.h"

namespace {

constexpr std::size_t kBlockSize = std::size_t(64) * 1024;

} // namespace

LineWriter::LineWriter(QIODevice& device) : m_device(device), m_block(kBlockSize)
{
    Q_ASSERT(device.isWritable());
}

LineWriter::~LineWriter()
{
    flush();
}

void LineWriter::flush()
{
    if (m_used > 0)
        writeText(m_device, m_block.data(), m_used);
    m_used = 0;
}

void LineWriter::append(const char* bytes, std::size_t count)
{
    while (count > 0) {
        const std::size_t part = std::min(count, m_block.size());
        std::copy_n(bytes, part, reserve(part));
        m_used += part;
        bytes += part;
        count -= part;
    }
}

LineWriter& LineWriter::operator<<(QLatin1String text)
{
    append(text.data(), static_cast<std::size_t>(text.size()));
    return *this;
}

LineWriter& LineWriter::operator<<(const QString& text)
{
    // Most texts are a few letters of ASCII, which need no conversion.
    const auto size = static_cast<std::size_t>(text.size());
    const bool isAscii =
        std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
    if (isAscii && size <= m_block.size()) {
        std::transform(text.begin(), text.end(), reserve(size),
                       [](QChar c) { return static_cast<char>(c.unicode()); });
        m_used += size;
    } else {
        const QByteArray bytes = text.toUtf8();
        append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }
    return *this;
}

LineWriter& LineWriter::operator<<(double number)
{
    char* const start = reserve(kMaxNumberLength);
    m_used += static_cast<std::size_t>(writeNumber(start, number) - start);
    return *this;
}
