#ifndef CHECK_RULECHECK_H
#define CHECK_RULECHECK_H

#include <vector>

#include <QHash>
#include <QSet>
#include <QString>
#include <QtGlobal>

#include "annualize/aggmethods.h"
#include "hts/htsslot.h"

class Findings;

// What becomes of one slot in a conversion.
struct PlannedSlot
{
    QString name; // "Object.Slot"
    bool isSeries = false;
    const AggMethod* method = nullptr; // null without a rule
    qint64 ruleLine = 0;               // of the control file; 0 without a rule

    bool isConverted() const { return isSeries && method != nullptr && method->isSupported(); }
};

// The rules of a control file with their lines, and which slots each of them serves.
//
//     RuleCheck rules(findings);
//     rules.read(controlPath);
//     for (...)
//         rules.addSlot(slot, line);   // the slots of the first run
//     rules.finish();                  // what the rules come to
class RuleCheck
{
public:
    explicit RuleCheck(Findings& findings) : m_findings(findings) {}

    // Reads the control file at `path`. A file that cannot be read, or a line that is no rule, is a
    // finding and leaves no rules.
    void read(const QString& path);

    // Finds the rule for a slot, whose preamble begins on `line` of the HTS file.
    const PlannedSlot& addSlot(const HtsSlot& slot, qint64 line);
    // Reports the rules that serve no slot.
    void finish();

    const std::vector<PlannedSlot>& plan() const { return m_plan; }

private:
    struct Rule
    {
        QString object;
        QString slot;
        const AggMethod* method = nullptr;
        qint64 line = 0;
        int sameAs = -1;       // an earlier rule for the same object and slot
        bool fitsSlot = false; // of any kind
        bool fitsSeries = false;
        bool isUsed = false;
        int heldBack = -1; // by this rule, which is not more specific
        int servedBy = -1; // this more specific rule
    };

    int ruleFor(const QString& object, const QString& slot) const;
    std::vector<int> rulesFor(const HtsSlot& slot) const;
    void addRule(const Rule& rule);
    void noteOthers(const std::vector<int>& fitting, int used, const HtsSlot& slot);
    void reportSlot(const PlannedSlot& planned, const HtsSlot& slot, qint64 line);
    void reportRule(const Rule& rule);
    QString textOf(const Rule& rule) const;
    QString nearestName(const Rule& rule) const;

    Findings& m_findings;
    bool m_hasRules = false; // whether the control file was read without a fault
    std::vector<Rule> m_rules;
    QHash<QString, QHash<QString, int>> m_firstRules; // by slot and object
    std::vector<PlannedSlot> m_plan;
    QSet<QString> m_types; // object types of the file, for rules that fit none
};

#endif // CHECK_RULECHECK_H
