#ifndef UTILS_CHECKEDFILE_H
#define UTILS_CHECKEDFILE_H

#include <cstdio>

#include <QFile>
#include <QString>

#include "hts/status.h"

namespace UtilsNS {

// Why no file can be opened by this path; empty if one can.
// On Unix, if the text does not come back unchanged from the bytes that it becomes in the encoding
// of the locale: files with other names would become the same one. On Windows, for writing, if the
// name ends with a blank or a dot: the system drops them, and a file with another name is written.
QString problemOfPath(const QString& path, QIODevice::OpenMode mode);

// Whether the path is NUL, the null device of Windows. The toolkit would take it for a file.
bool isNullDevice(const QString& path);

// A file that remembers its first failed read or write. A QFile forgets an error at the next call,
// and then continues to read after the gap. And when a disk that fills up stores only a part of
// what is written, a QFile reports success, and a text stream silently drops the rest.
//
// Data count as written once the system has accepted them. There is no fsync: they may be lost if
// the computer loses its power right after.
//
// A read from a pipe returns what is available, and waits only while there is nothing; a QFile
// waits for all the bytes that were asked for.
class CheckedFile : public QFile
{
public:
    using QFile::QFile;

    using QFile::open;
    // Fails also if the path has a problem, see problemOfPath().
    bool open(OpenMode mode) override;
    // Opens a standard stream, which stays open. Where it is a console of Windows, what is written
    // is UTF-8, with whole characters in each write, and shown as such.
    bool openStream(std::FILE* stream, OpenMode mode);

    // The error text of the first read or write that failed; empty if none has failed. After a
    // failure every read fails.
    QString problem() const { return m_problem; }
    // From now on a read fails when a line has more than kMaxLineSize bytes. Whoever reads a file
    // without line ends as lines would use up all memory.
    void limitLines() { m_hasLimit = true; }
    static constexpr qint64 kMaxLineSize = qint64(64) * 1024 * 1024;
    // Whether problem() is such a line.
    bool hasLongLine() const { return m_hasLongLine; }
    // Flushes and closes the file, which is open. Fails with problem() if there is one: the file
    // was then not completely written or read.
    Status finish();

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;
    // Writes some of the first `size` bytes, at least one, and returns how many; 0 or less is a
    // failure. Tests override it for faults that no file system makes on demand.
    virtual qint64 writeSome(const char* data, qint64 size);

private:
    qint64 readFromFile(char* data, qint64 maxSize);
    qint64 readFromPipe(char* data, qint64 maxSize);
    bool openPath(OpenMode mode);
    bool flushAll();
    bool noteLines(const char* data, qint64 size);
    void noteError();
    void noteFailure();

    std::FILE* m_stream = nullptr; // null if it was opened by its path
    QString m_problem;
    bool m_hasLimit = false;
    qint64 m_lineSize = 0; // of the last line, as far as it was read
    bool m_hasLongLine = false;
};

} // namespace UtilsNS

#endif // UTILS_CHECKEDFILE_H
