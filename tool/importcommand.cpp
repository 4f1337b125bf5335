#include "tool/importcommand.h"

#include <QDir>
#include <QFileInfo>

#include "exchange/csvimport.h"
#include "hts/quotedtext.h"
#include "tool/outputfile.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"

namespace {

// Beside the output, where there is room for it; but in no folder of devices, nor where the output
// itself is written directly because the folder takes no other file.
QString temporaryPath(const OutputFile& output)
{
    return output.isDroppable() ? output.replacedPath() + QLatin1String(".XXXXXX.tmp")
                                : QDir::tempPath() + QLatin1String("/htstool.XXXXXX.tmp");
}

void showLines(const QString& path, const QStringList& lines, const ToolIo& io)
{
    for (const QString& line : lines)
        io.errors.write(QStringLiteral("%1: %2\n").arg(shown(path), shown(line)).toUtf8());
}

} // namespace

int runImport(const ToolOptions& options, const ToolIo& io)
{
    const QString& path = options.files.first();
    InputFile input(io);
    OutputFile output(io);
    if (!openInput(path, input, io) || !output.open(options.outputPath, {path}))
        return ExitCode::kUnusable;
    ImportOptions importOptions = options.importOptions;
    importOptions.packageName = path == kStandardStream ? QStringLiteral("import")
                                                        : shown(QFileInfo(path).completeBaseName());
    importOptions.createDate = timeOfWriting();
    importOptions.temporaryPath = temporaryPath(output);
    CsvImport import(importOptions);
    Status status = import.read(input);
    if (!input.problem().isEmpty()) {
        reportProblem(path, input.problem(), io);
        return exitCodeOf(input);
    }
    showLines(path, import.summary(), io);
    showLines(path, import.missingSteps(), io);
    if (status.ok())
        status = import.write(output.device());
    if (!output.isWritten())
        return ExitCode::kUnusable;
    if (!status.ok()) {
        reportProblem(path, status.message + QLatin1String("; nothing is imported"), io);
        return import.hasFileFailed() ? ExitCode::kUnusable : ExitCode::kErrors;
    }
    return output.finish() ? ExitCode::kNoWorseThanNotes : ExitCode::kUnusable;
}
