#ifndef ANNUALIZE_METHODCONTROL_H
#define ANNUALIZE_METHODCONTROL_H

#include <limits>
#include <string_view>
#include <vector>

#include <QByteArray>
#include <QString>
#include <QVarLengthArray>

#include "hts/htsslot.h"
#include "hts/status.h"

class QIODevice;
struct AggMethod;

// One rule of a control file. The names are parts of the line that it was read from.
struct MethodRule
{
    std::string_view object; // "*" for all
    std::string_view slot;   // "*" for all
    const AggMethod* method = nullptr;
};

// Why a line of a control file is not a rule, in the order in which it is looked at.
enum class RuleFault { None, NoColon, NoMethod, UnknownMethod, NoDot, NoSlot, NoObject };

// Reads a rule from a line of a control file, which is stripped and not empty. The rule is
// unchanged if the line is none.
RuleFault parseMethodRule(std::string_view line, MethodRule& rule);

// The text that should be a method: what follows the last colon of a line, stripped; empty if there
// is no colon.
std::string_view methodWordOf(std::string_view line);

// What is wrong with a line, as the message of a conversion begins: "Method Control File Error:
// Colon not found in line".
QString ruleFaultText(RuleFault fault);

// A rule of a MethodControl, which is its position in m_rules. Rules are in the order of the file:
// an earlier one is less.
using RuleId = QByteArray::size_type;
constexpr RuleId kNoRule = std::numeric_limits<RuleId>::max();
// One for each combination of the object's name, its type and "*" with the slot's name and "*".
using MatchingRules = QVarLengthArray<RuleId, 6>;

// The rules of a method control file: which aggregation method each slot gets. A rule is a line
// "Object.Slot: method". Object or slot may be "*" for all; the object may be an object type, for
// all objects of that type. Of the rules that match a slot, the first in the file applies.
class MethodControl
{
public:
    // Sees the lines of a control file while it is read, with their numbers, counted from 1.
    class Observer
    {
    public:
        virtual ~Observer() = default;
        virtual void ruleRead(RuleId rule, qint64 lineNumber, std::string_view line) = 0;
        virtual void badLine(qint64 lineNumber, std::string_view line, RuleFault fault) = 0;
    };

    // Reads a whole control file, open for reading. Blank lines are skipped; any other line that is
    // not a rule makes it fail, with a message that quotes the first: there are then no rules.
    // Reading ends there, unless an observer wants the other lines too. To be called once. Throws
    // std::bad_alloc for 2 GiB of names.
    Status read(QIODevice& device, Observer* observer = nullptr);

    // The rule that applies to the slot: the first that matches it, or kNoRule.
    RuleId ruleFor(const HtsSlot& slot) const;
    // Its method word, in canonical case (see aggmethods.h); empty without a rule.
    QString methodFor(const HtsSlot& slot) const;

    const AggMethod& methodOf(RuleId rule) const;
    // The rule; its names are valid as long as the object.
    MethodRule ruleAt(RuleId rule) const;
    // The first rule for the same object and slot.
    RuleId firstLike(RuleId rule) const;
    // Of the rules that match the slot, the first for each combination of a name, a type and "*",
    // in no order; one is there twice if an object and its type have the same name.
    MatchingRules matchingRules(const HtsSlot& slot) const;

private:
    // The bytes of a name, as m_rules has them, and their hash.
    struct HashedName
    {
        explicit HashedName(std::string_view nameBytes);
        std::string_view bytes;
        std::size_t hash;
    };

    RuleId append(const MethodRule& rule);
    template<typename Take>
    void forEachMatch(const HtsSlot& slot, Take take) const;
    void fillBuckets();
    // The first rule for that object and slot.
    RuleId find(const HashedName& object, const HashedName& slot) const;
    std::size_t bucketOf(const HashedName& object, const HashedName& slot) const;
    std::string_view namesAt(RuleId rule) const;

    // The rules in the order of the file; the position of one is its RuleId: the method as a byte,
    // its index in the table; then the names of object and slot, in UTF-8 and each with a line end,
    // which no name holds.
    QByteArray m_rules;
    std::size_t m_ruleCount = 0;
    // A hash table of the first rules for each object and slot; empty until all have been read.
    // Those of the toolkit and the standard library allocate memory for each rule, which costs a
    // cache miss at each look-up, and a file has many slots.
    std::vector<RuleId> m_buckets;
    // Whether a rule is for "*".
    bool m_hasRuleForAnyObject = false;
    bool m_hasRuleForAnySlot = false;
};

#endif // ANNUALIZE_METHODCONTROL_H
