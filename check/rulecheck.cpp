#include "check/rulecheck.h"

#include <algorithm>

#include "annualize/annualization.h"
#include "annualize/methodcontrol.h"
#include "annualize/slotplan.h"
#include "check/findings.h"
#include "check/nearwords.h"
#include "check/quotedtext.h"
#include "hts/linereader.h"
#include "hts/linetext.h"
#include "utils/checkedfile.h"

namespace {

const QString kAny = QStringLiteral("*");

// How specific a rule is for a slot: first by its object (the name, the type, any), then by its
// slot (the name, any).
int specificity(const QString& object, const QString& slotName, const HtsSlot& slot)
{
    const int ofObject = object == slot.objectName ? 2 : object == kAny ? 0 : 1;
    return 2 * ofObject + (slotName == kAny ? 0 : 1);
}

// The first line of the message about a bad line: "Colon not found in line". The bad line itself is
// on the next one.
QString reasonOf(const QString& message)
{
    return message.section(QLatin1Char('\n'), 0, 0).trimmed();
}

bool isUtf8(std::string_view bytes)
{
    return isAscii(bytes) ||
           toText(bytes).toUtf8() ==
               QByteArray::fromRawData(bytes.data(), static_cast<int>(bytes.size()));
}

const QLatin1String kNotUtf8(" contains bytes that are not UTF-8, ");

} // namespace

void RuleCheck::read(const QString& path)
{
    UtilsNS::CheckedFile file(path);
    file.limitLines();
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        reportUnreadable(file.errorString());
        return;
    }
    m_hasRules = readRules(file);
    if (m_hasRules && !file.problem().isEmpty()) {
        m_hasRules = false;
        reportUnreadable(file.problem());
    }
    if (!m_hasRules) {
        m_rules.clear();
        m_firstRules.clear();
    }
}

// Reports a line that is not a rule, and returns false at the first.
bool RuleCheck::readRules(UtilsNS::CheckedFile& file)
{
    LineReader reader(file);
    while (!reader.atEnd()) {
        const std::string_view line = stripped(textBytes(reader.line()));
        if (line.empty())
            continue;
        MethodRule parsed;
        const Status status = parseMethodRule(line, parsed);
        // The read may have cut this line off.
        if (!status.ok() && !file.problem().isEmpty())
            break;
        if (!status.ok()) {
            m_findings.addToControl(Code::ControlLine, reader.lineNumber(), [&]() -> QString {
                return QStringLiteral("%1 %2: all rules are lost")
                           .arg(reasonOf(status.message), quoted(line)) +
                       conversionFails(Annualization::kNoSlots);
            });
            return false;
        }
        Rule rule;
        rule.object = toText(parsed.object);
        rule.slot = toText(parsed.slot);
        rule.method = parsed.method;
        rule.line = reader.lineNumber();
        rule.isUtf8 = isUtf8(line);
        addRule(rule);
    }
    return true;
}

