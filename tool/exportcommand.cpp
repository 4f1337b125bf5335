#include "tool/exportcommand.h"

#include "check/csvexport.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"
#include "utils/checkedfile.h"

namespace {

int report(const ExportOutcome& outcome, const QString& path, const ToolIo& io)
{
    if (!outcome.status.ok()) {
        reportProblem(path, outcome.status.message + QLatin1String("; the export is not complete"),
                      io);
        return ExitCode::kErrors;
    }
    if (outcome.textValues == 0)
        return ExitCode::kNoWorseThanNotes;
    reportProblem(path,
                  QStringLiteral("%1 values are not numbers and were exported as 0; htstool check "
                                 "has their lines")
                      .arg(outcome.textValues),
                  io);
    return ExitCode::kWarnings;
}

} // namespace

int runExport(const ToolOptions& options, const ToolIo& io)
{
    const QString& path = options.files.first();
    UtilsNS::CheckedFile input;
    UtilsNS::CheckedFile output;
    if (!openInput(path, input, io) || !openOutput(options.outputPath, {path}, output, io))
        return ExitCode::kUnusable;
    ExportOptions exportOptions;
    exportOptions.isWide = options.isWide;
    exportOptions.run = options.run;
    const ExportOutcome outcome = exportCsv(input, output, exportOptions);
    if (!finishOutput(options.outputPath, output, io))
        return ExitCode::kUnusable;
    if (!input.problem().isEmpty()) {
        reportProblem(path, input.problem(), io);
        return ExitCode::kUnusable;
    }
    return report(outcome, path, io);
}
