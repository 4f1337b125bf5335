#include "check/rulecheck.h"

#include <algorithm>

#include <QFile>

#include "annualize/methodcontrol.h"
#include "annualize/slotplan.h"
#include "check/findings.h"
#include "check/nearwords.h"
#include "check/quotedtext.h"
#include "hts/linereader.h"
#include "hts/linetext.h"

namespace {

const QString kAny = QStringLiteral("*");
const QLatin1String kNoSlots("No series slots with valid methods found in input HTS file");

// How closely a rule names a slot: the object by name, by type or not at all, then the slot.
int specificity(const QString& object, const QString& slotName, const HtsSlot& slot)
{
    const int ofObject = object == slot.objectName ? 2 : object == kAny ? 0 : 1;
    return 2 * ofObject + (slotName == kAny ? 0 : 1);
}

// The reason of a bad line without the line, which is on the next one: "Colon not found in line".
QString reasonOf(const QString& message)
{
    return message.section(QLatin1Char('\n'), 0, 0).trimmed();
}

} // namespace

void RuleCheck::read(const QString& path)
{
    QFile file(path);
    const bool isOpen = file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    const auto reportUnreadable = [&] {
        m_findings.addToControl(Code::ControlUnreadable, 1, [&]() -> QString {
            return QStringLiteral("the control file cannot be read: %1").arg(file.errorString()) +
                   conversionFails(kNoSlots);
        });
    };
    if (!isOpen) {
        reportUnreadable();
        return;
    }
    LineReader reader(file);
    while (!reader.atEnd()) {
        const std::string_view line = stripped(textBytes(reader.line()));
        if (line.empty())
            continue;
        MethodRule parsed;
        const Status status = parseMethodRule(line, parsed);
        if (!status.ok()) {
            m_findings.addToControl(Code::ControlLine, reader.lineNumber(), [&]() -> QString {
                return QStringLiteral("%1 %2: all rules are lost")
                           .arg(reasonOf(status.message), quoted(line)) +
                       conversionFails(kNoSlots);
            });
            m_rules.clear();
            m_firstRules.clear();
            return;
        }
        Rule rule;
        rule.object = toText(parsed.object);
        rule.slot = toText(parsed.slot);
        rule.method = parsed.method;
        rule.line = reader.lineNumber();
        addRule(rule);
    }
    m_hasRules = file.error() == QFileDevice::NoError;
    if (!m_hasRules) {
        m_rules.clear();
        m_firstRules.clear();
        reportUnreadable();
    }
}

void RuleCheck::addRule(const Rule& rule)
{
    const int index = static_cast<int>(m_rules.size());
    m_rules.push_back(rule);
    QHash<QString, int>& ofSlot = m_firstRules[rule.slot];
    const auto first = ofSlot.constFind(rule.object);
    if (first == ofSlot.constEnd())
        ofSlot.insert(rule.object, index);
    else
        m_rules.back().sameAs = *first;
}

// The first rule with exactly these names; -1 if there is none.
int RuleCheck::ruleFor(const QString& object, const QString& slot) const
{
    const auto ofSlot = m_firstRules.constFind(slot);
    return ofSlot == m_firstRules.constEnd() ? -1 : ofSlot->value(object, -1);
}

// The rules that fit a slot, in the order of the file.
std::vector<int> RuleCheck::rulesFor(const HtsSlot& slot) const
{
    std::vector<int> fitting;
    for (const QString* slotName : {&slot.slotName, &kAny}) {
        for (const QString* object : {&slot.objectName, &slot.objectType, &kAny}) {
            const int rule = ruleFor(*object, *slotName);
            if (rule >= 0)
                fitting.push_back(rule);
        }
    }
    std::sort(fitting.begin(), fitting.end());
    return fitting;
}

const PlannedSlot& RuleCheck::addSlot(const HtsSlot& slot, qint64 line)
{
    PlannedSlot planned;
    planned.name = fullSlotName(slot.objectName, slot.slotName);
    planned.isSeries = slot.isSeries();
    m_types.insert(slot.objectType);
    const std::vector<int> fitting = rulesFor(slot);
    if (!fitting.empty()) {
        const Rule& rule = m_rules[static_cast<std::size_t>(fitting.front())];
        planned.method = rule.method;
        planned.ruleLine = rule.line;
        noteOthers(fitting, fitting.front(), slot);
    }
    m_plan.push_back(planned);
    if (m_hasRules)
        reportSlot(m_plan.back(), slot, line);
    return m_plan.back();
}

