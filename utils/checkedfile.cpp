#include "utils/checkedfile.h"

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
    return checkedRead([&] { return QFile::readData(data, maxSize); });
}

qint64 CheckedFile::readLineData(char* data, qint64 maxSize)
{
    return checkedRead([&] { return QFile::readLineData(data, maxSize); });
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

template<typename Read>
qint64 CheckedFile::checkedRead(Read read)
{
    if (!m_problem.isEmpty())
        return -1;
    const qint64 count = read();
    noteError();
    return count;
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
