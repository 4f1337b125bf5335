#include "exchange/csvreader.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include <QIODevice>
#include <QtAlgorithms>

#include "hts/eightdigits.h"

namespace {

constexpr std::size_t kBlockSize = std::size_t(256) * 1024;

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

// Not zero if one of the characters is zero; the lowest bit that is set belongs to the first.
std::uint64_t zeros(std::uint64_t characters)
{
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    return (characters - kOnes) & ~characters & (kOnes << 7);
}

// The first separator or line feed, or `end`.
const char* fieldEnd(const char* next, const char* end, char separator)
{
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    const std::uint64_t separators = kOnes * static_cast<unsigned char>(separator);
    while (end - next >= 8) {
        const std::uint64_t characters = eightCharacters(next);
        const quint64 ends = zeros(characters ^ separators) | zeros(characters ^ (kOnes * '\n'));
        if (ends != 0)
            return next + qCountTrailingZeroBits(ends) / 8;
        next += 8;
    }
    while (next != end && *next != separator && *next != '\n')
        ++next;
    return next;
}

// The same where a tab separates like a blank.
const char* blankFieldEnd(const char* next, const char* end)
{
    return std::find_if(next, end, [](char c) { return isBlank(c) || c == '\n'; });
}

const char* skipBlanks(const char* first, const char* last)
{
    return std::find_if_not(first, last, isBlank);
}

} // namespace

CsvReader::CsvReader(QIODevice& device, Form form)
    : m_device(device), m_form(std::move(form)), m_block(kBlockSize)
{
    constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
    while (m_end < kByteOrderMark.size() && fetch()) {
    }
    if (std::string_view(m_block.data(), m_end).substr(0, kByteOrderMark.size()) == kByteOrderMark)
        m_next = kByteOrderMark.size();
}

// Reads more bytes after those that are there, which it may move. Returns false at the end.
bool CsvReader::fetch()
{
    if (m_isLastBlock)
        return false;
    std::copy(m_block.begin() + static_cast<std::ptrdiff_t>(m_next),
              m_block.begin() + static_cast<std::ptrdiff_t>(m_end), m_block.begin());
    m_end -= m_next;
    m_next = 0;
    if (m_end == m_block.size())
        m_block.resize(2 * m_block.size());
    const qint64 count =
        m_device.read(m_block.data() + m_end, static_cast<qint64>(m_block.size() - m_end));
    m_isLastBlock = count <= 0;
    m_end += static_cast<std::size_t>(std::max<qint64>(count, 0));
    return !m_isLastBlock;
}

// The line feed that ends the line at hand, or the end of the input.
const char* CsvReader::lineEnd()
{
    std::size_t size = 0; // of what was searched
    do {
        const char* first = m_block.data() + m_next;
        const void* found = std::memchr(first + size, '\n', m_end - m_next - size);
        if (found != nullptr)
            return static_cast<const char*>(found);
        size = m_end - m_next;
    } while (size <= kMaxRowSize && fetch());
    return m_block.data() + m_end;
}

// Skips comments and empty lines. Returns false at the end.
bool CsvReader::skipLines()
{
    while (true) {
        const std::size_t longest = std::max<std::size_t>(m_form.comment.size(), 1);
        while (m_end - m_next < longest && fetch()) {
        }
        if (m_next == m_end)
            return false;
        const char* first = m_block.data() + m_next;
        const std::string_view ahead(first, m_end - m_next);
        const bool isComment =
            !m_form.comment.empty() && ahead.substr(0, m_form.comment.size()) == m_form.comment;
        // Most rows begin with something else, and need no search for their end.
        if (!isComment && !isBlank(*first) && *first != '\r' && *first != '\n')
            return true;
        const char* end = lineEnd();
        first = m_block.data() + m_next; // the block may have moved
        const bool isEmpty =
            std::all_of(first, end, [](char c) { return isBlank(c) || c == '\r'; });
        // A row of empty fields that tabs separate is one.
        if (!isComment && (!isEmpty || (m_form.separator == '\t' &&
                                        std::memchr(first, '\t', std::size_t(end - first)))))
            return true;
        m_commentLines += isComment ? 1 : 0;
        ++m_nextLine;
        const bool hasLineFeed = end != m_block.data() + m_end;
        m_next = static_cast<std::size_t>(end - m_block.data()) + (hasLineFeed ? 1 : 0);
    }
}

bool CsvReader::next()
{
    if (!m_status.ok() || !skipLines()) {
        m_fields.clear();
        return false;
    }
    m_lineNumber = m_nextLine;
    while (!readRow()) {
        if (!m_status.ok())
            return false;
        if (m_end - m_next > kMaxRowSize)
            return fail("line %1, column %2: a row is longer than 64 MiB; is a quote missing?");
        fetch(); // at the end the row is read as what is there
    }
    if (!m_doubled.empty())
        undoubleQuotes();
    return true;
}

