#ifndef CHECK_RULES_H
#define CHECK_RULES_H

#include <cstddef>
#include <set>
#include <vector>

#include <QString>
#include <QVector>
#include <QtGlobal>

#include "annualize/methodcontrol.h"
#include "annualize/slotplan.h"

class FindingList;

// What the rules of a MethodControl do not keep of their lines.
struct RuleLine
{
    RuleId rule;
    bool isUtf8; // otherwise the names have U+FFFD for some bytes
    qint64 number;
};

// The lines are in the order of their rules. The index of a rule's line.
std::size_t indexOfRule(const std::vector<RuleLine>& lines, RuleId rule);

// Which slots the rules of a control file apply to, in all files that are checked with it, and
// which rules apply to none.
class RuleUses
{
public:
    // Both outlive the object.
    RuleUses(const MethodControl& rules, const std::vector<RuleLine>& lines);

    // As ControlCheck::noteSlot() and noteEndOfFirstRun().
    void noteSlot(const HtsSlot& slot, RuleId used);
    void noteNames(const QVector<SlotPlan>& plans);

    // Adds a finding for each rule that does nothing.
    void report(FindingList& findings) const;

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

    const Use& useOf(RuleId rule) const { return m_uses[indexOfRule(m_lines, rule)]; }
    qint64 lineOf(RuleId rule) const { return m_lines[indexOfRule(m_lines, rule)].number; }
    void reportRule(const RuleLine& line, FindingList& findings) const;
    void reportUnmatched(const RuleLine& line, FindingList& findings) const;
    void reportUnused(const RuleLine& line, const Use& use, RuleId shadowedBy,
                      FindingList& findings) const;
    QString textOf(RuleId rule) const;
    QString nearestName(RuleId rule) const;

    const MethodControl& m_rules;
    const std::vector<RuleLine>& m_lines;
    std::vector<Use> m_uses; // one for each rule
    // Names for the nearest one: the slots, each once and in the order of the files, and the types
    // of the objects.
    struct SlotName
    {
        QString object;
        QString slot;
    };
    std::vector<SlotName> m_names;
    std::set<QString> m_types;
};

#endif // CHECK_RULES_H
