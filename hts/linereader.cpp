#include "hts/linereader.h"

#include <algorithm>
#include <cstring>

#include <QIODevice>

#include "hts/linetext.h"
#include "hts/numbertext.h"

namespace {

// Small enough to stay in the second-level cache, large enough to make the calls free.
constexpr std::size_t kBlockSize = std::size_t(64) * 1024;

void skipBytes(QIODevice& device, std::size_t count)
{
    auto left = static_cast<qint64>(count);
    while (left > 0) {
        const qint64 skipped = device.skip(left);
        if (skipped <= 0)
            return;
        left -= skipped;
    }
}

const char* findLineEnd(const char* first, const char* last)
{
    return static_cast<const char*>(
        std::memchr(first, '\n', static_cast<std::size_t>(last - first)));
}

} // namespace

LineReader::LineReader(QIODevice& device)
    : m_device(device), m_textMode(device.isOpen() && device.isTextModeEnabled()),
      m_block(kBlockSize)
{
    if (m_textMode)
        m_device.setTextModeEnabled(false);
}

LineReader::~LineReader()
{
    giveBack();
    if (m_textMode)
        m_device.setTextModeEnabled(true);
}

// Takes what was used from the device, and moves the unread bytes to the start of the block.
void LineReader::giveBack()
{
    skipBytes(m_device, m_next);
    std::memmove(m_block.data(), m_block.data() + m_next, available());
    m_end -= m_next;
    m_next = 0;
}

// Makes more bytes available behind the unread ones. Returns false at the end of the input.
bool LineReader::more()
{
    giveBack();
    const std::size_t unread = m_end;
    if (unread > m_block.size() / 2)
        m_block.resize(m_block.size() * 2); // a line longer than the block
    // The device gives the unread bytes once more. Should it fail to, they stand as they are.
    const qint64 peeked = m_device.peek(m_block.data(), static_cast<qint64>(m_block.size()));
    m_end = std::max(unread, static_cast<std::size_t>(std::max<qint64>(peeked, 0)));
    return m_end > unread;
}

std::string_view LineReader::line()
{
    std::size_t searched = 0;
    for (;;) {
        const char* first = m_block.data() + m_next;
        const char* last = m_block.data() + m_end;
        if (const char* lineEnd = findLineEnd(first + searched, last)) {
            m_next += static_cast<std::size_t>(lineEnd + 1 - first);
            return stripped({first, static_cast<std::size_t>(lineEnd - first)});
        }
        searched = available();
        if (!more()) {
            m_next = m_end;
            return stripped({m_block.data(), m_end});
        }
    }
}

QString LineReader::text()
{
    return decodedText(line());
}

void LineReader::readNumbers(std::vector<double>& numbers)
{
    for (double& number : numbers) {
        const char* first = m_block.data() + m_next;
        const char* last = m_block.data() + m_end;
        // Most lines hold a plain number and nothing else, so the number's end is the line's.
        const char* end = readPlainNumber(first, last, number);
        const bool foundNumber = end != first;
        if (end != last && *end == '\r')
            ++end;
        if (foundNumber && end != last && *end == '\n')
            m_next += static_cast<std::size_t>(end + 1 - first);
        else
            number = lineToNumber(line());
    }
}

bool LineReader::nextIs(std::string_view word)
{
    const std::size_t length = word.size() + 1;
    while (available() < length && more()) {
    }
    const std::string_view next(m_block.data() + m_next, std::min(available(), length));
    // In text mode a device leaves out every "\r" that it peeks at, or none: that depends on its
    // kind. The end of a Windows line means the same to all of them.
    const std::size_t carriageReturn = next.find('\r');
    if (m_textMode && carriageReturn != std::string_view::npos) {
        const bool endsLine = carriageReturn + 1 == length && (available() > length || more()) &&
                              m_block[m_next + length] == '\n';
        if (!endsLine)
            return nextIsByDevice(word);
        return std::string_view(m_block.data() + m_next, word.size()) == word;
    }
    return stripped(next) == word;
}

bool LineReader::nextIsByDevice(std::string_view word)
{
    giveBack();
    m_device.setTextModeEnabled(true);
    char bytes[16];
    const qint64 peeked = m_device.peek(bytes, static_cast<qint64>(word.size()) + 1);
    m_device.setTextModeEnabled(false);
    return stripped({bytes, static_cast<std::size_t>(std::max<qint64>(peeked, 0))}) == word;
}

bool LineReader::nextByteIs(char character)
{
    for (;;) {
        if (m_next == m_end && !more())
            return false;
        const char next = m_block[m_next];
        if (!m_textMode || next != '\r')
            return next == character;
        ++m_next;
    }
}

bool LineReader::atEnd()
{
    return m_next == m_end && !more();
}
