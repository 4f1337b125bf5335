#ifndef UTILS_REPLACEDFILE_H
#define UTILS_REPLACEDFILE_H

#include <cstdio>
#include <memory>

#include <QString>

#include "hts/status.h"

class QIODevice;

namespace UtilsNS {

class CheckedFile;

// A file that is written as a whole.
//
// What a regular file held stays until finish(): the new content is written beside it and then
// takes its place. Without finish() it is dropped. Streams, pipes and devices are written directly,
// and so is a file in a folder that takes no other.
//
//     ReplacedFile file(path);
//     Status status = file.open();
//     if (status.ok()) {
//         file.device().write(text);
//         status = file.finish();
//     }
class ReplacedFile
{
public:
    explicit ReplacedFile(const QString& path);
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;

    // One of them is called, once. A standard stream stays open.
    [[nodiscard]] Status open();
    [[nodiscard]] Status openStream(std::FILE* stream);

    // To be written to after that.
    QIODevice& device() const;
    // Whether what is written is dropped without finish().
    bool isDroppable() const { return m_saved != nullptr; }
    // The file that finish() replaces, where a symbolic link leads; empty if it is written
    // directly.
    QString replacedPath() const;
    // Of a file that is written directly, else -1.
    int handle() const;
    // The error text of the first write that failed; empty if none has failed.
    QString problem() const;
    // Flushes and closes the file. Fails with problem() if there is one.
    [[nodiscard]] Status finish();

private:
    class SavedFile;

    Status openDirectly();

    const QString m_path;
    std::unique_ptr<CheckedFile> m_direct;
    std::unique_ptr<SavedFile> m_saved;
};

} // namespace UtilsNS

#endif // UTILS_REPLACEDFILE_H
