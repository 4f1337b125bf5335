#ifndef ANNUALIZE_METHODCONTROL_H
#define ANNUALIZE_METHODCONTROL_H

#include <string_view>

#include <QHash>
#include <QPair>
#include <QString>

#include "hts/htsslot.h"
#include "hts/status.h"

class QIODevice;
struct AggMethod;

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
    struct Rule
    {
        int order; // place in the file, counted from 0
        const AggMethod* method;
    };
    using Name = QPair<QString, QString>; // object, slot

    Status readRule(std::string_view line);

    // Only the first rule of each name; a later one can't come to bear.
    QHash<Name, Rule> m_rules;
    // Whether there is a rule for "*", so that slots need not be looked up under it.
    bool m_hasAnyObject = false;
    bool m_hasAnySlot = false;
};

#endif // ANNUALIZE_METHODCONTROL_H
