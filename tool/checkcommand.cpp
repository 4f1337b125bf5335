#include "tool/checkcommand.h"

#include <algorithm>
#include <new>
#include <optional>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "check/control.h"
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

const QLatin1String kNoMemory("not enough memory");

int exitCodeOf(const FindingList& findings)
{
    if (findings.count(Severity::Error) > 0)
        return ExitCode::kErrors;
    return findings.count(Severity::Warning) > 0 ? ExitCode::kWarnings
                                                 : ExitCode::kNoWorseThanNotes;
}

// Checks one file after another, and writes or collects their reports, then that of the control
// file.
class CheckCommand
{
public:
    CheckCommand(const ToolOptions& options, const ToolIo& io) : m_options(options), m_io(io) {}

    int run(CsvWriter* counts);
    // Whether no file was an HTS file.
    bool hasOnlyOtherFiles() const { return m_otherFiles == m_options.files.size(); }

private:
    bool readControl();
    void check(const QString& path, CsvWriter* counts);
    void report(const CheckReport& report, const ReportNames& names);
    void reportUnusable(const ReportNames& names, const QString& problem, int exitCode);
    void reportControl();
    void writeDocument();

    const ToolOptions& m_options;
    const ToolIo& m_io;
    std::optional<ControlCheck> m_control;
    // Of m_control, after all files; taken into the report of the file if there is only one.
    std::optional<FindingList> m_controlFindings;
    QJsonArray m_files;
    int m_otherFiles = 0;
    int m_exitCode = ExitCode::kNoWorseThanNotes;
};

int CheckCommand::run(CsvWriter* counts)
{
    const bool isReady = readControl();
    for (const QString& path : m_options.files) {
        if (isReady)
            check(path, counts);
        else
            reportUnusable({path, m_options.controlPath}, kNoMemory, ExitCode::kUnusable);
    }
    if (m_control && !m_controlFindings)
        reportControl();
    if (m_options.format == ToolOptions::Format::Json)
        writeDocument();
    return m_exitCode;
}

// Fails only for want of memory.
bool CheckCommand::readControl()
{
    try {
        if (!m_options.controlPath.isEmpty())
            m_control.emplace(m_options.controlPath);
        return true;
    } catch (const std::bad_alloc&) {
        reportProblem(m_options.controlPath, kNoMemory, m_io);
        return false;
    }
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
    options.control = m_control ? &*m_control : nullptr;
    options.endMonth = m_options.endMonth;
    options.maxMissing = m_options.maxMissing;
    options.sentinels = m_options.sentinels;
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
        problem = kNoMemory;
    }
    // The findings are about only a part of the file, so they are dropped.
    if (!problem.isEmpty()) {
        reportProblem(path, problem, m_io);
        reportUnusable(names, problem, exitCode);
    }
}

void CheckCommand::report(const CheckReport& report, const ReportNames& names)
{
    m_otherFiles += report.isOtherFile ? 1 : 0;
    // A bad control file has its error there.
    const int exitCode =
        report.conversionMessage.isEmpty() ? exitCodeOf(report.findings) : ExitCode::kErrors;
    m_exitCode = std::max(m_exitCode, exitCode);
    FindingList control;
    if (m_control && m_options.files.size() == 1) {
        control = m_control->findings();
        m_exitCode = std::max(m_exitCode, exitCodeOf(control));
        m_controlFindings = control;
    }
    if (m_options.format == ToolOptions::Format::Json)
        m_files.append(jsonReport(report, names, exitCode));
    else
        writeReport(report, control, names, m_io);
    m_io.errors.write(summaryLine(report, control, names).toUtf8() + '\n');
}

void CheckCommand::reportUnusable(const ReportNames& names, const QString& problem, int exitCode)
{
    m_exitCode = std::max(m_exitCode, exitCode);
    if (m_control)
        m_control->noteUnknownSlots();
    if (m_options.format == ToolOptions::Format::Json)
        m_files.append(jsonUnreadable(names, problem, exitCode));
}

void CheckCommand::reportControl()
{
    const ReportNames names{{}, m_options.controlPath};
    m_controlFindings = m_control->findings();
    m_exitCode = std::max(m_exitCode, exitCodeOf(*m_controlFindings));
    if (m_options.format == ToolOptions::Format::Text)
        writeFindings(*m_controlFindings, names.control, m_io);
    m_io.errors.write(summaryLine(*m_controlFindings, names).toUtf8() + '\n');
}

void CheckCommand::writeDocument()
{
    const QString& control = m_options.controlPath;
    const FindingList findings = m_controlFindings.value_or(FindingList());
    const QJsonObject document{
        {QStringLiteral("format"), 1},
        {QStringLiteral("endMonth"), m_options.endMonth},
        {QStringLiteral("control"), control.isEmpty() ? QJsonValue(QJsonValue::Null) : control},
        {QStringLiteral("exitCode"), m_exitCode},
        {QStringLiteral("files"), m_files},
        {QStringLiteral("controlFindings"), jsonFindings(findings, control)},
        {QStringLiteral("controlCounts"), jsonCounts(findings)},
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
    // There is nothing to count.
    if (command.hasOnlyOtherFiles() && file.isDroppable())
        return exitCode;
    return file.finish() ? exitCode : ExitCode::kUnusable;
}
