#include "utils/checkedfile.h"

#include <algorithm>

namespace UtilsNS {

QString CheckedFile::finish()
{
    flushAll();
    close();
    noteError();
    return m_problem;
}

qint64 CheckedFile::readData(char* data, qint64 maxSize)
{
    if (!m_problem.isEmpty())
        return -1;
    qint64 total = 0;
    qint64 count = 0;
    // A read that fails behind some bytes passes for a short one: only the next one tells. Of a
    // pipe it would wait for more than may be needed.
    do {
        count = QFile::readData(data + total, maxSize - total);
        noteError();
        total += std::max<qint64>(count, 0);
    } while (count > 0 && total < maxSize && !isSequential());
    return total > 0 ? total : count;
}

qint64 CheckedFile::writeData(const char* data, qint64 size)
{
    qint64 written = 0;
    while (written < size) {
        const qint64 count = QFile::writeData(data + written, size - written);
        if (count <= 0) {
            noteError();
            return -1;
        }
        written += count;
    }
    // A text stream flushes the file behind each of its writes, and keeps to itself that it failed.
    return flushAll() ? written : -1;
}

// What an incomplete write leaves is tried once more, which tells why it was incomplete.
bool CheckedFile::flushAll()
{
    const bool isFlushed = flush() || flush();
    if (!isFlushed)
        noteError();
    return isFlushed;
}

void CheckedFile::noteError()
{
    if (m_problem.isEmpty() && error() != NoError)
        m_problem = errorString();
}

Status conversionOutcome(const Status& status, const CheckedFile& input, CheckedFile& output)
{
    if (!input.problem().isEmpty())
        return failure(
            QStringLiteral("Problem reading the input hts file: %1").arg(input.problem()));
    if (!status.ok())
        return status;
    const QString problem = output.finish();
    return problem.isEmpty() ? Status() : failure(problem);
}

} // namespace UtilsNS
