#ifndef CHECK_RULES_H
#define CHECK_RULES_H

#include <cstddef>
#include <map>
#include <vector>

#include <QString>
#include <QtGlobal>

#include "annualize/methodcontrol.h"
#include "check/nearnames.h"

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

    // As those of ControlCheck.
    void noteSlot(const HtsSlot& slot, RuleId used);
    void noteEndOfFirstRun();

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

    struct SlotName
    {
        QString object;
        QString type;
        QString slot;
    };
    // What rules could be for, in all files.
    enum class Names {
        OfSlots,     // "Object.Slot" and "Type.Slot"
        OfAnyObject, // "*.Slot"
        OfAnySlot,   // "Object.*" and "Type.*"
    };

    const Use& useOf(RuleId rule) const { return m_uses[indexOfRule(m_lines, rule)]; }
    qint64 lineOf(RuleId rule) const { return m_lines[indexOfRule(m_lines, rule)].number; }
    void reportMatched(const RuleLine& line, FindingList& findings) const;
    void reportUnmatched(const RuleLine& line, qint64& effort, FindingList& findings) const;
    void reportUnused(const RuleLine& line, const Use& use, RuleId shadowedBy,
                      FindingList& findings) const;
    QString textOf(RuleId rule) const;
    static Names namesFor(const MethodRule& rule);
    void noteNames(const SlotName& slot, Names names);

    const MethodControl& m_rules;
    const std::vector<RuleLine>& m_lines;
    std::vector<Use> m_uses;       // one for each rule
    std::vector<SlotName> m_slots; // of the run at hand
    std::map<Names, NearNames> m_names;
};

#endif // CHECK_RULES_H
