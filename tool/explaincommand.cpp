#include "tool/explaincommand.h"

#include <QIODevice>

#include "check/findinglist.h"
#include "check/topic.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"

namespace {

// The row of a table in Markdown.
QString rowOf(const FindingKind& kind)
{
    return worded("| `%1` | %2 | %3 | %4 |\n", kind.code, severityName(kind.severity), kind.meaning,
                  kind.advice);
}

QString textOf(const Topic& topic, const FindingKind& kind)
{
    return worded("%1: %2 (%3)\n  %4\n  What to do: %5\n", kind.code, severityName(kind.severity),
                  topic.title, kind.meaning, kind.advice);
}

} // namespace

int runExplain(const ToolOptions& options, const ToolIo& io)
{
    const bool isTable = options.format == ToolOptions::Format::Markdown;
    QString text;
    if (isTable)
        text = QStringLiteral("| code | severity | meaning | what to do |\n|---|---|---|---|\n");
    for (const Topic* topic : findingTopics()) {
        if (isTable && options.isForAll)
            text += worded("| **%1** | | | |\n", topic->title);
        for (const FindingKind* kind : topic->kinds) {
            if (options.isForAll || options.codes.contains(QLatin1String(kind->code)))
                text += isTable ? rowOf(*kind) : textOf(*topic, *kind);
        }
    }
    io.output.write(text.toUtf8());
    return ExitCode::kNoWorseThanNotes;
}
