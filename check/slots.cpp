#include <algorithm>

#include "check/knownlines.h"
#include "check/nearwords.h"
#include "check/topiccheck.h"
#include "hts/htskeys.h"
#include "hts/quotedtext.h"

namespace {

constexpr FindingKind kNoObjectType = {Severity::Warning, "no-object-type",
                                       "A slot has no object type.",
                                       "Write the line `object_type: ` with a value."};
constexpr FindingKind kNoObjectName = {Severity::Warning, "no-object-name",
                                       "A slot has no object name.",
                                       "Write the line `object_name: ` with a value."};
constexpr FindingKind kNoSlotName = {Severity::Warning, "no-slot-name", "A slot has no slot name.",
                                     "Write the line `slot_name: ` with a value."};
constexpr FindingKind kNearSlotType = {
    Severity::Warning, "near-slot-type",
    "`slot_type: ` is nearly a known word; the slot is taken for one of a single value and left "
    "out.",
    "Write `SeriesSlot`, `TableSlot` or `ScalarSlot`."};
constexpr FindingKind kUnknownSlotType = {
    Severity::Note, "unknown-slot-type",
    "`slot_type: ` is not a known word; the slot is taken for one of a single value.",
    "Nothing, if that is so."};
constexpr FindingKind kMethodKey = {
    Severity::Note, "method-key",
    "A line that begins with the letter m but not with `method: ` is taken for the method line.",
    "Write the key as the format has it."};

// Checks names, type and method line of each slot.
class SlotCheck : public LineCheck
{
public:
    using LineCheck::LineCheck;

    void slotPreambleRead(const HtsSlot& slot) override;
    void unexpectedLine(QLatin1String expected, std::string_view line) override;

private:
    void checkName(const FindingKind& kind, QLatin1String key, const QString& value);
    void checkType(const QString& type);
};

void SlotCheck::slotPreambleRead(const HtsSlot& slot)
{
    if (m_context.recovery.isInSync()) {
        checkName(kNoObjectType, kObjectTypeKey, slot.objectType);
        checkName(kNoObjectName, kObjectNameKey, slot.objectName);
        checkName(kNoSlotName, kSlotNameKey, slot.slotName);
    }
    m_context.recovery.slotPreambleRead();
    checkType(slot.slotType);
}

void SlotCheck::checkName(const FindingKind& kind, QLatin1String key, const QString& value)
{
    if (!value.isEmpty() || m_context.lines.hasNear(key))
        return;
    const qint64 emptyLine = m_context.lines.lineOf(key);
    add(kind, emptyLine > 0 ? emptyLine : m_context.lineNumber(), "the slot has no \"%1\"",
        keyName(key));
}

void SlotCheck::checkType(const QString& type)
{
    static const std::vector<QLatin1String> kTypes = {
        QLatin1String("SeriesSlot"), QLatin1String("TableSlot"), QLatin1String("ScalarSlot")};
    if (type.isEmpty() || std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end())
        return;
    const qint64 line = m_context.lines.lineOf(kSlotTypeKey);
    const QLatin1String near = nearestWord(type, kTypes);
    if (near.isEmpty())
        add(kUnknownSlotType, line, "slot type %1 is not known; the slot has one value",
            quoted(type));
    else
        add(kNearSlotType, line,
            "slot type %1 is nearly \"%2\"; the slot is taken for one of a "
            "single value and left out",
            quoted(type), near);
}

void SlotCheck::unexpectedLine(QLatin1String expected, std::string_view line)
{
    if (expected == kMethodLine.key)
        add(kMethodKey, m_context.lineNumber(), "%1 is taken for the method line", quoted(line));
}

} // namespace

const Topic& slotTopic()
{
    static const Topic kTopic = {"Slots",
                                 {&kNoObjectType, &kNoObjectName, &kNoSlotName, &kNearSlotType,
                                  &kUnknownSlotType, &kMethodKey},
                                 makeCheck<SlotCheck>};
    return kTopic;
}
