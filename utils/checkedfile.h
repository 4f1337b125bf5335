#ifndef UTILS_CHECKEDFILE_H
#define UTILS_CHECKEDFILE_H

#include <QFile>
#include <QString>

#include "hts/status.h"

namespace UtilsNS {

// A file that remembers its first failed read or write. A QFile forgets an error at the next call,
// and then reads on behind the gap; and it takes it for a success when a disk that fills up stores
// a part of what it is given, after which a text stream drops the rest without a word.
class CheckedFile : public QFile
{
public:
    using QFile::QFile;

    // The error text of the first read or write that failed; empty if all went well so far. After
    // it every read fails.
    QString problem() const { return m_problem; }
    // Flushes and closes the file. Returns the error text if not all that was written reached the
    // disk, else an empty text.
    QString finish();

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    bool flushAll();
    void noteError();

    QString m_problem;
};

// What a conversion came to that ended with `status`: a file that couldn't be read or written is
// the reason that counts, whatever the engine made of it. Finishes `output` after a success.
Status conversionOutcome(const Status& status, const CheckedFile& input, CheckedFile& output);

} // namespace UtilsNS

#endif // UTILS_CHECKEDFILE_H
