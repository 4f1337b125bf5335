#ifndef TOOL_OUTPUTFILE_H
#define TOOL_OUTPUTFILE_H

#include <optional>

#include <QString>
#include <QStringList>

#include "utils/replacedfile.h"

class QIODevice;
struct ToolIo;

// A file that a command writes, or the standard output, and reports: see ReplacedFile for when
// its content is replaced.
class OutputFile
{
public:
    explicit OutputFile(const ToolIo& io);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Opens `path`, or the standard output for "-", for writing; fails if it is one of `inputs`.
    // Reports a failure to io.errors and returns false. Call it once.
    bool open(const QString& path, const QStringList& inputs);
    // To be written to after open().
    QIODevice& device() const;
    // Whether what is written is dropped without finish().
    bool isDroppable() const;
    // See ReplacedFile.
    QString replacedPath() const;
    // Reports the first write that failed to io.errors and returns false.
    bool isWritten() const;
    // Flushes and closes the file. Reports a failure to io.errors and returns false.
    bool finish();

private:
    bool succeeded(const Status& status) const;

    const ToolIo& m_io;
    QString m_path;
    std::optional<UtilsNS::ReplacedFile> m_file;
};

#endif // TOOL_OUTPUTFILE_H
