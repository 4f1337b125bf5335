#include "tool/explaincommand.h"

#include <QIODevice>

#include "check/findinglist.h"
#include "check/topic.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"

namespace {

// The row of a table in Markdown: of the meaning the first sentence, which says what was found.
QString rowOf(const FindingKind& kind)
{
    const QString meaning = QLatin1String(kind.meaning) + QLatin1Char(' ');
    return worded("| `%1` | %2 | %3. |\n", kind.code, severityName(kind.severity),
                  meaning.section(QLatin1String(". "), 0, 0));
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
        text = QStringLiteral("| code | severity | meaning |\n|---|---|---|\n");
    for (const Topic* topic : findingTopics()) {
        if (isTable && options.isForAll)
            text += worded("| **%1** | | |\n", topic->title);
        for (const FindingKind* kind : topic->kinds) {
            if (options.isForAll || options.codes.contains(QLatin1String(kind->code)))
                text += isTable ? rowOf(*kind) : textOf(*topic, *kind);
        }
    }
    io.output.write(text.toUtf8());
    return ExitCode::kNoWorseThanNotes;
}
