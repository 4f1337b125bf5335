#include "tool/tool.h"

#include <QIODevice>

#include "QsLog.h"
#include "hts/quotedtext.h"
#include "tool/checkcommand.h"
#include "tool/diffcommand.h"
#include "tool/explaincommand.h"
#include "tool/exportcommand.h"
#include "tool/importcommand.h"
#include "tool/progress.h"
#include "tool/reportcommand.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"

namespace {

int showText(const QString& text, const ToolIo& io)
{
    io.output.write(text.toUtf8());
    return ExitCode::kNoWorseThanNotes;
}

int showWrongUsage(const QString& text, const ToolIo& io)
{
    io.errors.write(
        QStringLiteral("htstool: %1\nTry \"htstool --help\".\n").arg(shown(text)).toUtf8());
    return ExitCode::kUnusable;
}

} // namespace

int runTool(const QStringList& arguments, const ToolIo& io)
{
    // The engine's log lines are about conversions.
    QsLogging::Logger::instance().setLoggingLevel(QsLogging::OffLevel);
    const ToolOptions options = parseToolOptions(arguments);
    if (io.progress != nullptr)
        io.progress->begin(options.files);
    switch (options.request) {
    case ToolOptions::Request::Text:
        return showText(options.text, io);
    case ToolOptions::Request::Invalid:
        return showWrongUsage(options.text, io);
    case ToolOptions::Request::Check:
        return runCheck(options, io);
    case ToolOptions::Request::Diff:
        return runDiff(options, io);
    case ToolOptions::Request::Explain:
        return runExplain(options, io);
    case ToolOptions::Request::Import:
        return runImport(options, io);
    case ToolOptions::Request::Report:
        return runReport(options, io);
    case ToolOptions::Request::Export:
        break;
    }
    return runExport(options, io);
}
