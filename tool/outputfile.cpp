#include "tool/outputfile.h"

#include <cstdio>

#include "tool/progress.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
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

} // namespace

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
    const bool isStream = path == kStandardStream;
    if (isStream)
        UtilsNS::useBinaryMode(stdout);
    m_file.emplace(path);
    const bool isOpen = succeeded(isStream ? m_file->openStream(stdout) : m_file->open());
    if (isOpen && m_io.progress != nullptr && !isDroppable() && isTerminal(m_file->handle()))
        m_io.progress->stop();
    return isOpen;
}

QIODevice& OutputFile::device() const
{
    Q_ASSERT(m_file);
    return m_file->device();
}

bool OutputFile::isDroppable() const
{
    Q_ASSERT(m_file);
    return m_file->isDroppable();
}

QString OutputFile::replacedPath() const
{
    Q_ASSERT(m_file);
    return m_file->replacedPath();
}

bool OutputFile::isWritten() const
{
    return succeeded({m_file->problem()});
}

bool OutputFile::finish()
{
    return succeeded(m_file->finish());
}

// Reports a failure.
bool OutputFile::succeeded(const Status& status) const
{
    if (!status.ok())
        reportProblem(m_path, status.message, m_io);
    return status.ok();
}
