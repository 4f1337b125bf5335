#include <algorithm>
#include <vector>

#include "check/topiccheck.h"
#include "hts/htskeys.h"
#include "hts/quotedtext.h"
#include "hts/shareifequal.h"

namespace {

constexpr FindingKind kRunTiming = {
    Severity::Error, "run-timing",
    "A run has another `start:`, `end:` or number of timesteps than the first; such a file cannot "
    "be converted.",
    "Put the run in another file."};
constexpr FindingKind kRunSteps = {
    Severity::Warning, "run-steps",
    "A run has other timesteps than the first between the same ends; the years of the first are "
    "used for it.",
    "Put the run in another file."};
constexpr FindingKind kRunSlots = {
    Severity::Warning, "run-slots",
    "A run has another slot than the first run in the same place; the first run's slot gets its "
    "values.",
    "Put the slots of all runs in the same order."};
constexpr FindingKind kRunSlotCount = {Severity::Warning, "run-slot-count",
                                       "A run has more slots than the first; they are left out.",
                                       "Put the same slots in all runs."};
constexpr FindingKind kRunValues = {
    Severity::Error, "run-values",
    "A run has no slot, or one of another kind, in the place of a slot that is converted.",
    "Put the same slots in all runs."};
constexpr FindingKind kRunUnits = {
    Severity::Warning, "run-units",
    "A slot has other units or another scale than in the first run, whose header is used for all "
    "runs.",
    "Convert the values to one unit."};
constexpr FindingKind kOtherRunKeys = {
    Severity::Note, "run-keys",
    "A run has another `consecutive:`, `slot_set:`, `rule_set:` or `idx_sequential:` than the "
    "first, whose values the result has for all runs.",
    "Nothing, if the result of such a run is known by its place."};
constexpr FindingKind kEndRunLine = {Severity::Note, "end-run",
                                     "`END_RUN` has an empty line before it, or text after it.",
                                     "Remove the line or the text."};

// A run without "unit_quantity:" has steps of one unit.
int stepQuantity(const HtsRun& run)
{
    return std::max(run.unitQuantity, 1);
}

// A key of which the result has the first run's value for all runs: see setAnnualTiming().
struct CopiedKey
{
    QLatin1String key;
    QString (*valueOf)(const HtsRun& run);
};

const CopiedKey kCopiedKeys[] = {
    {QLatin1String("consecutive:"),
     [](const HtsRun& run) { return QString::number(run.consecutive); }},
    {QLatin1String("slot_set:"), [](const HtsRun& run) { return run.slotSet; }},
    {QLatin1String("rule_set:"), [](const HtsRun& run) { return run.ruleSet; }},
    {QLatin1String("idx_sequential:"),
     [](const HtsRun& run) { return QString::number(run.idxSequential); }},
};

// Compares later runs with the first, whose slots, headers and years a conversion uses for all of
// them. The values of a slot go to the slot of the first run in the same position.
class RunCheck : public LineCheck
{
public:
    using LineCheck::LineCheck;

    void runRead() override;
    void slotRead() override;
    void runEnded() override;
    void unexpectedLine(QLatin1String expected, std::string_view line) override;

private:
    // What later runs are compared with.
    struct FirstSlot
    {
        QString objectType;
        QString objectName;
        QString slotName;
        QString units;
        double scale = 0.0;
    };

    int runNumber() const { return m_context.walk.runIndex() + 1; }
    void addFirstSlot(const HtsSlot& slot);
    void reportTiming(const HtsRun& run);
    void compareSteps(const HtsRun& run);
    void compareUnit(const HtsRun& run);
    void compareName(const FirstSlot& first, const HtsSlot& slot);
    void compareHeader(const FirstSlot& first, const HtsSlot& slot);
    void compareKeys(const HtsRun& run);

