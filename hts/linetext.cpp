#include "hts/linetext.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

// Well within what a QString holds, whose size is an int and whose memory counts in bytes.
constexpr std::size_t kMaxBytes = std::numeric_limits<int>::max() / 4;

bool hasByteOrderMark(std::string_view bytes)
{
    return bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark;
}

} // namespace

std::string_view textBytes(std::string_view line)
{
    Q_ASSERT(line.size() == stripped(line).size());
    if (hasByteOrderMark(line))
        line.remove_prefix(kByteOrderMark.size());
    return line.substr(0, std::min(line.find('\0'), kMaxBytes));
}

QString toText(std::string_view bytes)
{
    Q_ASSERT(bytes.size() <= kMaxBytes && bytes.find('\0') == std::string_view::npos);
    // Most texts are a few letters of ASCII, which take half the time when they need no decoding.
    if (isAscii(bytes))
        return QString::fromLatin1(bytes.data(), static_cast<int>(bytes.size()));
    const QString text = QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
    // The toolkit drops the mark at the start of any text, but here it is in the middle of a line.
    return hasByteOrderMark(bytes) ? QChar(QChar::ByteOrderMark) + text : text;
}

bool isAscii(std::string_view bytes)
{
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

const QString& RepeatedText::of(std::string_view bytes)
{
    if (bytes != m_bytes) {
        m_bytes = bytes;
        m_text = toText(bytes);
    }
    return m_text;
}

double RepeatedNumber::of(std::string_view bytes)
{
    if (bytes != m_bytes) {
        m_bytes = bytes;
        m_number = toText(bytes).trimmed().toDouble();
    }
    return m_number;
}
