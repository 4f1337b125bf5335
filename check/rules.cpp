#include <algorithm>
#include <set>
#include <vector>

#include "check/nearwords.h"
#include "check/topic.h"
#include "hts/linetext.h"
#include "hts/quotedtext.h"

namespace {

constexpr FindingKind kNothingToConvert = {Severity::Error, "nothing-to-convert",
                                           "No series slot has a method.",
                                           "Write a rule for the slots that are to be converted."};
constexpr FindingKind kRuleEncoding = {
    Severity::Warning, "rule-encoding",
    "A rule contains bytes that are not UTF-8; each counts as U+FFFD, and so fits any other such "
    "byte.",
    "Save the control file as UTF-8, and the HTS file too."};
constexpr FindingKind kRuleUnmatched = {
    Severity::Warning, "rule-unmatched", "A rule fits no slot.",
    "Write the names as the file has them, letter case included."};
constexpr FindingKind kRuleShadowed = {
    Severity::Warning, "rule-shadowed",
    "A rule is never used, because an earlier one that is not more specific applies to all its "
    "slots.",
    "Put the specific rule first."};
constexpr FindingKind kRuleIdle = {
    Severity::Note, "rule-idle",
    "A rule is never used, because more specific ones apply to all its slots.",
    "Nothing, if that is meant."};
constexpr FindingKind kRuleOnOtherSlot = {
    Severity::Note, "rule-on-other-slot",
    "A rule fits only slots that are not series; they are left out.", "Remove the rule."};
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

const QLatin1String kNotUtf8(" contains bytes that are not UTF-8, ");

// How specific a rule is for a slot: first by its object (the name, the type, any), then by its
// slot (the name, any).
int specificity(const MethodRule& rule, const HtsSlot& slot)
{
    const int ofObject = rule.object == "*" ? 0 : toText(rule.object) == slot.objectName ? 2 : 1;
    return 2 * ofObject + (rule.slot == "*" ? 0 : 1);
}

// Checks which slots the rules of a control file apply to, and which rules apply to none.
class RuleCheck : public TopicCheck
{
public:
    using TopicCheck::TopicCheck;

    void slotRead() override;
    void runEnded() override;
    void finish() override;

private:
    // What a rule does.
    struct Use
    {
        RuleId shadowedBy = kNoRule; // an earlier, not more specific rule that applies instead
        RuleId replacedBy = kNoRule; // an earlier, more specific rule that applies instead
        bool matchesSlot = false;    // of any type
        bool matchesSeries = false;
        bool isUsed = false;
    };

    bool isChecked() const; // this run
    const MethodControl& rules() const { return m_context.conversion.control().rules; }
    Use& useOf(RuleId rule) { return m_uses[indexOfRule(*m_context.ruleLines, rule)]; }
    qint64 lineOf(RuleId rule) const { return lineOfRule(*m_context.ruleLines, rule); }
    void noteMatches(const HtsSlot& slot);
    void reportSlot(const HtsSlot& slot);
    void reportRule(const RuleLine& line);
    void reportUnmatched(const RuleLine& line);
    void reportUnused(const RuleLine& line, const Use& use, RuleId shadowedBy);
    QString textOf(RuleId rule) const;
    QString nearestName(RuleId rule) const;

