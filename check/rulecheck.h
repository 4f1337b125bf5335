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
namespace UtilsNS {
class CheckedFile;
}

// What a conversion does with one slot.
struct PlannedSlot
{
    QString name; // "Object.Slot"
    bool isSeries = false;
    const AggMethod* method = nullptr; // null without a rule
    qint64 ruleLine = 0;               // of the control file; 0 without a rule

    bool isConverted() const { return isSeries && method != nullptr && method->isSupported(); }
};

// The rules of a control file with their line numbers, and the slots to which each of them applies.
//
//     RuleCheck rules(findings);
//     rules.read(controlPath);
//     for (...)
//         rules.addSlot(slot, line);   // the slots of the first run
//     rules.finish();                  // reports rules without an effect
class RuleCheck
{
public:
    explicit RuleCheck(Findings& findings) : m_findings(findings) {}

    // Reads the control file at `path`. A file that cannot be read, or a line that is not a rule,
    // is a finding, and there are then no rules.
    void read(const QString& path);

    // Finds the rule for a slot, whose preamble begins on `line` of the HTS file.
    const PlannedSlot& addSlot(const HtsSlot& slot, qint64 line);
    // Reports the rules that apply to no slot. To be called after the last slot of the first run.
    void finish();

    const std::vector<PlannedSlot>& plan() const { return m_plan; }

private:
    struct Rule
    {
        QString object;
        QString slot;
        const AggMethod* method = nullptr;
        qint64 line = 0;
        bool isUtf8 = true; // otherwise the names have U+FFFD for some bytes
        // Index of the first rule for the same object and slot; -1 if it is this one.
        int sameAs = -1;
        bool matchesSlot = false; // of any type
        bool matchesSeries = false;
        bool isUsed = false;
        int shadowedBy = -1; // index of an earlier, not more specific rule that applies instead
        int replacedBy = -1; // index of an earlier, more specific rule that applies instead
    };

    int ruleFor(const QString& object, const QString& slot) const;
    std::vector<int> rulesFor(const HtsSlot& slot) const;
    bool readRules(UtilsNS::CheckedFile& file);
    void reportUnreadable(const QString& reason);
    void addRule(const Rule& rule);
    void noteOthers(const std::vector<int>& matching, int used, const HtsSlot& slot);
    void reportSlot(const PlannedSlot& planned, const HtsSlot& slot, qint64 line);
    void reportRule(const Rule& rule);
    void reportUnmatched(const Rule& rule);
    QString textOf(const Rule& rule) const;
    QString nearestName(const Rule& rule) const;

    Findings& m_findings;
    bool m_hasRules = false; // whether the control file was read and all its lines are rules
    std::vector<Rule> m_rules;
    QHash<QString, QHash<QString, int>> m_firstRules; // index of the first rule, by slot and object
    std::vector<PlannedSlot> m_plan;
    QSet<QString> m_types; // object types of the file, for the nearest name to an unmatched rule
};

#endif // CHECK_RULECHECK_H
