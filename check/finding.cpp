#include "check/finding.h"

#include "check/nearwords.h"
#include "check/topic.h"

const char* severityName(Severity severity)
{
    switch (severity) {
    case Severity::Note:
        return "note";
    case Severity::Warning:
        return "warning";
    case Severity::Error:
        break;
    }
    return "error";
}

const std::vector<const Topic*>& findingTopics()
{
    static const std::vector<const Topic*> kTopics = {
        &fileKindTopic(), &readingTopic(), &packageTopic(),  &preambleTopic(),    &slotTopic(),
        &valueTopic(),    &tableTopic(),   &timestepTopic(), &runTopic(),         &repeatTopic(),
        &controlTopic(),  &ruleTopic(),    &methodTopic(),   &annualValueTopic(),
    };
    return kTopics;
}

const FindingKind* findFindingKind(const QString& code)
{
    for (const Topic* topic : findingTopics()) {
        for (const FindingKind* kind : topic->kinds) {
            if (code == QLatin1String(kind->code))
                return kind;
        }
    }
    return nullptr;
}

const FindingKind* nearestFindingKind(const QString& code)
{
    const FindingKind* nearest = nullptr;
    int limit = static_cast<int>(code.size()) / 2;
    for (const Topic* topic : findingTopics()) {
        for (const FindingKind* kind : topic->kinds) {
            const int distance =
                editDistance(code.toLower(), QString::fromLatin1(kind->code), limit);
            if (distance <= limit) {
                nearest = kind;
                limit = distance - 1;
            }
        }
    }
    return nearest;
}

FindingKinds findingKindsFrom(Severity severity)
{
    FindingKinds kinds;
    for (const Topic* topic : findingTopics()) {
        for (const FindingKind* kind : topic->kinds) {
            if (kind->severity >= severity)
                kinds.insert(kind);
        }
    }
    return kinds;
}
