#include "check/control.h"
#include "check/topiccheck.h"

namespace {

constexpr FindingKind kNothingToConvert = {Severity::Error, "nothing-to-convert",
                                           "No series slot has a method.",
                                           "Write a rule for the slots that are to be converted."};
constexpr FindingKind kSlotWithoutRule = {Severity::Note, "slot-without-rule",
                                          "No rule fits a series slot; it is left out.",
                                          "Write a rule, if the slot is wanted."};
constexpr FindingKind kSalinity = {
    Severity::Note, "salinity",
    "A slot has the method `Salinity`, which is not supported; it is left out.",
    "Choose another method, if the slot is wanted."};
constexpr FindingKind kDottedObject = {
    Severity::Note, "dotted-object",
    "The name of an object has a dot, so that a rule can reach it by its object type or `*` only.",
    "Use the object type, or name the object without a dot."};

// Checks which slots have no method, and shows the slots to the check of the control file.
class MethodCheck : public TopicCheck
{
public:
    using TopicCheck::TopicCheck;

    void slotRead() override;
    void runEnded() override;
    void finish() override;

private:
    // Whether the slots of this run get their methods from a control file.
    bool isAssigning() const
    {
        return m_context.options.control != nullptr && m_context.walk.runIndex() == 0;
    }
    void reportSlot(const HtsSlot& slot);

    qint64 m_endOfRun = 0; // line of the last one so far
};

void MethodCheck::slotRead()
{
    if (!isAssigning())
        return;
    const HtsSlot& slot = m_context.walk.slot();
    m_context.options.control->noteSlot(slot, m_context.conversion.plans().constLast().rule);
    if (m_context.options.control->file().status.ok() && slot.isSeries())
        reportSlot(slot);
}

void MethodCheck::reportSlot(const HtsSlot& slot)
{
    const SlotPlan& plan = m_context.conversion.plans().constLast();
    const auto name = [&slot]() -> QString { return fullSlotName(slot.objectName, slot.slotName); };
    const qint64 line = m_context.lines.firstLine();
    if (slot.objectName.contains(QLatin1Char('.')))
        add(kDottedObject, line,
            "the object of %1 has a dot in its name: only its type or * can "
            "reach it, %2",
            name(), plan.method == nullptr ? "and no rule does" : "as a rule does");
    else if (plan.method == nullptr)
        add(kSlotWithoutRule, line, "no rule fits %1, which is left out", name());
    else if (!plan.method->isSupported())
        add(kSalinity, line, "%1 has the method %2, which is not supported, and is left out",
            name(), plan.methodWord);
}

void MethodCheck::runEnded()
{
    m_endOfRun = m_context.lineNumber();
    if (isAssigning())
        m_context.options.control->noteEndOfFirstRun();
}

void MethodCheck::finish()
{
    if (m_context.options.control != nullptr && m_endOfRun == 0)
        m_context.options.control->noteUnknownSlots();
    const Conversion& conversion = m_context.conversion;
    const bool isPlanned = m_context.walk.status().ok() && !m_context.walk.isTableWithoutEnd() &&
                           conversion.firstYears().status.ok();
    // A bad control file has been reported, with the same message.
    if (!isPlanned || conversion.annualizedCount() > 0 || !conversion.control().status.ok())
        return;
    // Not the reader's line: what follows the last run has been read too.
    add(kNothingToConvert, m_endOfRun, "%1%2",
        m_context.options.control != nullptr ? "no series slot has a method"
                                             : "the first run has no series slot",
        conversionFails(conversion.verdict().message));
}

} // namespace

const Topic& methodTopic()
{
    static const Topic kTopic = {
        "Methods",
        {&kNothingToConvert, &kSlotWithoutRule, &kSalinity, &kDottedObject},
        makeCheck<MethodCheck>};
    return kTopic;
}
