#include "tool/exportcommand.h"

#include "check/filekind.h"
#include "exchange/csvexport.h"
#include "hts/htspackage.h"
#include "tool/outputfile.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"

int runExport(const ToolOptions& options, const ToolIo& io)
{
    const QString& path = options.files.first();
    InputFile input(io);
    OutputFile output(io);
    if (!openInput(path, input, io) || !output.open(options.outputPath, {path}))
        return ExitCode::kUnusable;
    const QByteArray firstBlock = firstBlockOf(input);
    const ExportOutcome outcome = exportCsv(input, output.device(), options.table);
    if (!output.isWritten())
        return ExitCode::kUnusable;
    if (!input.problem().isEmpty()) {
        reportProblem(path, input.problem(), io);
        return exitCodeOf(input);
    }
    if (!outcome.status.ok()) {
        const QLatin1String rest(output.isDroppable() ? "; nothing is exported"
                                                      : "; the export is not complete");
        const QString otherFile = outcome.status.message == HtsPackage::kBadPreamble
                                      ? otherFileText(firstBlock)
                                      : QString();
        const QLatin1String colon(otherFile.isEmpty() ? "" : ": ");
        reportProblem(path, outcome.status.message + colon + otherFile + rest, io);
        return ExitCode::kErrors;
    }
    if (!output.finish())
        return ExitCode::kUnusable;
    if (outcome.textValues == 0)
        return ExitCode::kNoWorseThanNotes;
    reportProblem(path,
                  QStringLiteral("%1 values are not numbers and were exported as 0; htstool check "
                                 "has their lines")
                      .arg(outcome.textValues),
                  io);
    return ExitCode::kWarnings;
}
