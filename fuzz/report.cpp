// The reports of htstool check about any HTS file with any control file, under any file name: the
// JSON document can be read, and the text report says the same, with one line for each finding and
// each slot of the plan, whatever the names in the files are.
//
// Input: see fuzz/toolcase.h.

#include <algorithm>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/toolcase.h"

namespace {

QString textOf(const QJsonValue& value, const char* key)
{
    return value.toObject().value(QLatin1String(key)).toString();
}

// The line of the text report for a finding of the document.
QString lineOf(const QJsonValue& finding)
{
    return textOf(finding, "file") + QLatin1Char(':') +
           QString::number(finding.toObject().value(QLatin1String("line")).toInt()) +
           QLatin1String(": ") + textOf(finding, "severity") + QLatin1String(": ") +
           textOf(finding, "text") + QLatin1String(" [") + textOf(finding, "code") +
           QLatin1String("]\n");
}

// How many codes have more findings than are shown.
int countMoreLines(const QJsonObject& counts, const QJsonArray& findings)
{
    int lines = 0;
    for (const QString& code : counts.keys()) {
        const auto shown =
            std::count_if(findings.begin(), findings.end(), [&code](const QJsonValue& finding) {
                return textOf(finding, "code") == code;
            });
        lines += counts.value(code).toInt() > shown ? 1 : 0;
    }
    return lines;
}

bool hasControlCharacter(const QString& text)
{
    return std::any_of(text.begin(), text.end(),
                       [](QChar c) { return c.category() == QChar::Other_Control; });
}

// Removes the first `count` lines, which are all of the file.
void takeLines(QString& text, qint64 count, const QString& file)
{
    const QString start = file + QLatin1String(": ");
    for (; count > 0; --count) {
        const QString line = text.section(QLatin1Char('\n'), 0, 0);
        fuzz::require(line.startsWith(start), QStringLiteral("not of the file: ") + line);
        fuzz::require(!hasControlCharacter(line), QStringLiteral("shown raw: ") + line);
        text.remove(0, line.size() + 1);
    }
}

// Removes the findings about a file, and the lines of the codes with more of them.
void takeFindings(QString& text, const QJsonArray& findings, const QJsonObject& counts,
                  const QString& file)
{
    QString expected;
    for (const auto& finding : findings) {
        fuzz::require(!hasControlCharacter(textOf(finding, "text")),
                      QStringLiteral("shown raw: ") + textOf(finding, "text"));
        expected += lineOf(finding);
    }
    fuzz::requireEqual(QStringLiteral("findings"), text.left(expected.size()), expected);
    text.remove(0, expected.size());
    takeLines(text, countMoreLines(counts, findings), file);
}

void checkText(QString text, const QJsonObject& document, const QJsonObject& report)
{
    const QString file = textOf(report, "file");
    takeFindings(text, report.value(QLatin1String("findings")).toArray(),
                 report.value(QLatin1String("counts")).toObject(), file);
    takeFindings(text, document.value(QLatin1String("controlFindings")).toArray(),
                 document.value(QLatin1String("controlCounts")).toObject(),
                 textOf(document, "control"));
    const QJsonValue plan = report.value(QLatin1String("plan"));
    if (!plan.isNull())
        takeLines(text, 1 + plan.toObject().value(QLatin1String("slots")).toArray().size(), file);
    fuzz::require(text.isEmpty(), QStringLiteral("lines after the plan: ") + text);
}

} // namespace

FUZZ_TARGET(report)
{
    const fuzz::ToolCase files(input);
    QStringList arguments{QStringLiteral("check")};
    if (!files.controlPath().isEmpty())
        arguments += {QStringLiteral("--control"), files.controlPath()};
    arguments.append(files.htsPath());
    const fuzz::ToolOutcome asText = fuzz::runHtstool(arguments);
    const fuzz::ToolOutcome asJson = fuzz::runHtstool(
        arguments + QStringList{QStringLiteral("--format"), QStringLiteral("json")});

    fuzz::require(asText.exitCode >= 0 && asText.exitCode <= 2,
                  QStringLiteral("exit code %1").arg(asText.exitCode));
    fuzz::require(asJson.exitCode == asText.exitCode && asJson.errors == asText.errors,
                  QStringLiteral("another outcome with JSON"));
    const QJsonObject document = QJsonDocument::fromJson(asJson.output).object();
    const QJsonArray reports = document.value(QLatin1String("files")).toArray();
    fuzz::require(reports.size() == 1, QStringLiteral("no JSON document with one report"));
    const QJsonObject report = reports.first().toObject();
    fuzz::requireEqual(QStringLiteral("file"), textOf(report, "file"), files.htsPath());
    fuzz::require(document.value(QLatin1String("exitCode")).toInt() == asText.exitCode,
                  QStringLiteral("another exit code in the document"));
    // Such a name is not shown on one line.
    if (!hasControlCharacter(files.htsPath()))
        checkText(QString::fromUtf8(asText.output), document, report);
}
