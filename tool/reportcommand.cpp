#include "tool/reportcommand.h"

#include <new>

#include <QDir>
#include <QFileInfo>

#include "check/reportlines.h"
#include "report/filereport.h"
#include "report/hashedfile.h"
#include "tool/outputfile.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"

namespace {

using HashedInput = HashedFile<InputFile>;

PageFile pageFile(const char* role, const QString& path, HashedInput& input)
{
    const QFileInfo file(path);
    const bool isFile = path != kStandardStream && file.isFile();
    return {QString::fromLatin1(role), path, input.byteCount(), input.takeSha256(),
            isFile ? file.lastModified() : QDateTime()};
}

// One page: the walk over the input, and that over the result if there is one.
class ReportCommand
{
public:
    ReportCommand(const ToolOptions& options, const ToolIo& io);

    int run();

private:
    const QString& path() const { return m_options.files.first(); }
    int makePage(HashedInput& input, OutputFile& output);
    bool readToEnd(const QString& path, HashedInput& input);
    bool readResult(FileReport& report);

    const ToolOptions& m_options;
    const ToolIo& m_io;
    ReportRequest m_request;
    std::vector<PageFile> m_files;
    int m_exitCode = ExitCode::kUnusable; // of an input that cannot be read
};

ReportCommand::ReportCommand(const ToolOptions& options, const ToolIo& io)
    : m_options(options), m_io(io)
{
    m_request.controlPath = options.controlPath;
    m_request.endMonth = options.endMonth;
    m_request.maxMissing = options.maxMissing;
    m_request.sentinels = options.sentinels;
    m_request.shown = options.shownSlots;
    m_request.program = QStringLiteral("htstool " TOOL_VERSION);
    m_request.written = timeOfWriting();
}

int ReportCommand::run()
{
    HashedInput input(m_io);
    OutputFile output(m_io);
    QStringList inputs{path(), QDir::current().absoluteFilePath(m_options.controlPath)};
    if (!m_options.resultPath.isEmpty())
        inputs.append(m_options.resultPath);
    if (!openInput(path(), input, m_io) || !output.open(m_options.outputPath, inputs))
        return ExitCode::kUnusable;
    try {
        return makePage(input, output);
    } catch (const std::bad_alloc&) {
        reportProblem(path(), QStringLiteral("not enough memory"), m_io);
        return ExitCode::kUnusable;
    }
}

int ReportCommand::makePage(HashedInput& input, OutputFile& output)
{
    FileReport report = checkForPage(input, m_request);
    if (!readToEnd(path(), input))
        return m_exitCode;
    m_files.push_back(pageFile("Input", path(), input));
    if (!m_options.resultPath.isEmpty() && !readResult(report))
        return m_exitCode;
    writePage(output.device(), m_request, m_files, report);
    if (!output.finish())
        return ExitCode::kUnusable;
    const QString summary =
        summaryLine(report.report, report.control, {path(), m_options.controlPath});
    m_io.errors.write(summary.toUtf8() + '\n');
    if (report.model.differenceCount > 0)
        reportProblem(m_options.resultPath,
                      QStringLiteral("%1 differences from what a conversion gives")
                          .arg(report.model.differenceCount),
                      m_io);
    if (!report.report.conversionMessage.isEmpty() || report.count(Severity::Error) > 0)
        return ExitCode::kErrors;
    return report.count(Severity::Warning) > 0 ? ExitCode::kWarnings : ExitCode::kNoWorseThanNotes;
}

bool ReportCommand::readToEnd(const QString& inputPath, HashedInput& input)
{
    input.readToEnd();
    if (input.problem().isEmpty())
        return true;
    reportProblem(inputPath, input.problem(), m_io);
    m_exitCode = exitCodeOf(input);
    return false;
}

bool ReportCommand::readResult(FileReport& report)
{
    const QString& resultPath = m_options.resultPath;
    HashedInput input(m_io);
    if (!openInput(resultPath, input, m_io))
        return false;
    const Status status = compareResult(input, report);
    if (!readToEnd(resultPath, input))
        return false;
    m_files.push_back(pageFile("Result", resultPath, input));
    if (status.ok())
        return true;
    reportProblem(resultPath, status.message, m_io);
    m_exitCode = ExitCode::kErrors;
    return false;
}

} // namespace

int runReport(const ToolOptions& options, const ToolIo& io)
{
    return ReportCommand(options, io).run();
}
