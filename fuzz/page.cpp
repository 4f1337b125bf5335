// Pages about any HTS file with any control file, under any file name: whatever the names in the
// files are, the page has only the elements that the program writes, each closed where it should
// be, and no character that is invisible or turns the direction of a text.
//
// Input: see fuzz/toolcase.h.

#include <algorithm>

#include <QRegularExpression>
#include <QStringList>

#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/toolcase.h"

namespace {

bool isInvisible(QChar character)
{
    return character != QLatin1Char('\n') && !character.isPrint() && !character.isSurrogate();
}

// Of the program: in its own attributes nothing is escaped but what a name could have.
const QRegularExpression& tag()
{
    static const QRegularExpression kTag(QStringLiteral(
        R"re(^<(/?)(html|head|body|meta|title|style|header|main|section|figure|figcaption|svg|defs|)re"
        R"re(pattern|path|g|text|desc|bdi|p|h1|h2|h3|ul|li|dl|dt|dd|a|b|code|small|span|div|table|)re"
        R"re(thead|tbody|tr|th|td)( [a-zA-Z-]+="[^"<>]*")*(/?)>)re"));
    return kTag;
}

void checkTags(const QString& page)
{
    static const QStringList kVoid{QStringLiteral("meta")};
    QStringList open;
    for (int at = page.indexOf(QLatin1Char('<')); at >= 0;
         at = page.indexOf(QLatin1Char('<'), at + 1)) {
        const QString rest = page.mid(at, 400);
        if (rest.startsWith(QLatin1String("<!DOCTYPE html>\n")) && at == 0)
            continue;
        const QRegularExpressionMatch match =
            tag().match(rest.startsWith(QLatin1String("<path")) ? QStringLiteral("<path/>") : rest);
        fuzz::require(match.hasMatch(), QStringLiteral("not of the program: ") + rest);
        const QString name = match.captured(2);
        if (match.captured(4) == QLatin1String("/") || kVoid.contains(name))
            continue;
        if (match.captured(1).isEmpty()) {
            open.append(name);
            continue;
        }
        fuzz::require(!open.isEmpty() && open.constLast() == name,
                      QStringLiteral("closed too early: ") + rest);
        open.removeLast();
    }
    fuzz::require(open.isEmpty(), QStringLiteral("not closed: ") + open.join(QLatin1Char(' ')));
}

} // namespace

FUZZ_TARGET(page)
{
    const fuzz::ToolCase files(input);
    if (files.controlPath().isEmpty())
        return;
    const fuzz::ToolOutcome outcome = fuzz::runHtstool(
        {QStringLiteral("report"), QStringLiteral("--all-slots"), QStringLiteral("-o"),
         files.resultPath(), QStringLiteral("-c"), files.controlPath(), files.htsPath()});
    fuzz::require(outcome.exitCode >= 0 && outcome.exitCode <= 3,
                  QStringLiteral("exit code %1").arg(outcome.exitCode));
    if (outcome.exitCode == 3)
        return; // a name that no file can have
    QFile file(files.resultPath());
    fuzz::require(file.open(QIODevice::ReadOnly), QStringLiteral("no page"));
    QString page = QString::fromUtf8(file.readAll());
    fuzz::require(std::none_of(page.begin(), page.end(), isInvisible),
                  QStringLiteral("an invisible character"));
    fuzz::require(page.contains(QLatin1String("default-src 'none'")), QStringLiteral("no policy"));
    checkTags(page);
}
