#include "check/rules.h"

#include <algorithm>

#include "check/nearwords.h"
#include "check/topic.h"
#include "hts/linetext.h"
#include "hts/quotedtext.h"

namespace {

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

const QLatin1String kNotUtf8(" contains bytes that are not UTF-8, ");

// How specific a rule is for a slot: first by its object (the name, the type, any), then by its
// slot (the name, any).
int specificity(const MethodRule& rule, const HtsSlot& slot)
{
    const int ofObject = rule.object == "*" ? 0 : toText(rule.object) == slot.objectName ? 2 : 1;
    return 2 * ofObject + (rule.slot == "*" ? 0 : 1);
}

} // namespace

const Topic& ruleTopic()
{
    static const Topic kTopic = {
        "Rules",
        {&kRuleEncoding, &kRuleUnmatched, &kRuleShadowed, &kRuleIdle, &kRuleOnOtherSlot},
        makeCheck<TopicCheck>};
    return kTopic;
}

std::size_t indexOfRule(const std::vector<RuleLine>& lines, RuleId rule)
{
    const auto line =
        std::lower_bound(lines.begin(), lines.end(), rule,
                         [](const RuleLine& a, RuleId wanted) { return a.rule < wanted; });
    Q_ASSERT(line != lines.end() && line->rule == rule);
    return static_cast<std::size_t>(line - lines.begin());
}

RuleUses::RuleUses(const MethodControl& rules, const std::vector<RuleLine>& lines)
    : m_rules(rules), m_lines(lines), m_uses(lines.size())
{
}

void RuleUses::noteSlot(const HtsSlot& slot, RuleId used)
{
    m_types.insert(slot.objectType);
    for (const RuleId rule : m_rules.matchingRules(slot)) {
        Use& use = m_uses[indexOfRule(m_lines, rule)];
        use.matchesSlot = true;
        use.matchesSeries = use.matchesSeries || slot.isSeries();
        if (rule == used)
            use.isUsed = true;
        else if (specificity(m_rules.ruleAt(rule), slot) < specificity(m_rules.ruleAt(used), slot))
            use.replacedBy = used;
        else
            use.shadowedBy = used;
    }
}

void RuleUses::noteNames(const QVector<SlotPlan>& plans)
{
    for (const SlotPlan& plan : plans)
        m_names.push_back({plan.objectName, plan.slotName});
}

void RuleUses::report(FindingList& findings) const
{
    for (const RuleLine& line : m_lines)
        reportRule(line, findings);
}

QString RuleUses::textOf(RuleId rule) const
{
    const MethodRule names = m_rules.ruleAt(rule);
    return quoted(fullSlotName(toText(names.object), toText(names.slot)) + QLatin1String(": ") +
                  names.method->word);
}

void RuleUses::reportRule(const RuleLine& line, FindingList& findings) const
{
    const RuleId first = m_rules.firstLike(line.rule);
    const bool isRepeated = first != line.rule;
    const Use& use = useOf(first);
    if (!use.matchesSlot) {
        reportUnmatched(line, findings);
        return;
    }
    if (!line.isUtf8)
        findings.add(kRuleEncoding, line.number, "%1%2%3", textOf(line.rule), kNotUtf8,
                     "which fit any others in their place");
    if (isRepeated || !use.isUsed)
        reportUnused(line, use, isRepeated ? first : use.shadowedBy, findings);
    else if (!use.matchesSeries)
        findings.add(kRuleOnOtherSlot, line.number,
                     "%1 fits only table or scalar slots, which are left out", textOf(line.rule));
}

void RuleUses::reportUnused(const RuleLine& line, const Use& use, RuleId shadowedBy,
                            FindingList& findings) const
{
    if (shadowedBy != kNoRule)
        findings.add(kRuleShadowed, line.number,
                     "%1 is never used, because %2 of line %3 applies first", textOf(line.rule),
                     textOf(shadowedBy), lineOf(shadowedBy));
    else
        findings.add(kRuleIdle, line.number,
                     "%1 is never used: rules such as %2 of line %3 apply to all its slots",
                     textOf(line.rule), textOf(use.replacedBy), lineOf(use.replacedBy));
}

void RuleUses::reportUnmatched(const RuleLine& line, FindingList& findings) const
{
    findings.add(line.isUtf8 ? kRuleUnmatched : kRuleEncoding, line.number, [&]() -> QString {
        const QString nearest = nearestName(line.rule);
        return worded("%1%2 fits no slot%3", textOf(line.rule),
                      line.isUtf8 ? QString() : kNotUtf8 + QLatin1String("and"),
                      nearest.isEmpty() ? QString()
                                        : worded("; the nearest is %1", quoted(nearest)));
    });
}

// The slot or type name of the file that is nearest to the names of the rule; empty if none is
// near.
QString RuleUses::nearestName(RuleId rule) const
{
    const MethodRule names = m_rules.ruleAt(rule);
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
    for (const SlotName& name : m_names)
        compare(fullSlotName(names.object == "*" ? object : name.object,
                             names.slot == "*" && names.object != "*" ? slot : name.slot));
    for (const QString& type : m_types)
        compare(fullSlotName(type, slot));
    return nearest;
}