// Reads a row that is in the block as a whole. Returns false if it is not, or after a failure.
bool CsvReader::readRow()
{
    m_fields.clear();
    m_doubled.clear();
    const char* next = m_block.data() + m_next;
    const char* const end = m_block.data() + m_end;
    m_nextLine = m_lineNumber;
    next = takeStart(next, end);
    End ended = End::Field;
    while (ended == End::Field)
        ended = readField(next, end);
    if (ended == End::BadQuote)
        return fail("line %1, column %2: text after the quote that ends the field; a quote in a "
                    "field must be doubled");
    if (ended == End::Missing) {
        if (m_isLastBlock)
            return fail(
                "line %1, column %2: the quote that begins the field has none that ends it");
        return false;
    }
    ++m_nextLine;
    if (m_repeatedCount > 0 && !m_isRepeated)
        keepStart(m_block.data() + m_next);
    m_next = static_cast<std::size_t>(next - m_block.data());
    return true;
}

// Takes the fields that a row begins with from the row before, if they are the same. Returns where
// to read on.
const char* CsvReader::takeStart(const char* next, const char* end)
{
    const std::size_t size = m_start.size();
    m_isRepeated = size > 0 && static_cast<std::size_t>(end - next) > size &&
                   std::memcmp(next, m_start.data(), size) == 0;
    if (!m_isRepeated)
        return next;
    for (const Part& part : m_startFields)
        m_fields.emplace_back(next + part.at, part.size);
    return next + size;
}

// Keeps the fields that the row at `first` begins with. Quotes may be changed later, and blanks
// between fields are not theirs.
void CsvReader::keepStart(const char* first)
{
    m_start.clear();
    m_startFields.clear();
    if (m_fields.size() <= m_repeatedCount || m_form.separator == ' ')
        return;
    const std::string_view last = m_fields[m_repeatedCount - 1];
    m_start.assign(first, last.data() + last.size() + 1);
    if (m_start.find('"') != std::string::npos)
        m_start.clear();
    for (std::size_t i = 0; i < m_repeatedCount; ++i)
        m_startFields.push_back(
            {static_cast<std::size_t>(m_fields[i].data() - first), m_fields[i].size()});
}

// Reads the field at `next`, and moves `next` after the separator or line end.
CsvReader::End CsvReader::readField(const char*& next, const char* end)
{
    const bool isBlankSeparated = m_form.separator == ' ';
    if (isBlankSeparated)
        next = skipBlanks(next, end);
    if (next != end && *next == '"')
        return readQuoted(next, end);
    const char* const first = next;
    next = isBlankSeparated ? blankFieldEnd(next, end) : fieldEnd(next, end, m_form.separator);
    if (next == end && !m_isLastBlock)
        return End::Missing;
    addField(first, next);
    if (isBlankSeparated) {
        next = skipBlanks(next, end);
        if (next != end && *next == '\r')
            ++next;
        if (next == end && !m_isLastBlock)
            return End::Missing;
        if (next != end && *next != '\n')
            return End::Field;
    }
    if (next == end)
        return End::Row;
    return *next++ == '\n' ? End::Row : End::Field;
}

CsvReader::End CsvReader::readQuoted(const char*& next, const char* end)
{
    const char* const first = ++next;
    bool hasDoubled = false;
    while (true) {
        const void* found = std::memchr(next, '"', static_cast<std::size_t>(end - next));
        if (found == nullptr) {
            m_fields.emplace_back(); // counts for the message
            return End::Missing;
        }
        next = static_cast<const char*>(found) + 1;
        if (next == end || *next != '"')
            break;
        hasDoubled = true;
        ++next;
    }
    // Whether a quote or a line end follows is not known at the end of a block.
    if (end - next < 2 && !m_isLastBlock)
        return End::Missing;
    const char* const last = next - 1;
    m_nextLine += std::count(first, last, '\n');
    if (hasDoubled)
        m_doubled.push_back(m_fields.size());
    m_fields.emplace_back(first, static_cast<std::size_t>(last - first));
    if (m_form.separator == ' ')
        next = skipBlanks(next, end);
    if (next != end && *next == '\r' && (next + 1 == end || next[1] == '\n'))
        ++next;
    if (next == end)
        return m_isLastBlock ? End::Row : End::Missing;
    if (*next == '\n') {
        ++next;
        return End::Row;
    }
    const bool isSeparated =
        m_form.separator == ' ' ? isBlank(next[-1]) : *next++ == m_form.separator;
    return isSeparated ? End::Field : End::BadQuote;
}

// Without the carriage return of a line end.
void CsvReader::addField(const char* first, const char* end)
{
    const char* last = end;
    const bool isAtLineEnd = end == m_block.data() + m_end || *end == '\n';
    if (isAtLineEnd && last != first && last[-1] == '\r')
        --last;
    m_fields.emplace_back(first, static_cast<std::size_t>(last - first));
}

void CsvReader::undoubleQuotes()
{
    for (const std::size_t index : m_doubled) {
        std::string_view& field = m_fields[index];
        char* const first = m_block.data() + (field.data() - m_block.data());
        char* out = first;
        for (std::size_t i = 0; i < field.size(); ++i) {
            *out++ = field[i];
            if (field[i] == '"')
                ++i;
        }
        field = {first, static_cast<std::size_t>(out - first)};
    }
}

// Sets the failure in the last of the fields.
bool CsvReader::fail(const char* pattern)
{
    const auto column = static_cast<int>(std::max<std::size_t>(m_fields.size(), 1));
    m_status = failure(
        QString::fromLatin1(pattern).arg(QString::number(m_lineNumber), QString::number(column)));
    m_fields.clear();
    return false;
}
