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
// all objects of that type. Of the rules that match a slot, the first in the file holds.
class MethodControl
{
public:
    // Reads a whole control file, open for reading. Blank lines are skipped; any other line that is
    // no rule ends the reading with a message that quotes it.
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
    // A place of the hash table, free unless it names a rule.
    struct Place
    {
        static constexpr int kFree = -1;
        quint32 hash = 0;
        int rule = kFree;
    };

    Status readRule(std::string_view line);
    Name append(const QString& name);
    QStringView text(const Name& name) const;
    // Index of the rule for that object and slot, whose hash is given; kNoRule when there is none.
    int find(QStringView object, QStringView slot, quint32 slotHash) const;
    Place& placeOf(quint32 hash, QStringView object, QStringView slot);
    const Place& placeOf(quint32 hash, QStringView object, QStringView slot) const;
    void grow();

    static constexpr int kNoRule = std::numeric_limits<int>::max();

    // In the order of the file; of each object and slot the first rule alone, since a later one
    // never applies.
    std::vector<Rule> m_rules;
    // A hash table over the rules. One of the toolkit or the standard library takes a piece of
    // memory for each rule, and a cache miss for each look-up of the many slots of a file.
    std::vector<Place> m_places; // a power of two of them, or none
    QString m_names;
    bool m_hasAnySlot = false; // rules for the slot "*"
    RepeatedText m_slotName;   // of the rule read last
};

#endif // ANNUALIZE_METHODCONTROL_H
