#include "tool/diffcommand.h"

#include <algorithm>
#include <utility>

#include <QTemporaryFile>

#include "check/filekind.h"
#include "compare/comparefiles.h"
#include "hts/htspackage.h"
#include "tool/diffreport.h"
#include "tool/progress.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"

namespace {

// One of the files. A pipe, which cannot be read twice, is copied to a temporary file.
class DiffInput
{
public:
    DiffInput(const QString& path, const ToolIo& io) : m_path(path), m_io(io), m_file(io) {}

    // Returns the exit code, 0 for success.
    int open();
    QIODevice& device()
    {
        if (m_hasCopy)
            return m_copy;
        return m_file;
    }
    // The same for the whole of the file, given what came of reading it.
    int finish(const Status& status);

private:
    int copy();
    int fail(const QString& problem, int exitCode)
    {
        reportProblem(m_path, problem, m_io);
        return exitCode;
    }

    const QString m_path;
    const ToolIo& m_io;
    InputFile m_file;
    QTemporaryFile m_copy;
    bool m_hasCopy = false;
    QByteArray m_firstBlock;
};

int DiffInput::open()
{
    if (!openInputTogether(m_path, m_file, m_io))
        return ExitCode::kUnusable;
    const int exitCode = m_file.isSequential() ? copy() : 0;
    if (exitCode == 0)
        m_firstBlock = firstBlockOf(device());
    return exitCode;
}

int DiffInput::copy()
{
    constexpr qint64 kBlockSize = qint64(1024) * 1024;
    m_file.setTextModeEnabled(false);
    bool isWritten = m_copy.open();
    for (QByteArray block = m_file.read(kBlockSize); isWritten && !block.isEmpty();
         block = m_file.read(kBlockSize))
        isWritten = m_copy.write(block) == block.size() && m_copy.flush();
    if (!m_file.problem().isEmpty())
        return fail(m_file.problem(), exitCodeOf(m_file));
    if (!isWritten || !m_copy.seek(0))
        return fail(QStringLiteral("it cannot be copied to a temporary file: ") +
                        m_copy.errorString(),
                    ExitCode::kUnusable);
    m_hasCopy = true;
    m_copy.setTextModeEnabled(true);
    return 0;
}

int DiffInput::finish(const Status& status)
{
    if (!m_file.problem().isEmpty())
        return fail(m_file.problem(), exitCodeOf(m_file));
    if (status.ok())
        return 0;
    const QString otherFile =
        status.message == HtsPackage::kBadPreamble ? otherFileText(m_firstBlock) : QString();
    const QLatin1String colon(otherFile.isEmpty() ? "" : ": ");
    return fail(status.message + colon + otherFile, ExitCode::kErrors);
}

void reportTextValues(const QString& path, qint64 count, const ToolIo& io)
{
    if (count > 0)
        reportProblem(path,
                      QStringLiteral("%1 values are not numbers and were compared as 0; htstool "
                                     "check has their lines")
                          .arg(count),
                      io);
}

} // namespace

int runDiff(const ToolOptions& options, const ToolIo& io)
{
    if (io.progress != nullptr)
        io.progress->begin(options.files, 2);
    DiffInput first(options.files.at(0), io);
    DiffInput second(options.files.at(1), io);
    int exitCode = first.open();
    exitCode = std::max(exitCode, second.open());
    if (exitCode != 0)
        return exitCode;
    DiffReport report(options, io.output);
    bool hasBegun = false;
    const auto begin = [&] {
        if (!std::exchange(hasBegun, true))
            report.begin();
    };
    const CompareOutcome outcome = compareHts({&first.device(), &second.device()},
                                              options.tolerance, [&](const Difference& difference) {
                                                  begin();
                                                  report.add(difference);
                                              });
    exitCode = second.finish(outcome.status[1]); // which reports before the first one
    exitCode = std::max(exitCode, first.finish(outcome.status[0]));
    if (exitCode != 0)
        return exitCode;
    begin();
    exitCode = outcome.areEqual() ? ExitCode::kNoWorseThanNotes : ExitCode::kWarnings;
    report.end(outcome, exitCode);
    for (int file = 0; file < options.files.size(); ++file)
        reportTextValues(options.files.at(file), outcome.textValues[static_cast<std::size_t>(file)],
                         io);
    io.errors.write(report.summary(outcome).toUtf8() + '\n');
    return exitCode;
}
