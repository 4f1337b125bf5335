#include "tool/checkcommand.h"

#include <algorithm>
#include <new>
#include <optional>

#include <QDir>

#include "check/control.h"
#include "check/filecheck.h"
#include "check/yearcounts.h"
#include "exchange/csvwriter.h"
#include "tool/outputfile.h"
#include "tool/reportwriter.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"

namespace {

const QLatin1String kNoMemory("not enough memory");

// Checks one file after another, and writes their reports, then that of the control file.
class CheckCommand
{
public:
    CheckCommand(const ToolOptions& options, const ToolIo& io);

    int run(CsvWriter* counts);
    // Whether no file was an HTS file.
    bool hasOnlyOtherFiles() const { return m_otherFiles == m_options.files.size(); }

private:
    int exitCodeOf(const FindingList& findings) const;
    FindingOptions findingOptions() const;
    bool readControl();
    void check(const QString& path, CsvWriter* counts);
    void report(const CheckReport& report, const QString& path);
    void reportUnusable(const QString& problem, int exitCode);
    void finish();

    const ToolOptions& m_options;
    const ToolIo& m_io;
    const std::unique_ptr<ReportWriter> m_writer;
    std::optional<ControlCheck> m_control;
    // Of m_control, after all files; taken into the report of the file if there is only one.
    std::optional<FindingList> m_controlFindings;
    int m_otherFiles = 0;
    int m_exitCode = ExitCode::kNoWorseThanNotes;
};

CheckCommand::CheckCommand(const ToolOptions& options, const ToolIo& io)
    : m_options(options), m_io(io), m_writer(makeReportWriter(options, io))
{
}

int CheckCommand::run(CsvWriter* counts)
{
    const bool isReady = readControl();
    m_writer->begin();
    for (const QString& path : m_options.files) {
        m_writer->beginFile({path, m_options.controlPath});
        if (isReady)
            check(path, counts);
        else
            reportUnusable(kNoMemory, ExitCode::kUnusable);
    }
    finish();
    return m_exitCode;
}

int CheckCommand::exitCodeOf(const FindingList& findings) const
{
    if (findings.count(Severity::Error) > 0)
        return ExitCode::kErrors;
    return findings.hasAnyOf(m_options.failing) ? ExitCode::kWarnings : ExitCode::kNoWorseThanNotes;
}

FindingOptions CheckCommand::findingOptions() const
{
    FindingOptions options;
    options.ignored = m_options.ignored;
    if (m_options.hasAllFindings)
        options.maxKeptPerKind = FindingOptions::kAll;
    return options;
}

// Fails only for want of memory.
bool CheckCommand::readControl()
{
    try {
        // The rules are in memory anyway, so are the findings about them.
        if (!m_options.controlPath.isEmpty())
            m_control.emplace(m_options.controlPath, findingOptions());
        return true;
    } catch (const std::bad_alloc&) {
        reportProblem(m_options.controlPath, kNoMemory, m_io);
        return false;
    }
}

void CheckCommand::check(const QString& path, CsvWriter* counts)
{
    InputFile file(m_io);
    if (!openInput(path, file, m_io)) {
        reportUnusable(file.errorString(), ExitCode::kUnusable);
        return;
    }
    CheckOptions options;
    options.control = m_control ? &*m_control : nullptr;
    options.endMonth = m_options.endMonth;
    options.maxMissing = m_options.maxMissing;
    options.sentinels = m_options.sentinels;
    options.findings = findingOptions();
    if (m_options.hasAllFindings)
        options.findings.sink = [this](const Finding& finding) { m_writer->add(finding); };
    std::optional<YearCounts> rows;
    if (counts != nullptr)
        options.observer = &rows.emplace(*counts, path);
    CheckReport found;
    QString problem;
    int exitCode = ExitCode::kUnusable;
    try {
        found = checkFile(file, options);
        problem = file.problem();
        exitCode = ::exitCodeOf(file);
    } catch (const std::bad_alloc&) {
        problem = kNoMemory;
    }
    if (problem.isEmpty()) {
        report(found, path);
        return;
    }
    // The findings are about only a part of the file: those that are not written yet are dropped.
    m_writer->flush();
    reportProblem(path, problem, m_io);
    reportUnusable(problem, exitCode);
}

void CheckCommand::report(const CheckReport& report, const QString& path)
{
    m_otherFiles += report.isOtherFile ? 1 : 0;
    // A bad control file has its error there.
    const int exitCode =
        report.conversionMessage.isEmpty() ? exitCodeOf(report.findings) : ExitCode::kErrors;
    m_exitCode = std::max(m_exitCode, exitCode);
    const bool hasControl = m_control && m_options.files.size() == 1;
    if (hasControl) {
        m_controlFindings = m_control->findings();
        m_exitCode = std::max(m_exitCode, exitCodeOf(*m_controlFindings));
    }
    for (const Finding& finding : report.findings.sorted())
        m_writer->add(finding);
    m_writer->endFile(report, hasControl ? &*m_controlFindings : nullptr, exitCode);
    m_writer->flush();
    const QString summary = summaryLine(report, m_controlFindings.value_or(FindingList()),
                                        {path, m_options.controlPath});
    m_io.errors.write(summary.toUtf8() + '\n');
}

void CheckCommand::reportUnusable(const QString& problem, int exitCode)
{
    m_exitCode = std::max(m_exitCode, exitCode);
    if (m_control)
        m_control->noteUnknownSlots();
    m_writer->endUnreadable(problem, exitCode);
}

void CheckCommand::finish()
{
    const bool hasOwnSummary = m_control && !m_controlFindings;
    if (hasOwnSummary) {
        m_controlFindings = m_control->findings();
        m_exitCode = std::max(m_exitCode, exitCodeOf(*m_controlFindings));
    }
    const FindingList control = m_controlFindings.value_or(FindingList());
    m_writer->end(control, m_exitCode);
    m_writer->flush();
    if (hasOwnSummary)
        m_io.errors.write(summaryLine(control, {{}, m_options.controlPath}).toUtf8() + '\n');
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
