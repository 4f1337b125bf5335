#include "utils/checkedfile.h"

#include <algorithm>
#include <string_view>

namespace UtilsNS {

bool CheckedFile::open(OpenMode mode)
{
    m_stream = nullptr;
    const QString problem = problemOfPath(fileName(), mode);
    if (problem.isEmpty())
        return openPath(mode);
    setErrorString(problem);
    return false;
}

bool CheckedFile::openStream(std::FILE* stream, OpenMode mode)
{
    m_stream = stream;
    return open(stream, mode);
}

Status CheckedFile::finish()
{
    Q_ASSERT(isOpen());
    flushAll();
    close();
    noteError();
    return {m_problem};
}

qint64 CheckedFile::readData(char* data, qint64 maxSize)
{
    if (!m_problem.isEmpty())
        return -1;
    const qint64 count = isSequential() ? readFromPipe(data, maxSize) : readFromFile(data, maxSize);
    return noteLines(data, count) ? count : -1;
}

// Returns false after a line that is too long.
bool CheckedFile::noteLines(const char* data, qint64 size)
{
    if (!m_hasLimit || size <= 0)
        return true;
    const std::string_view bytes(data, static_cast<std::size_t>(size));
    const std::size_t first = std::min(bytes.find('\n'), bytes.size());
    m_hasLongLine = m_lineSize + static_cast<qint64>(first) > kMaxLineSize;
    if (m_hasLongLine)
        m_problem = QStringLiteral("a line is longer than 64 MiB");
    const bool hasEnd = first < bytes.size();
    m_lineSize = hasEnd ? size - 1 - static_cast<qint64>(bytes.rfind('\n')) : m_lineSize + size;
    return !m_hasLongLine;
}

// A read that fails after some bytes looks like a short one; only the next one shows the failure.
qint64 CheckedFile::readFromFile(char* data, qint64 maxSize)
{
    qint64 total = 0;
    qint64 count = 0;
    do {
        count = QFile::readData(data + total, maxSize - total);
        noteError();
        total += std::max<qint64>(count, 0);
    } while (count > 0 && total < maxSize);
    return total > 0 ? total : count;
}

qint64 CheckedFile::writeData(const char* data, qint64 size)
{
    qint64 written = 0;
    while (written < size) {
        const qint64 count = writeSome(data + written, size - written);
        Q_ASSERT(count <= size - written);
        if (count <= 0) {
            noteFailure();
            return -1;
        }
        written += count;
    }
    // A text stream flushes the file after each of its writes, and ignores a failure.
    return flushAll() ? written : -1;
}

// After an incomplete write the rest is written once more, which shows why the first was
// incomplete.
bool CheckedFile::flushAll()
{
    const bool isFlushed = flush() || flush();
    if (!isFlushed)
        noteFailure();
    return isFlushed;
}

void CheckedFile::noteError()
{
    if (error() != NoError)
        noteFailure();
}

// If the system reports no error, the text is "Unknown error".
void CheckedFile::noteFailure()
{
    if (m_problem.isEmpty())
        m_problem = errorString();
}

} // namespace UtilsNS