void RuleCheck::reportUnreadable(const QString& reason)
{
    m_findings.addToControl(Code::ControlUnreadable, 1, [&]() -> QString {
        return QStringLiteral("the control file cannot be read: %1").arg(reason) +
               conversionFails(Annualization::kNoSlots);
    });
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

// The rules that match a slot, in the order of the file; the first applies.
std::vector<int> RuleCheck::rulesFor(const HtsSlot& slot) const
{
    std::vector<int> matching;
    for (const QString* slotName : {&slot.slotName, &kAny}) {
        for (const QString* object : {&slot.objectName, &slot.objectType, &kAny}) {
            const int rule = ruleFor(*object, *slotName);
            if (rule >= 0)
                matching.push_back(rule);
        }
    }
    std::sort(matching.begin(), matching.end());
    return matching;
}

const PlannedSlot& RuleCheck::addSlot(const HtsSlot& slot, qint64 line)
{
    PlannedSlot planned;
    planned.name = fullSlotName(slot.objectName, slot.slotName);
    planned.isSeries = slot.isSeries();
    m_types.insert(slot.objectType);
    const std::vector<int> matching = rulesFor(slot);
    if (!matching.empty()) {
        const Rule& rule = m_rules[static_cast<std::size_t>(matching.front())];
        planned.method = rule.method;
        planned.ruleLine = rule.line;
        noteOthers(matching, matching.front(), slot);
    }
    m_plan.push_back(planned);
    if (m_hasRules)
        reportSlot(m_plan.back(), slot, line);
    return m_plan.back();
}

void RuleCheck::noteOthers(const std::vector<int>& matching, int used, const HtsSlot& slot)
{
    const Rule& usedRule = m_rules[static_cast<std::size_t>(used)];
    const int usedSpecificity = specificity(usedRule.object, usedRule.slot, slot);
    for (const int index : matching) {
        Rule& rule = m_rules[static_cast<std::size_t>(index)];
        rule.matchesSlot = true;
        rule.matchesSeries = rule.matchesSeries || slot.isSeries();
        if (index == used)
            rule.isUsed = true;
        else if (specificity(rule.object, rule.slot, slot) < usedSpecificity)
            rule.replacedBy = used;
        else
            rule.shadowedBy = used;
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
                .arg(shown(planned.name), planned.method == nullptr
                                              ? QStringLiteral("and no rule does")
                                              : QStringLiteral("as a rule does"));
        });
        return;
    }
    if (planned.method == nullptr) {
        m_findings.add(Code::SlotWithoutRule, line, [&]() -> QString {
            return QStringLiteral("no rule fits %1, which is left out").arg(shown(planned.name));
        });
    } else if (!planned.method->isSupported()) {
        m_findings.add(Code::Salinity, line, [&]() -> QString {
            return QStringLiteral("%1 has the method %2, which is not supported, and is left out")
                .arg(shown(planned.name), planned.method->word);
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
    if (!first.matchesSlot) {
        reportUnmatched(rule);
        return;
    }
    if (!rule.isUtf8) {
        m_findings.addToControl(Code::RuleEncoding, rule.line, [&]() -> QString {
            return textOf(rule) + kNotUtf8 + QLatin1String("which fit any others in their place");
        });
    }
    const int shadowing = rule.sameAs >= 0 ? rule.sameAs : rule.shadowedBy;
    if ((rule.sameAs >= 0 || !rule.isUsed) && shadowing >= 0) {
        m_findings.addToControl(Code::RuleShadowed, rule.line, [&]() -> QString {
            const Rule& earlier = m_rules[static_cast<std::size_t>(shadowing)];
            return QStringLiteral("%1 is never used, because %2 of line %3 applies first")
                .arg(textOf(rule), textOf(earlier), QString::number(earlier.line));
        });
    } else if (!rule.isUsed) {
        m_findings.addToControl(Code::RuleIdle, rule.line, [&]() -> QString {
            const Rule& earlier = m_rules[static_cast<std::size_t>(rule.replacedBy)];
            return QStringLiteral("%1 is never used: rules such as %2 of line %3 apply to all "
                                  "its slots")
                .arg(textOf(rule), textOf(earlier), QString::number(earlier.line));
        });
    } else if (!rule.matchesSeries) {
        m_findings.addToControl(Code::RuleOnOtherSlot, rule.line, [&]() -> QString {
            return textOf(rule) + QLatin1String(" fits only table or scalar slots, which are left "
                                                "out");
        });
    }
}

void RuleCheck::reportUnmatched(const Rule& rule)
{
    const Code code = rule.isUtf8 ? Code::RuleUnmatched : Code::RuleEncoding;
    m_findings.addToControl(code, rule.line, [&]() -> QString {
        const QString nearest = nearestName(rule);
        return textOf(rule) + (rule.isUtf8 ? QString() : kNotUtf8 + QLatin1String("and")) +
               QLatin1String(" fits no slot") +
               (nearest.isEmpty() ? QString()
                                  : QStringLiteral("; the nearest is ") + quoted(nearest));
    });
}

// The slot or type name of the file that is nearest to the names of the rule; empty if none is
// near.
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
        // A name that differs only in letter case is the nearest.
        const bool isSameButCase = name.compare(wanted, Qt::CaseInsensitive) == 0;
        const int distance = isSameButCase ? 0 : editDistance(wanted, name, best - 1);
        if (distance < best) {
            best = distance;
            nearest = name;
        }
    }
    return nearest;
}