    HtsRun m_first;
    std::vector<FirstSlot> m_slots;
    // Of the run at hand.
    bool m_isOrderReported = false;
    bool m_isCountReported = false;
};

void RunCheck::runRead()
{
    const HtsRun& run = m_context.walk.run();
    m_isOrderReported = false;
    m_isCountReported = false;
    if (m_context.walk.runIndex() == 0) {
        m_first = run;
    } else if (m_context.conversion.hasFirstTiming()) {
        compareSteps(run);
        compareKeys(run);
    } else if (m_context.conversion.annualizedCount() > 0) {
        reportTiming(run);
    }
}

void RunCheck::reportTiming(const HtsRun& run)
{
    const bool hasOtherStart = run.start != m_first.start;
    const bool hasOtherEnd = run.end != m_first.end;
    const qint64 startLine = m_context.lines.lineOf(kStartKey);
    const qint64 endLine = m_context.lines.lineOf(kEndKey);
    const char* what = hasOtherStart ? "\"start:\""
                       : hasOtherEnd ? "\"end:\""
                                     : "number of timesteps";
    const qint64 line = hasOtherStart && startLine > 0 ? startLine
                        : hasOtherEnd && endLine > 0   ? endLine
                                                       : m_context.lines.endLine();
    add(kRunTiming, line, "run %1 has another %2 than the first%3", runNumber(), what,
        conversionFails(m_context.conversion.timingFailure().message));
}

void RunCheck::compareSteps(const HtsRun& run)
{
    if (run.timesteps == m_first.timesteps) {
        compareUnit(run);
        return;
    }
    const auto differing = std::mismatch(run.timesteps.begin(), run.timesteps.end(),
                                         m_first.timesteps.begin(), m_first.timesteps.end());
    add(kRunSteps, m_context.lineOfStep(differing.first - run.timesteps.begin()),
        "run %1 has the timestep %2 where the first run has %3; the years of the first run are "
        "used",
        runNumber(), *differing.first, *differing.second);
}

void RunCheck::compareUnit(const HtsRun& run)
{
    if (run.timeStepUnit == m_first.timeStepUnit && stepQuantity(run) == stepQuantity(m_first))
        return;
    add(kRunSteps, m_context.lineOfRunKey(kUnitKey),
        "run %1 has steps of %2 %3 where the first run has steps of %4 %5; the years of the first "
        "run are used",
        runNumber(), stepQuantity(run), quoted(run.timeStepUnit), stepQuantity(m_first),
        quoted(m_first.timeStepUnit));
}

void RunCheck::compareKeys(const HtsRun& run)
{
    for (const CopiedKey& copied : kCopiedKeys) {
        const QString value = copied.valueOf(run);
        const QString first = copied.valueOf(m_first);
        if (value != first)
            add(kOtherRunKeys, m_context.lineOfRunKey(copied.key),
                "run %1 has %2 %3; the result has the first run's %4 for both", runNumber(),
                copied.key, quoted(value), quoted(first));
    }
}

void RunCheck::slotRead()
{
    const HtsSlot& slot = m_context.walk.slot();
    if (m_context.walk.runIndex() == 0) {
        addFirstSlot(slot);
        return;
    }
    const qint64 line = m_context.lines.firstLine();
    const auto index = static_cast<std::size_t>(m_context.walk.slotCount()) - 1;
    if (index < m_slots.size()) {
        compareName(m_slots[index], slot);
        compareHeader(m_slots[index], slot);
        const Status& status = m_context.conversion.outcome().status;
        if (!status.ok() && m_context.conversion.hasFirstTiming())
            add(kRunValues, line, "run %1 has a slot of another kind in the place of %2%3",
                runNumber(), fullSlotName(m_slots[index].objectName, m_slots[index].slotName),
                conversionFails(status.message));
    } else if (!m_isCountReported) {
        m_isCountReported = true;
        add(kRunSlotCount, line,
            "run %1 has more slots than the %2 of the first run; they are left "
            "out",
            runNumber(), m_slots.size());
    }
}

void RunCheck::addFirstSlot(const HtsSlot& slot)
{
    FirstSlot first{slot.objectType, slot.objectName, slot.slotName, slot.units.value(0),
                    slot.scales.value(0)};
    // Neighbouring slots mostly have the same texts.
    for (QString FirstSlot::*text : {&FirstSlot::objectType, &FirstSlot::objectName,
                                     &FirstSlot::slotName, &FirstSlot::units}) {
        if (!m_slots.empty())
            shareIfEqual(first.*text, m_slots.back().*text);
    }
    m_slots.push_back(first);
}

// Once for each run: if one slot is in another position, most are.
void RunCheck::compareName(const FirstSlot& first, const HtsSlot& slot)
{
    const bool isSame = slot.objectName == first.objectName && slot.slotName == first.slotName &&
                        slot.objectType == first.objectType;
    if (isSame || m_isOrderReported)
        return;
    m_isOrderReported = true;
    const qint64 line = m_context.lines.firstLine();
    const QString given = fullSlotName(slot.objectName, slot.slotName);
    const QString wanted = fullSlotName(first.objectName, first.slotName);
    if (given == wanted)
        add(kRunSlots, line, "run %1 has %2 with the object type %3 instead of %4", runNumber(),
            given, quoted(slot.objectType), quoted(first.objectType));
    else
        add(kRunSlots, line,
            "run %1 has %2 in the place of the first run's %3, which gets its "
            "values",
            runNumber(), given, wanted);
}

void RunCheck::compareHeader(const FirstSlot& first, const HtsSlot& slot)
{
    const QString units = slot.units.value(0);
    const double scale = slot.scales.value(0);
    const bool isSameScale = !(scale < first.scale) && !(scale > first.scale);
    if ((units == first.units && isSameScale) || m_isOrderReported)
        return;
    add(kRunUnits, m_context.lines.firstLine(),
        "run %1 has %2 in %3, scale %4, and the first run in %5, scale %6", runNumber(),
        fullSlotName(slot.objectName, slot.slotName), quoted(units), QString::number(scale),
        quoted(first.units), QString::number(first.scale));
}

void RunCheck::runEnded()
{
    const Conversion::SlotOutcome& lacking = m_context.conversion.outcome();
    if (lacking.status.ok() || !m_context.conversion.hasFirstTiming())
        return;
    const FirstSlot& first = m_slots[static_cast<std::size_t>(lacking.slot)];
    add(kRunValues, m_context.lineNumber(), "run %1 ends without the slot %2%3", runNumber(),
        fullSlotName(first.objectName, first.slotName), conversionFails(lacking.status.message));
}

void RunCheck::unexpectedLine(QLatin1String expected, std::string_view line)
{
    if (expected != kEndRun)
        return;
    m_context.recovery.expectStrayEndOfRun(line.empty());
    const qint64 number = m_context.lineNumber();
    if (line.empty())
        add(kEndRunLine, number, "empty line before \"END_RUN\"");
    else
        add(kEndRunLine, number, "text after \"END_RUN\": %1", quoted(line));
}

} // namespace

const Topic& runTopic()
{
    static const Topic kTopic = {"Runs",
                                 {&kRunTiming, &kRunSteps, &kRunSlots, &kRunSlotCount, &kRunValues,
                                  &kRunUnits, &kOtherRunKeys, &kEndRunLine},
                                 makeCheck<RunCheck>};
    return kTopic;
}
