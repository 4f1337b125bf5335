#ifndef UTILS_CHECKEDFILE_H
#define UTILS_CHECKEDFILE_H

#include <QFile>
#include <QString>

#include "hts/status.h"

namespace UtilsNS {

// A file that remembers its first failed read or write. A QFile forgets an error at the next call,
// and then reads on after the gap; and it takes it for a success when a disk that fills up stores
// a part of what it is given, after which a text stream drops the rest without a word.
//
// What is written counts as written once the system has taken it. There is no fsync: a computer
// that loses its power right after may lose it.
//
// Of a pipe a read gives what is there, and waits only while that is nothing; a QFile waits until
// all that was asked for has come.
class CheckedFile : public QFile
{
public:
    using QFile::QFile;

    // The error text of the first read or write that failed; empty if all went well so far. After
    // it every read fails.
    QString problem() const { return m_problem; }
    // Flushes and closes the file, which is open. Fails with problem() if there is any: then the
    // system has not taken all that was written, or not given all that was to be read.
    Status finish();

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;
    // Writes the first of `size` bytes, 1 or more, and returns how many; 0 or less is a failure.
    // A place for tests to make faults that no file system makes at will.
    virtual qint64 writeSome(const char* data, qint64 size);

private:
    qint64 readFromFile(char* data, qint64 maxSize);
    qint64 readFromPipe(char* data, qint64 maxSize);
    bool flushAll();
    void noteError();
    void noteFailure();

    QString m_problem;
};

} // namespace UtilsNS

#endif // UTILS_CHECKEDFILE_H