void RuleCheck::noteOthers(const std::vector<int>& fitting, int used, const HtsSlot& slot)
{
    const Rule& usedRule = m_rules[static_cast<std::size_t>(used)];
    const int usedSpecificity = specificity(usedRule.object, usedRule.slot, slot);
    for (const int index : fitting) {
        Rule& rule = m_rules[static_cast<std::size_t>(index)];
        rule.fitsSlot = true;
        rule.fitsSeries = rule.fitsSeries || slot.isSeries();
        if (index == used)
            rule.isUsed = true;
        else if (specificity(rule.object, rule.slot, slot) < usedSpecificity)
            rule.servedBy = used;
        else
            rule.heldBack = used;
    }
}

void RuleCheck::reportSlot(const PlannedSlot& planned, const HtsSlot& slot, qint64 line)
{
    if (!planned.isSeries)
        return;
    if (slot.objectName.contains(QLatin1Char('.'))) {
        m_findings.add(Code::DottedObject, line, [&]() -> QString {
            return QStringLiteral("the object of %1 has a dot in its name: only its type or * can "
                                  "reach it, %2")
                .arg(planned.name, planned.method == nullptr ? QStringLiteral("and no rule does")
                                                             : QStringLiteral("as a rule does"));
        });
        return;
    }
    if (planned.method == nullptr) {
        m_findings.add(Code::SlotWithoutRule, line, [&]() -> QString {
            return QStringLiteral("no rule fits %1, which is left out").arg(planned.name);
        });
    } else if (!planned.method->isSupported()) {
        m_findings.add(Code::Salinity, line, [&]() -> QString {
            return QStringLiteral("%1 has the method %2, which is not supported, and is left out")
                .arg(planned.name, planned.method->word);
        });
    }
}

void RuleCheck::finish()
{
    for (const Rule& rule : m_rules)
        reportRule(rule);
}

QString RuleCheck::textOf(const Rule& rule) const
{
    return quoted(fullSlotName(rule.object, rule.slot) + QLatin1String(": ") + rule.method->word);
}

void RuleCheck::reportRule(const Rule& rule)
{
    const Rule& first = rule.sameAs < 0 ? rule : m_rules[static_cast<std::size_t>(rule.sameAs)];
    if (!first.fitsSlot) {
        m_findings.addToControl(Code::RuleUnmatched, rule.line, [&]() -> QString {
            const QString nearest = nearestName(rule);
            return textOf(rule) + QLatin1String(" fits no slot") +
                   (nearest.isEmpty() ? QString()
                                      : QStringLiteral("; the nearest is ") + quoted(nearest));
        });
        return;
    }
    const int holding = rule.sameAs >= 0 ? rule.sameAs : rule.heldBack;
    if ((rule.sameAs >= 0 || !rule.isUsed) && holding >= 0) {
        m_findings.addToControl(Code::RuleShadowed, rule.line, [&]() -> QString {
            const Rule& earlier = m_rules[static_cast<std::size_t>(holding)];
            return QStringLiteral("%1 never comes to bear, because %2 of line %3 holds before it")
                .arg(textOf(rule), textOf(earlier))
                .arg(earlier.line);
        });
    } else if (!rule.isUsed) {
        m_findings.addToControl(Code::RuleIdle, rule.line, [&]() -> QString {
            const Rule& earlier = m_rules[static_cast<std::size_t>(rule.servedBy)];
            return QStringLiteral("%1 never comes to bear: rules such as %2 of line %3 hold for "
                                  "all its slots")
                .arg(textOf(rule), textOf(earlier))
                .arg(earlier.line);
        });
    } else if (!rule.fitsSeries) {
        m_findings.addToControl(Code::RuleOnOtherSlot, rule.line, [&]() -> QString {
            return textOf(rule) + QLatin1String(" fits only table or scalar slots, which are left "
                                                "out");
        });
    }
}

// The name of the file that is nearest to the rule's; nothing that is far from it.
QString RuleCheck::nearestName(const Rule& rule) const
{
    const QString wanted = fullSlotName(rule.object, rule.slot);
    QStringList names;
    for (const PlannedSlot& slot : m_plan) {
        const int dot = slot.name.indexOf(QLatin1Char('.'));
        names.append(rule.object == kAny ? kAny + slot.name.mid(dot)
                     : rule.slot == kAny ? slot.name.left(dot) + QLatin1String(".*")
                                         : slot.name);
    }
    for (const QString& type : m_types)
        names.append(fullSlotName(type, rule.slot));
    constexpr int kMaxDistance = 4;
    int best = std::min(kMaxDistance, wanted.size() / 2) + 1;
    QString nearest;
    for (const QString& name : qAsConst(names)) {
        if (best == 0)
            break;
        // Another letter case is nearer than any other letter.
        const bool isSameButCase = name.compare(wanted, Qt::CaseInsensitive) == 0;
        const int distance = isSameButCase ? 0 : editDistance(wanted, name, best - 1);
        if (distance < best) {
            best = distance;
            nearest = name;
        }
    }
    return nearest;
}
