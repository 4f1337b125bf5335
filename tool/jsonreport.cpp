#include "tool/jsonreport.h"

#include <QJsonObject>

#include "annualize/aggmethods.h"
#include "check/filecheck.h"
#include "check/topic.h"
#include "hts/htsslot.h"
#include "tool/jsontext.h"
#include "tool/tooloptions.h"

namespace {

QJsonValue textOrNull(const QString& text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

// Before an element of an array, one on each line.
QByteArray commaAfterFirst(bool& hasOther)
{
    QByteArray comma = hasOther ? "," : "";
    hasOther = true;
    return comma;
}

QJsonObject countsOf(const FindingList& findings)
{
    QJsonObject counts;
    for (const Topic* topic : findingTopics()) {
        for (const FindingKind* kind : topic->kinds) {
            if (findings.count(*kind) > 0)
                counts.insert(jsonKey(kind->code), findings.count(*kind));
        }
    }
    return counts;
}

QJsonObject conversionOf(const CheckReport& report)
{
    const char* outcome = report.neverEnds                     ? "never ends"
                          : report.conversionMessage.isEmpty() ? "succeeds"
                                                               : "fails";
    return {{jsonKey("outcome"), jsonKey(outcome)},
            {jsonKey("message"), textOrNull(report.conversionMessage)}};
}

QJsonObject yearsOf(const YearPlan& years)
{
    return {{jsonKey("count"), years.count},
            {jsonKey("first"), textOrNull(years.first)},
            {jsonKey("last"), textOrNull(years.last)},
            {jsonKey("leftOutAtStart"), years.leftOutAtStart},
            {jsonKey("leftOutAtEnd"), years.leftOutAtEnd}};
}

QJsonObject slotOf(const PlannedSlot& slot)
{
    const bool hasRule = slot.method != nullptr;
    return {
        {jsonKey("slot"), fullSlotName(slot.objectName, slot.slotName)},
        {jsonKey("series"), slot.isSeries},
        {jsonKey("converted"), slot.isConverted},
        {jsonKey("method"), hasRule ? QJsonValue(slot.method->word) : QJsonValue::Null},
        {jsonKey("ruleLine"), hasRule ? QJsonValue(slot.ruleLine) : QJsonValue::Null},
    };
}

} // namespace

void JsonReport::begin()
{
    writeLine("{" + jsonMember("format", kFormat) + "," +
              jsonMember("version", jsonKey(TOOL_VERSION)) + "," +
              jsonMember("endMonth", m_options.endMonth) + "," +
              jsonMember("control", textOrNull(m_options.controlPath)) + ",");
    writeLine("\"files\":[");
}

void JsonReport::fileBegun()
{
    writeLine(commaAfterFirst(m_hasFile) + "{" + jsonMember("file", names().file) + ",");
    writeLine("\"findings\":[");
    m_hasFinding = false;
}

void JsonReport::add(const Finding& finding)
{
    writeFinding(finding, names().file);
}

void JsonReport::writeFinding(const Finding& finding, const QString& file)
{
    const QJsonObject object{
        {jsonKey("file"), file},
        {jsonKey("line"), finding.line},
        {jsonKey("severity"), jsonKey(severityName(finding.severity()))},
        {jsonKey("code"), jsonKey(finding.code())},
        {jsonKey("text"), finding.text},
    };
    writeLine(commaAfterFirst(m_hasFinding) + jsonText(object));
}

void JsonReport::endFile(const CheckReport& report, const FindingList* /*control*/, int exitCode)
{
    writeRest(report, conversionOf(report), QJsonValue::Null, exitCode);
    if (names().control.isEmpty())
        writeLine(jsonMember("plan", QJsonValue::Null) + "}");
    else
        writePlan(report);
}

void JsonReport::endUnreadable(const QString& problem, int exitCode)
{
    writeRest({}, QJsonValue::Null, problem, exitCode);
    writeLine(jsonMember("plan", QJsonValue::Null) + "}");
}

// All but the plan.
void JsonReport::writeRest(const CheckReport& report, const QJsonValue& conversion,
                           const QJsonValue& problem, int exitCode)
{
    const FindingList& findings = report.findings;
    writeLine("],");
    writeLine(jsonMember("problem", problem) + "," + jsonMember("exitCode", exitCode) + "," +
              jsonMember("runs", report.runCount) + "," + jsonMember("slots", report.slotCount) +
              "," + jsonMember("errors", findings.count(Severity::Error)) + "," +
              jsonMember("warnings", findings.count(Severity::Warning)) + "," +
              jsonMember("notes", findings.count(Severity::Note)) + "," +
              jsonMember("counts", countsOf(findings)) + "," +
              jsonMember("conversion", conversion) + ",");
}

void JsonReport::writePlan(const CheckReport& report)
{
    writeLine("\"plan\":{" + jsonMember("years", yearsOf(report.years)) + ",\"slots\":[");
    bool hasSlot = false;
    for (const PlannedSlot& slot : report.slotPlan)
        writeLine(commaAfterFirst(hasSlot) + jsonText(slotOf(slot)));
    writeLine("]}}");
}

void JsonReport::end(const FindingList& control, int exitCode)
{
    writeLine("],");
    writeLine("\"controlFindings\":[");
    m_hasFinding = false;
    for (const Finding& finding : control.sorted())
        writeFinding(finding, m_options.controlPath);
    writeLine("],");
    writeLine(jsonMember("controlCounts", countsOf(control)) + "," +
              jsonMember("exitCode", exitCode) + "}");
}
