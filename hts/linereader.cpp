#include "hts/linereader.h"

#include <algorithm>
#include <cstring>
#include <exception>

#include <QIODevice>

#include "hts/linetext.h"
#include "hts/numbertext.h"

namespace {

// Small enough to stay in the second-level cache, large enough to make the calls free.
constexpr std::size_t kBlockSize = std::size_t(64) * 1024;

const char* findLineEnd(const char* first, const char* last)
{
    return static_cast<const char*>(
        std::memchr(first, '\n', static_cast<std::size_t>(last - first)));
}

// Reads up to `maxSize` bytes, with one call. Bytes that were returned to a sequential device are
// read without any others: for more than those the device would wait.
qint64 readAvailable(QIODevice& device, char* data, std::size_t maxSize)
{
    auto size = static_cast<qint64>(maxSize);
    if (device.isSequential()) {
        // QIODevice's own function, not an override: the number of bytes in the toolkit's buffer
        // only.
        const qint64 returned = device.QIODevice::bytesAvailable();
        if (returned > 0)
            size = std::min(size, returned);
    }
    return device.read(data, size);
}

// Makes `bytes`, which were read last, the next to be read again.
void returnToDevice(QIODevice& device, std::string_view bytes)
{
    if (bytes.empty())
        return;
    if (!device.isSequential()) {
        device.seek(device.pos() - static_cast<qint64>(bytes.size()));
        return;
    }
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte)
        device.ungetChar(*byte);
}

} // namespace

LineReader::LineReader(QIODevice& device)
    : m_device(device), m_isTextMode(device.isOpen() && device.isTextModeEnabled()),
      m_block(kBlockSize)
{
    if (m_isTextMode)
        m_device.setTextModeEnabled(false);
}

LineReader::~LineReader()
{
    // Returning bytes to a pipe takes memory, which may be what has run out.
    if (std::uncaught_exceptions() == 0)
        returnUnused();
    if (m_isTextMode)
        m_device.setTextModeEnabled(true);
}

void LineReader::returnUnused()
{
    returnToDevice(m_device, {m_block.data() + m_next, available()});
    m_next = 0;
    m_end = 0;
}

// Makes more bytes available after the unread ones. Returns false at the end of the input.
bool LineReader::fetch()
{
    if (m_next > 0) {
        std::memmove(m_block.data(), m_block.data() + m_next, available());
        m_end -= m_next;
        m_next = 0;
    }
    if (m_end > m_block.size() / 2)
        m_block.resize(m_block.size() * 2); // a line longer than the block
    const qint64 count = readAvailable(m_device, m_block.data() + m_end, m_block.size() - m_end);
    m_end += static_cast<std::size_t>(std::max<qint64>(count, 0));
    return count > 0;
}

std::string_view LineReader::line()
{
    ++m_lineNumber;
    std::size_t searched = 0;
    for (;;) {
        const char* first = m_block.data() + m_next;
        const char* last = m_block.data() + m_end;
        if (const char* lineEnd = findLineEnd(first + searched, last)) {
            m_next += static_cast<std::size_t>(lineEnd + 1 - first);
            return stripped({first, static_cast<std::size_t>(lineEnd - first)});
        }
        searched = available();
        if (!fetch()) {
            m_linesPastEnd += m_end == 0 ? 1 : 0;
            m_next = m_end;
            return stripped({m_block.data(), m_end});
        }
    }
}

void LineReader::readNumbers(std::vector<double>& numbers, OddLineObserver* observer)
{
    double* next = numbers.data();
    const double* const end = next + numbers.size();
    for (;;) {
        const double* const firstPlain = next;
        const char* const lines = m_block.data() + m_next;
        m_next += static_cast<std::size_t>(
            readNumberLines(lines, m_block.data() + m_end, next, end) - lines);
        m_lineNumber += next - firstPlain;
        if (next == end)
            return;
        // Not a plain number, or only a part of the line is in the block.
        const std::string_view odd = line();
        *next = lineToNumber(odd);
        if (observer != nullptr)
            observer->oddValueLine(static_cast<std::size_t>(next - numbers.data()), m_lineNumber,
                                   odd);
        ++next;
    }
}

void LineReader::skipLines(int count)
{
    for (int i = 0; i < count; ++i)
        line();
}

bool LineReader::nextIs(std::string_view word)
{
    Q_ASSERT(word.size() <= kMaxWordLength);
    const std::size_t length = word.size() + 1;
    while (available() < length && fetch()) {
    }
    const std::string_view next(m_block.data() + m_next, std::min(available(), length));
    // In text mode some kinds of device drop every "\r" in what they peek at, others none, so the
    // device has to decide; only the "\r\n" at the end of a line is the same for all.
    const std::size_t carriageReturn = next.find('\r');
    if (m_isTextMode && carriageReturn != std::string_view::npos) {
        const bool endsLine = carriageReturn + 1 == length && (available() > length || fetch()) &&
                              m_block[m_next + length] == '\n';
        if (!endsLine)
            return nextIsByDevice(word);
        return std::string_view(m_block.data() + m_next, word.size()) == word;
    }
    return stripped(next) == word;
}

bool LineReader::nextIsByDevice(std::string_view word)
{
    returnUnused();
    m_device.setTextModeEnabled(true);
    char bytes[kMaxWordLength + 1];
    const qint64 peeked = m_device.peek(bytes, static_cast<qint64>(word.size()) + 1);
    m_device.setTextModeEnabled(false);
    return stripped({bytes, static_cast<std::size_t>(std::max<qint64>(peeked, 0))}) == word;
}

bool LineReader::nextByteIs(char character)
{
    for (;;) {
        if (m_next == m_end && !fetch())
            return false;
        const char next = m_block[m_next];
        if (!m_isTextMode || next != '\r')
            return next == character;
        ++m_next;
    }
}

bool LineReader::atEnd()
{
    return m_next == m_end && !fetch();
}

LinePlace LineReader::place() const
{
    return {m_device.pos() - static_cast<qint64>(available()), m_lineNumber};
}

void LineReader::goTo(const LinePlace& place)
{
    Q_ASSERT(!m_device.isSequential());
    const qint64 blockEnd = m_device.pos();
    const qint64 blockBegin = blockEnd - static_cast<qint64>(m_end);
    m_lineNumber = place.lineNumber;
    if (blockBegin <= place.position && place.position <= blockEnd) {
        m_next = static_cast<std::size_t>(place.position - blockBegin);
        return;
    }
    m_next = 0;
    m_end = 0;
    m_device.seek(place.position);
}
