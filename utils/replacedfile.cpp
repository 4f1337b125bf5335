#include "utils/replacedfile.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include "utils/checkedfile.h"
#include "utils/fileroles.h"

namespace UtilsNS {

namespace {

// Whether another file may take the place of the file. Not in /dev/fd and /proc/self/fd, where a
// regular file is one that somebody else has opened and goes on writing to. /dev/shm has files as
// any folder.
bool isReplaceable(const QFileInfo& file)
{
    const QString path = QDir::cleanPath(file.absoluteFilePath());
    const auto isIn = [&path](const char* folder) {
        return path.startsWith(QLatin1String(folder));
    };
    if (isIn("/proc/") || (isIn("/dev/") && !isIn("/dev/shm/")))
        return false;
    return !isNullDevice(file.filePath()) && (!file.exists() || file.isFile());
}

// The path without symbolic links, of which the toolkit would only follow one. Empty if a link
// leads to no file yet, or to one whose name is not text.
QString pathWithoutLinks(const QFileInfo& file)
{
    if (!file.exists())
        return file.isSymLink() ? QString() : file.filePath();
    const QString path = file.canonicalFilePath();
    return isSameFile(file.filePath(), path) ? path : QString();
}

} // namespace

// The toolkit's file counts a write that stored only a part as a success.
class ReplacedFile::SavedFile : public QSaveFile
{
public:
    using QSaveFile::QSaveFile;

    QString problem() const { return m_problem; }

protected:
    qint64 writeData(const char* data, qint64 size) override
    {
        qint64 written = 0;
        qint64 count = 0;
        do {
            count = QSaveFile::writeData(data + written, size - written);
            written += count;
        } while (count > 0 && written < size);
        // After an incomplete write the rest is written once more, which shows the reason.
        const bool isWhole = written == size && (flush() || flush());
        if (!isWhole && m_problem.isEmpty())
            m_problem = errorString();
        return isWhole ? size : -1;
    }

private:
    QString m_problem;
};

ReplacedFile::ReplacedFile(const QString& path) : m_path(path) {}

ReplacedFile::~ReplacedFile() = default;

Status ReplacedFile::open()
{
    const QFileInfo file(m_path);
    // A path with a problem is opened directly to report it.
    if (!isReplaceable(file) || !problemOfPath(m_path, QIODevice::WriteOnly).isEmpty())
        return openDirectly();
    const QString target = pathWithoutLinks(file);
    if (target.isEmpty())
        return openDirectly();
    m_saved = std::make_unique<SavedFile>(target);
    if (m_saved->open(QIODevice::WriteOnly))
        return {};
    const QString problem = m_saved->errorString();
    m_saved.reset();
    // A file that does not exist is opened once more for the system's own reason.
    if (!file.exists() || !QFileInfo(file.absolutePath()).isWritable())
        return openDirectly();
    return failure(problem);
}

Status ReplacedFile::openDirectly()
{
    m_direct = std::make_unique<CheckedFile>(m_path);
    return m_direct->open(QIODevice::WriteOnly) ? Status() : failure(m_direct->errorString());
}

Status ReplacedFile::openStream(std::FILE* stream)
{
    m_direct = std::make_unique<CheckedFile>(m_path);
    return m_direct->openStream(stream, QIODevice::WriteOnly) ? Status()
                                                              : failure(m_direct->errorString());
}

QIODevice& ReplacedFile::device() const
{
    Q_ASSERT(m_direct != nullptr || m_saved != nullptr);
    if (m_saved != nullptr)
        return *m_saved;
    return *m_direct;
}

QString ReplacedFile::replacedPath() const
{
    return m_saved == nullptr ? QString() : m_saved->fileName();
}

int ReplacedFile::handle() const
{
    return m_direct == nullptr ? -1 : m_direct->handle();
}

QString ReplacedFile::problem() const
{
    return m_saved != nullptr ? m_saved->problem() : m_direct->problem();
}

Status ReplacedFile::finish()
{
    if (m_saved == nullptr)
        return m_direct->finish();
    if (!problem().isEmpty())
        return failure(problem());
    return m_saved->commit() ? Status() : failure(m_saved->errorString());
}

} // namespace UtilsNS
