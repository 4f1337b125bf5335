#ifndef ANNUALIZE_METHODCONTROL_H
#define ANNUALIZE_METHODCONTROL_H

#include <string>
#include <string_view>

#include <QHash>
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
        int order = 0; // place in the file, counted from 0
        const AggMethod* method = nullptr;
    };
    using ObjectRules = QHash<QString, Rule>; // by object

    Status readRule(std::string_view line);

    // By slot name, of which there are few. Only the first rule of each object and slot; a later
    // one can't come to bear.
    QHash<QString, ObjectRules> m_rules;
    int m_ruleCount = 0;
    // The slot of the rule read last, which most rules share with the one before them.
    std::string m_slotBytes;
    QString m_slotName;
};

#endif // ANNUALIZE_METHODCONTROL_H
