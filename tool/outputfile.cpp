#include "tool/outputfile.h"

#include <cstdio>

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include "tool/progress.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
#include "utils/checkedfile.h"
#include "utils/fileroles.h"
#include "utils/processsetup.h"

namespace {

bool isSameFile(const QString& output, const QString& input)
{
    if (input.isEmpty() || (output == kStandardStream && input == kStandardStream))
        return false;
    if (output == kStandardStream)
        return UtilsNS::isSameFile(input, stdout);
    return input == kStandardStream ? UtilsNS::isSameFile(output, stdin)
                                    : UtilsNS::isSameFile(output, input);
}

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
    return !UtilsNS::isNullDevice(file.filePath()) && (!file.exists() || file.isFile());
}

// The path without symbolic links, of which the toolkit would only follow one. Empty if a link
// leads to no file yet, or to one whose name is not text.
QString replacedPath(const QFileInfo& file)
{
    if (!file.exists())
        return file.isSymLink() ? QString() : file.filePath();
    const QString path = file.canonicalFilePath();
    return UtilsNS::isSameFile(file.filePath(), path) ? path : QString();
}

} // namespace

// The toolkit's file counts a write that stored only a part as a success.
class OutputFile::SavedFile : public QSaveFile
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

OutputFile::OutputFile(const ToolIo& io) : m_io(io) {}

OutputFile::~OutputFile() = default;

bool OutputFile::open(const QString& path, const QStringList& inputs)
{
    m_path = path;
    for (const QString& input : inputs) {
        if (isSameFile(path, input)) {
            reportProblem(path, QStringLiteral("this is an input: it is not overwritten"), m_io);
            return false;
        }
    }
    const QFileInfo file(path);
    // A path with a problem is opened directly to report it.
    if (path == kStandardStream || !isReplaceable(file) ||
        !UtilsNS::problemOfPath(path, QIODevice::WriteOnly).isEmpty())
        return openDirectly();
    const QString target = replacedPath(file);
    if (target.isEmpty())
        return openDirectly();
    m_saved = std::make_unique<SavedFile>(target);
    if (m_saved->open(QIODevice::WriteOnly))
        return true;
    const QString problem = m_saved->errorString();
    m_saved.reset();
    // A file that does not exist is opened once more for the system's own reason.
    if (!file.exists() || !QFileInfo(file.absolutePath()).isWritable())
        return openDirectly();
    reportProblem(path, problem, m_io);
    return false;
}

bool OutputFile::openDirectly()
{
    m_direct = std::make_unique<UtilsNS::CheckedFile>(m_path);
    if (m_path == kStandardStream)
        UtilsNS::useBinaryMode(stdout);
    const bool isOpen = m_path == kStandardStream
                            ? m_direct->openStream(stdout, QIODevice::WriteOnly)
                            : m_direct->open(QIODevice::WriteOnly);
    if (!isOpen)
        reportProblem(m_path, m_direct->errorString(), m_io);
    else if (m_io.progress != nullptr && isTerminal(m_direct->handle()))
        m_io.progress->stop();
    return isOpen;
}

QIODevice& OutputFile::device() const
{
    Q_ASSERT(m_direct != nullptr || m_saved != nullptr);
    if (m_saved != nullptr)
        return *m_saved;
    return *m_direct;
}

bool OutputFile::isWritten() const
{
    const QString problem = m_saved != nullptr ? m_saved->problem() : m_direct->problem();
    if (!problem.isEmpty())
        reportProblem(m_path, problem, m_io);
    return problem.isEmpty();
}

bool OutputFile::finish()
{
    if (m_saved == nullptr)
        return finishOutput(m_path, *m_direct, m_io);
    if (!isWritten())
        return false;
    const bool isInPlace = m_saved->commit();
    if (!isInPlace)
        reportProblem(m_path, m_saved->errorString(), m_io);
    return isInPlace;
}
