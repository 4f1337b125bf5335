#include "tool/jsonreport.h"

#include <QJsonValue>

#include "annualize/aggmethods.h"
#include "check/filecheck.h"
#include "check/reportlines.h"
#include "check/topic.h"
#include "hts/htsslot.h"
#include "tool/toolio.h"

namespace {

QString key(const char* name)
{
    return QString::fromLatin1(name);
}

QJsonValue textOrNull(const QString& text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

QJsonObject conversionOf(const CheckReport& report)
{
    const char* outcome = report.neverEnds                     ? "never ends"
                          : report.conversionMessage.isEmpty() ? "succeeds"
                                                               : "fails";
    return {{key("outcome"), key(outcome)}, {key("message"), textOrNull(report.conversionMessage)}};
}

QJsonObject yearsOf(const YearPlan& years)
{
    return {{key("count"), years.count},
            {key("first"), textOrNull(years.first)},
            {key("last"), textOrNull(years.last)},
            {key("leftOutAtStart"), years.leftOutAtStart},
            {key("leftOutAtEnd"), years.leftOutAtEnd}};
}

QJsonObject planOf(const CheckReport& report)
{
    QJsonArray planned;
    for (const PlannedSlot& slot : report.slotPlan) {
        const bool hasRule = slot.method != nullptr;
        planned.append(QJsonObject{
            {key("slot"), fullSlotName(slot.objectName, slot.slotName)},
            {key("series"), slot.isSeries},
            {key("converted"), slot.isConverted},
            {key("method"), hasRule ? QJsonValue(slot.method->word) : QJsonValue::Null},
            {key("ruleLine"), hasRule ? QJsonValue(slot.ruleLine) : QJsonValue::Null},
        });
    }
    return {{key("years"), yearsOf(report.years)}, {key("slots"), planned}};
}

} // namespace

QJsonArray jsonFindings(const FindingList& findings, const QString& file)
{
    QJsonArray array;
    for (const Finding& finding : findings.sorted()) {
        array.append(QJsonObject{
            {key("file"), file},
            {key("line"), finding.line},
            {key("severity"), key(severityName(finding.severity()))},
            {key("code"), key(finding.code())},
            {key("text"), finding.text},
        });
    }
    return array;
}

QJsonObject jsonCounts(const FindingList& findings)
{
    QJsonObject counts;
    for (const Topic* topic : findingTopics()) {
        for (const FindingKind* kind : topic->kinds) {
            if (findings.count(*kind) > 0)
                counts.insert(key(kind->code), findings.count(*kind));
        }
    }
    return counts;
}

QJsonObject jsonReport(const CheckReport& report, const ReportNames& names, int exitCode)
{
    const FindingList& findings = report.findings;
    return {
        {key("file"), names.file},
        {key("problem"), QJsonValue::Null},
        {key("exitCode"), exitCode},
        {key("runs"), report.runCount},
        {key("slots"), report.slotCount},
        {key("errors"), findings.count(Severity::Error)},
        {key("warnings"), findings.count(Severity::Warning)},
        {key("notes"), findings.count(Severity::Note)},
        {key("findings"), jsonFindings(findings, names.file)},
        {key("counts"), jsonCounts(findings)},
        {key("conversion"), conversionOf(report)},
        {key("plan"), names.control.isEmpty() ? QJsonValue(QJsonValue::Null) : planOf(report)},
    };
}

QJsonObject jsonUnreadable(const ReportNames& names, const QString& problem, int exitCode)
{
    return {{key("file"), names.file}, {key("problem"), problem}, {key("exitCode"), exitCode}};
}
