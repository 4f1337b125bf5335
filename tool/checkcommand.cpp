#include "tool/checkcommand.h"

#include <algorithm>
#include <new>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "check/filecheck.h"
#include "check/yearcounts.h"
#include "exchange/csvwriter.h"
#include "tool/jsonreport.h"
#include "tool/outputfile.h"
#include "tool/textreport.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"
#include "utils/checkedfile.h"

namespace {

int exitCodeOf(const FindingList& findings)
{
    if (findings.count(Severity::Error) > 0)
        return ExitCode::kErrors;
    return findings.count(Severity::Warning) > 0 ? ExitCode::kWarnings
                                                 : ExitCode::kNoWorseThanNotes;
}

// Checks one file after another, and writes or collects their reports.
class CheckCommand
{
public:
    CheckCommand(const ToolOptions& options, const ToolIo& io) : m_options(options), m_io(io) {}

    int run(CsvWriter* counts);

private:
    void check(const QString& path, CsvWriter* counts);
    void report(const CheckReport& report, const ReportNames& names);
    void reportUnusable(const ReportNames& names, const QString& problem, int exitCode);
    void writeDocument();

    const ToolOptions& m_options;
    const ToolIo& m_io;
    QJsonArray m_files;
    int m_exitCode = ExitCode::kNoWorseThanNotes;
};

int CheckCommand::run(CsvWriter* counts)
{
    for (const QString& path : m_options.files)
        check(path, counts);
    if (m_options.format == ToolOptions::Format::Json)
        writeDocument();
    return m_exitCode;
}

void CheckCommand::check(const QString& path, CsvWriter* counts)
{
    const ReportNames names{path, m_options.controlPath};
    UtilsNS::CheckedFile file;
    if (!openInput(path, file, m_io)) {
        reportUnusable(names, file.errorString(), ExitCode::kUnusable);
        return;
    }
    CheckOptions options;
    options.controlPath = m_options.controlPath;
    options.endMonth = m_options.endMonth;
    options.counts = counts;
    options.fileName = path;
    QString problem;
    int exitCode = ExitCode::kUnusable;
    try {
        const CheckReport found = checkFile(file, options);
        problem = file.problem();
        exitCode = exitCodeOf(file);
        if (problem.isEmpty())
            report(found, names);
    } catch (const std::bad_alloc&) {
        problem = QStringLiteral("not enough memory");
    }
    // The findings are about only a part of the file, so they are dropped.
    if (!problem.isEmpty()) {
        reportProblem(path, problem, m_io);
        reportUnusable(names, problem, exitCode);
    }
}

void CheckCommand::report(const CheckReport& report, const ReportNames& names)
{
    const int exitCode = exitCodeOf(report.findings);
    m_exitCode = std::max(m_exitCode, exitCode);
    if (m_options.format == ToolOptions::Format::Json)
        m_files.append(jsonReport(report, names, exitCode));
    else
        m_io.output.write(textReport(report, names, m_io.hasColour).toUtf8());
    m_io.errors.write(textSummary(report, names).toUtf8());
}

void CheckCommand::reportUnusable(const ReportNames& names, const QString& problem, int exitCode)
{
    m_exitCode = std::max(m_exitCode, exitCode);
    if (m_options.format == ToolOptions::Format::Json)
        m_files.append(jsonUnreadable(names, problem, exitCode));
}

void CheckCommand::writeDocument()
{
    const QString& control = m_options.controlPath;
    const QJsonObject document{
        {QStringLiteral("format"), 1},
        {QStringLiteral("endMonth"), m_options.endMonth},
        {QStringLiteral("control"), control.isEmpty() ? QJsonValue(QJsonValue::Null) : control},
        {QStringLiteral("exitCode"), m_exitCode},
        {QStringLiteral("files"), m_files},
    };
    m_io.output.write(QJsonDocument(document).toJson());
}

} // namespace

int runCheck(const ToolOptions& options, const ToolIo& io)
{
    CheckCommand command(options, io);
    if (options.countsPath.isEmpty())
        return command.run(nullptr);

    QStringList inputs = options.files;
    if (!options.controlPath.isEmpty()) // for which "-" is a file
        inputs.append(QDir::current().absoluteFilePath(options.controlPath));
    OutputFile file(io);
    if (!file.open(options.countsPath, inputs))
        return ExitCode::kUnusable;
    int exitCode = 0;
    {
        CsvWriter counts(file.device());
        YearCounts::writeHeader(counts);
        exitCode = command.run(&counts);
    }
    return file.finish() ? exitCode : ExitCode::kUnusable;
}
