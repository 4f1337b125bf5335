#ifndef TOOL_OUTPUTFILE_H
#define TOOL_OUTPUTFILE_H

#include <memory>

#include <QString>
#include <QStringList>

class QIODevice;
namespace UtilsNS {
class CheckedFile;
}
struct ToolIo;

// A file that a command writes.
//
// What a regular file held stays until finish(): the new content is written beside it and then
// takes its place. Without finish() it is dropped. The standard output, pipes and devices are
// written directly, and so is a file in a folder that takes no other.
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
    bool isDroppable() const { return m_saved != nullptr; }
    // Reports the first write that failed to io.errors and returns false.
    bool isWritten() const;
    // Flushes and closes the file. Reports a failure to io.errors and returns false.
    bool finish();

private:
    class SavedFile;

    bool openDirectly();

    const ToolIo& m_io;
    QString m_path;
    std::unique_ptr<UtilsNS::CheckedFile> m_direct;
    std::unique_ptr<SavedFile> m_saved;
};

#endif // TOOL_OUTPUTFILE_H