    qint64 m_endOfRun = 0;     // line of the last one so far
    std::vector<Use> m_uses;   // one for each rule
    std::set<QString> m_types; // of the file's objects, for the nearest name
};

bool RuleCheck::isChecked() const
{
    return m_context.ruleLines != nullptr && m_context.walk.runIndex() == 0;
}

void RuleCheck::slotRead()
{
    if (!isChecked())
        return;
    const HtsSlot& slot = m_context.walk.slot();
    m_uses.resize(m_context.ruleLines->size());
    m_types.insert(slot.objectType);
    noteMatches(slot);
    if (m_context.conversion.control().status.ok() && slot.isSeries())
        reportSlot(slot);
}

void RuleCheck::noteMatches(const HtsSlot& slot)
{
    const RuleId used = m_context.conversion.plans().constLast().rule;
    for (const RuleId rule : rules().matchingRules(slot)) {
        Use& use = useOf(rule);
        use.matchesSlot = true;
        use.matchesSeries = use.matchesSeries || slot.isSeries();
        if (rule == used)
            use.isUsed = true;
        else if (specificity(rules().ruleAt(rule), slot) < specificity(rules().ruleAt(used), slot))
            use.replacedBy = used;
        else
            use.shadowedBy = used;
    }
}

void RuleCheck::reportSlot(const HtsSlot& slot)
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

// The rules only now: the slots after an error in the first run are not known.
void RuleCheck::runEnded()
{
    m_endOfRun = m_context.reader.lineNumber();
    if (!isChecked())
        return;
    m_uses.resize(m_context.ruleLines->size());
    for (const RuleLine& line : *m_context.ruleLines)
        reportRule(line);
}

void RuleCheck::finish()
{
    const Conversion& conversion = m_context.conversion;
    const bool isPlanned = m_context.walk.status().ok() && !m_context.walk.isTableWithoutEnd() &&
                           conversion.firstYears().status.ok();
    // A bad control file has been reported, with the same message.
    if (!isPlanned || conversion.annualizedCount() > 0 || !conversion.control().status.ok())
        return;
    // Not the reader's line: what follows the last run has been read too.
    add(kNothingToConvert, m_endOfRun, "%1%2",
        m_context.ruleLines != nullptr ? "no series slot has a method"
                                       : "the first run has no series slot",
        conversionFails(conversion.verdict().message));
}

QString RuleCheck::textOf(RuleId rule) const
{
    const MethodRule names = rules().ruleAt(rule);
    return quoted(fullSlotName(toText(names.object), toText(names.slot)) + QLatin1String(": ") +
                  names.method->word);
}

void RuleCheck::reportRule(const RuleLine& line)
{
    const RuleId first = rules().firstLike(line.rule);
    const bool isRepeated = first != line.rule;
    const Use& use = useOf(first);
    if (!use.matchesSlot) {
        reportUnmatched(line);
        return;
    }
    if (!line.isUtf8)
        m_context.findings.addToControl(kRuleEncoding, line.number, "%1%2%3", textOf(line.rule),
                                        kNotUtf8, "which fit any others in their place");
    if (isRepeated || !use.isUsed)
        reportUnused(line, use, isRepeated ? first : use.shadowedBy);
    else if (!use.matchesSeries)
        m_context.findings.addToControl(kRuleOnOtherSlot, line.number,
                                        "%1 fits only table or scalar slots, which are left out",
                                        textOf(line.rule));
}

void RuleCheck::reportUnused(const RuleLine& line, const Use& use, RuleId shadowedBy)
{
    if (shadowedBy != kNoRule)
        m_context.findings.addToControl(kRuleShadowed, line.number,
                                        "%1 is never used, because %2 of line %3 applies first",
                                        textOf(line.rule), textOf(shadowedBy), lineOf(shadowedBy));
    else
        m_context.findings.addToControl(
            kRuleIdle, line.number,
            "%1 is never used: rules such as %2 of line %3 apply to all its slots",
            textOf(line.rule), textOf(use.replacedBy), lineOf(use.replacedBy));
}

void RuleCheck::reportUnmatched(const RuleLine& line)
{
    m_context.findings.addToControl(
        line.isUtf8 ? kRuleUnmatched : kRuleEncoding, line.number, [&]() -> QString {
            const QString nearest = nearestName(line.rule);
            return worded("%1%2 fits no slot%3", textOf(line.rule),
                          line.isUtf8 ? QString() : kNotUtf8 + QLatin1String("and"),
                          nearest.isEmpty() ? QString()
                                            : worded("; the nearest is %1", quoted(nearest)));
        });
}

// The slot or type name of the file that is nearest to the names of the rule; empty if none is
// near.
QString RuleCheck::nearestName(RuleId rule) const
{
    const MethodRule names = rules().ruleAt(rule);
    const QString object = toText(names.object);
    const QString slot = toText(names.slot);
    const QString wanted = fullSlotName(object, slot);
    constexpr int kMaxDistance = 4;
    int best = std::min(kMaxDistance, wanted.size() / 2) + 1;
    QString nearest;
    const auto compare = [&](const QString& name) {
        // No rule can be for an empty name.
        if (best == 0 || name.startsWith(QLatin1Char('.')))
            return;
        // A name that differs only in letter case is the nearest.
        const bool isSameButCase = name.compare(wanted, Qt::CaseInsensitive) == 0;
        const int distance = isSameButCase ? 0 : editDistance(wanted, name, best - 1);
        if (distance < best) {
            best = distance;
            nearest = name;
        }
    };
    for (const SlotPlan& plan : m_context.conversion.plans())
        compare(fullSlotName(names.object == "*" ? object : plan.objectName,
                             names.slot == "*" && names.object != "*" ? slot : plan.slotName));
    for (const QString& type : m_types)
        compare(fullSlotName(type, slot));
    return nearest;
}

} // namespace

const Topic& ruleTopic()
{
    static const Topic kTopic = {"Rules",
                                 {&kNothingToConvert, &kRuleEncoding, &kRuleUnmatched,
                                  &kRuleShadowed, &kRuleIdle, &kRuleOnOtherSlot, &kSlotWithoutRule,
                                  &kSalinity, &kDottedObject},
                                 makeCheck<RuleCheck>};
    return kTopic;
}
