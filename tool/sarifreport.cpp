#include "tool/sarifreport.h"

#include <QDir>
#include <QJsonObject>
#include <QUrl>

#include "check/filecheck.h"
#include "check/topic.h"
#include "tool/jsontext.h"
#include "tool/tooloptions.h"

namespace {

// In a message {0} stands for an argument.
QJsonObject messageOf(QString text)
{
    text.replace(QLatin1Char('{'), QLatin1String("{{"));
    text.replace(QLatin1Char('}'), QLatin1String("}}"));
    return {{jsonKey("text"), text}};
}

// A path is relative to a folder that the reader of the document knows, unless it is absolute.
QString uriOf(const QString& path)
{
    const QString name = QDir::fromNativeSeparators(path);
    if (QDir::isAbsolutePath(name))
        return QString::fromLatin1(QUrl::fromLocalFile(name).toEncoded(QUrl::FullyEncoded));
    return QString::fromLatin1(QUrl::toPercentEncoding(name, "/"));
}

// A line of 0 stands for the whole file.
QJsonArray locationsOf(const QString& file, qint64 line)
{
    QJsonObject place{{jsonKey("artifactLocation"), QJsonObject{{jsonKey("uri"), uriOf(file)}}}};
    if (line > 0)
        place.insert(jsonKey("region"), QJsonObject{{jsonKey("startLine"), line}});
    return {QJsonObject{{jsonKey("physicalLocation"), place}}};
}

QJsonObject ruleOf(const FindingKind& kind)
{
    return {
        {jsonKey("id"), jsonKey(kind.code)},
        {jsonKey("shortDescription"), messageOf(jsonKey(kind.meaning))},
        {jsonKey("help"), messageOf(jsonKey(kind.advice))},
        {jsonKey("defaultConfiguration"),
         QJsonObject{{jsonKey("level"), jsonKey(severityName(kind.severity))}}},
    };
}

} // namespace

SarifReport::SarifReport(const ToolOptions& options, QIODevice& device) : ReportWriter(device)
{
    for (const Topic* topic : findingTopics()) {
        for (const FindingKind* kind : topic->kinds) {
            if (options.ignored.count(kind) > 0)
                continue;
            m_rules.emplace(kind, m_ruleObjects.size());
            m_ruleObjects.append(ruleOf(*kind));
        }
    }
}

void SarifReport::begin()
{
    const QJsonObject driver{{jsonKey("name"), jsonKey("htstool")},
                             {jsonKey("version"), jsonKey(TOOL_VERSION)},
                             {jsonKey("rules"), m_ruleObjects}};
    writeLine("{\"$schema\":\"https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/"
              "sarif-schema-2.1.0.json\",");
    writeLine("\"version\":\"2.1.0\",\"runs\":[{\"columnKind\":\"unicodeCodePoints\",");
    writeLine(jsonMember("tool", QJsonObject{{jsonKey("driver"), driver}}) + ",");
    writeLine("\"results\":[");
}

void SarifReport::writeResult(const FindingKind& kind, const QString& file, qint64 line,
                              const QString& text)
{
    const QJsonObject result{
        {jsonKey("ruleId"), jsonKey(kind.code)},
        {jsonKey("ruleIndex"), m_rules.at(&kind)},
        {jsonKey("level"), jsonKey(severityName(kind.severity))},
        {jsonKey("message"), messageOf(text)},
        {jsonKey("locations"), locationsOf(file, line)},
    };
    writeLine((m_hasResult ? "," : "") + jsonText(result));
    m_hasResult = true;
}

void SarifReport::add(const Finding& finding)
{
    writeResult(*finding.kind, names().file, finding.line, finding.text);
}

void SarifReport::writeRest(const FindingList& findings, const QString& file)
{
    for (const FindingCount& rest : findings.notShown())
        writeResult(*rest.kind, file, 0, worded("%1 more", rest.count));
}

void SarifReport::endFile(const CheckReport& report, const FindingList* /*control*/,
                          int /*exitCode*/)
{
    writeRest(report.findings, names().file);
}

void SarifReport::endUnreadable(const QString& problem, int /*exitCode*/)
{
    m_problems.append(QJsonObject{{jsonKey("level"), jsonKey("error")},
                                  {jsonKey("message"), messageOf(problem)},
                                  {jsonKey("locations"), locationsOf(names().file, 0)}});
}

void SarifReport::end(const FindingList& control, int exitCode)
{
    for (const Finding& finding : control.sorted())
        writeResult(*finding.kind, names().control, finding.line, finding.text);
    writeRest(control, names().control);
    const QJsonObject invocation{{jsonKey("executionSuccessful"), m_problems.isEmpty()},
                                 {jsonKey("exitCode"), exitCode},
                                 {jsonKey("toolExecutionNotifications"), m_problems}};
    writeLine("],");
    writeLine(jsonMember("invocations", QJsonArray{invocation}) + "}]}");
}
