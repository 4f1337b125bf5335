#ifndef ANNUALIZE_METHODCONTROL_H
#define ANNUALIZE_METHODCONTROL_H

#include <limits>
#include <string_view>
#include <vector>

#include <QString>
#include <QStringView>

#include "hts/htsslot.h"
#include "hts/linetext.h"
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
    // Reads a whole control file, open for reading. Blank lines are skipped; reading fails at any
    // other line that is not a rule, with a message that quotes it.
    Status read(QIODevice& device);

    // The method word that the rules give to the slot, in canonical case (see aggmethods.h), or an
    // empty text when no rule matches.
    QString methodFor(const HtsSlot& slot) const;

private:
    // A part of m_names.
    struct Name
    {
        int position = 0;
        int size = 0;
    };
    struct Rule
    {
        Name object;
        Name slot;
        const AggMethod* method = nullptr;
    };
    // An entry of the hash table.
    struct Bucket
    {
        static constexpr int kFree = -1;
        quint32 hash = 0;
        int rule = kFree; // index in m_rules
    };

    Status readRule(std::string_view line);
    Name append(std::string_view name);
    QStringView text(const Name& name) const
    {
        return {m_names.constData() + name.position, name.size};
    }
    // Index of the rule for that object and slot, whose hash is given; kNoRule when there is none.
    int find(QStringView object, QStringView slot, quint32 slotHash) const;
    Bucket& bucketOf(quint32 hash, QStringView object, QStringView slot);
    const Bucket& bucketOf(quint32 hash, QStringView object, QStringView slot) const;
    void grow();

    static constexpr int kNoRule = std::numeric_limits<int>::max();

    // In the order of the file. Of several rules for the same object and slot only the first is
    // kept: a later one never applies.
    std::vector<Rule> m_rules;
    // A hash table over the rules. Those of the toolkit and the standard library allocate memory
    // for each rule, which costs a cache miss at each look-up, and a file has many slots.
    std::vector<Bucket> m_buckets; // the size is a power of two, or 0
    QString m_names;
    bool m_hasRuleForAnySlot = false; // whether a rule is for the slot "*"
    RepeatedText m_slotName;          // of the rule read last
};

#endif // ANNUALIZE_METHODCONTROL_H
