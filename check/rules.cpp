#include "check/rules.h"

#include <algorithm>
#include <set>

#include "check/findinglist.h"
#include "check/topiccheck.h"
#include "hts/linetext.h"
#include "hts/quotedtext.h"

namespace {

constexpr FindingKind kRuleEncoding = {
    Severity::Warning, "rule-encoding",
    "A rule contains bytes that are not UTF-8; each counts as U+FFFD, and so fits any other such "
    "byte.",
    "Save the control file as UTF-8, and the HTS file too."};
constexpr FindingKind kRuleUnmatched = {Severity::Warning, "rule-unmatched",
                                        "A rule fits no slot of all files that are checked, but a "
                                        "name that it may be meant for is near; "
                                        "or a `*` is only a part of a name.",
                                        "Write the names as the file has them, letter case "
                                        "included; a `*` stands alone, for all objects "
                                        "or slots."};
constexpr FindingKind kRuleWithoutSlot = {
    Severity::Note, "rule-without-slot",
    "A rule fits no slot of all files that are checked, and no name is near.",
    "Nothing, if the control file is for other files too."};
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

bool hasPartialWildcard(std::string_view name)
{
    return name != "*" && name.find('*') != std::string_view::npos;
}

} // namespace

const Topic& ruleTopic()
{
    static const Topic kTopic = {"Rules",
                                 {&kRuleEncoding, &kRuleUnmatched, &kRuleWithoutSlot,
                                  &kRuleShadowed, &kRuleIdle, &kRuleOnOtherSlot},
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
    m_slots.push_back({slot.objectName, slot.objectType, slot.slotName});
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

// The names are kept only for rules that fit no slot so far: there may be many.
void RuleUses::noteEndOfFirstRun()
{
    std::set<Names> wanted;
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        if (!m_uses[i].matchesSlot)
            wanted.insert(namesFor(m_rules.ruleAt(m_lines[i].rule)));
    }
    for (const Names names : wanted) {
        for (const SlotName& slot : m_slots)
            noteNames(slot, names);
        m_names[names].sort();
    }
    m_slots.clear();
}

void RuleUses::noteNames(const SlotName& slot, Names names)
{
    const QString any(QLatin1Char('*'));
    if (names == Names::OfAnyObject) {
        m_names[names].add(fullSlotName(any, slot.slot));
        return;
    }
    for (const QString& object : {slot.object, slot.type}) {
        if (!object.isEmpty()) // for which there can be no rule
            m_names[names].add(fullSlotName(object, names == Names::OfAnySlot ? any : slot.slot));
    }
}

void RuleUses::report(FindingList& findings) const
{
    // Takes less than a second, however many rules and names there are.
    qint64 effort = qint64(50) * 1000 * 1000;
    for (const RuleLine& line : m_lines) {
        if (useOf(m_rules.firstLike(line.rule)).matchesSlot)
            reportMatched(line, findings);
        else
            reportUnmatched(line, effort, findings);
    }
}

QString RuleUses::textOf(RuleId rule) const
{
    const MethodRule names = m_rules.ruleAt(rule);
    return quoted(fullSlotName(toText(names.object), toText(names.slot)) + QLatin1String(": ") +
                  names.method->word);
}

void RuleUses::reportMatched(const RuleLine& line, FindingList& findings) const
{
    const RuleId first = m_rules.firstLike(line.rule);
    const bool isRepeated = first != line.rule;
    const Use& use = useOf(first);
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

void RuleUses::reportUnmatched(const RuleLine& line, qint64& effort, FindingList& findings) const
{
    const MethodRule rule = m_rules.ruleAt(line.rule);
    const QString name = fullSlotName(toText(rule.object), toText(rule.slot));
    const bool isPartial = hasPartialWildcard(rule.object) || hasPartialWildcard(rule.slot);
    static const NearNames kNone;
    const auto found = m_names.find(namesFor(rule));
    const NearNames& names = found == m_names.end() ? kNone : found->second;
    const auto text = [&]() -> QString {
        const QString nearest = isPartial ? QString() : names.nearest(name);
        const QString reason = !nearest.isEmpty() ? worded("; the nearest is %1", quoted(nearest))
                               : isPartial
                                   ? QStringLiteral(": a * stands alone, for all objects or slots")
                                   : QString();
        return worded("%1%2 fits no slot%3", textOf(line.rule),
                      line.isUtf8 ? QString() : kNotUtf8 + QLatin1String("and"), reason);
    };
    if (!line.isUtf8)
        findings.add(kRuleEncoding, line.number, text);
    else if (isPartial || names.hasNear(name, effort))
        findings.add(kRuleUnmatched, line.number, text);
    else
        findings.add(kRuleWithoutSlot, line.number, "%1 fits no slot", textOf(line.rule));
}

RuleUses::Names RuleUses::namesFor(const MethodRule& rule)
{
    if (rule.object == "*")
        return Names::OfAnyObject;
    return rule.slot == "*" ? Names::OfAnySlot : Names::OfSlots;
}
