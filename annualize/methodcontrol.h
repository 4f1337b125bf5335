#ifndef ANNUALIZE_METHODCONTROL_H
#define ANNUALIZE_METHODCONTROL_H

#include <limits>
#include <string_view>
#include <vector>

#include <QByteArray>
#include <QString>

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

// Reads a rule from a line of a control file, which is stripped and not empty. Fails with a message
// that quotes the line; the rule is then unchanged.
Status parseMethodRule(std::string_view line, MethodRule& rule);

// The rules of a method control file: which aggregation method each slot gets. A rule is a line
// "Object.Slot: method". Object or slot may be "*" for all; the object may be an object type, for
// all objects of that type. Of the rules that match a slot, the first in the file applies.
class MethodControl
{
public:
    // Reads a whole control file, open for reading. Blank lines are skipped; reading ends at any
    // other line that is not a rule, and fails with a message that quotes it: there are then no
    // rules. To be called once. Throws std::bad_alloc for 2 GiB of names.
    Status read(QIODevice& device);

    // The method word that the rules give to the slot, in canonical case (see aggmethods.h), or an
    // empty text when no rule matches.
    QString methodFor(const HtsSlot& slot) const;

private:
    // A position in m_rules; kNoRule if there is no rule.
    using Position = int;
    static constexpr Position kNoRule = std::numeric_limits<Position>::max();

    // The bytes of a name, as m_rules has them, and their hash.
    struct HashedName
    {
        explicit HashedName(std::string_view nameBytes);
        std::string_view bytes;
        std::size_t hash;
    };

    Status append(std::string_view line);
    void fillBuckets();
    // The first rule for that object and slot.
    Position find(const HashedName& object, const HashedName& slot) const;
    std::size_t bucketOf(const HashedName& object, const HashedName& slot) const;
    std::string_view namesAt(Position position) const;

    // The rules in the order of the file: the method as a byte, its index in the table; then the
    // names of object and slot, in UTF-8 and each with a line end, which no name holds.
    QByteArray m_rules;
    std::size_t m_ruleCount = 0;
    // A hash table of the first rules for each object and slot; empty until all have been read.
    // Those of the toolkit and the standard library allocate memory for each rule, which costs a
    // cache miss at each look-up, and a file has many slots.
    std::vector<Position> m_buckets;
    // Whether a rule is for "*".
    bool m_hasRuleForAnyObject = false;
    bool m_hasRuleForAnySlot = false;
};

#endif // ANNUALIZE_METHODCONTROL_H
