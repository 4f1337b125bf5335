#include "annualize/methodcontrol.h"

#include <QIODevice>

#include "annualize/aggmethods.h"
#include "hts/linereader.h"
#include "hts/linetext.h"

namespace {

// Matches every object or every slot. A text already, for the look-ups of every slot.
const QString kAny = QStringLiteral("*");

Status lineFailure(const char* reason, std::string_view line)
{
    return failure(QLatin1String("Method Control File Error: ") + QLatin1String(reason) +
                   QLatin1String(" in line \n\"") + toText(line) + QLatin1Char('"'));
}

} // namespace

Status MethodControl::read(QIODevice& device)
{
    LineReader reader(device);
    while (!reader.atEnd()) {
        const std::string_view line = stripped(textBytes(reader.line()));
        if (line.empty())
            continue;
        Status status = readRule(line);
        if (!status.ok())
            return status;
    }
    return {};
}

// Names lose the white space that the reader of HTS files takes off its lines, and nothing else, so
// that every slot can be named.
Status MethodControl::readRule(std::string_view line)
{
    const std::size_t colon = line.rfind(':');
    if (colon == std::string_view::npos)
        return lineFailure("Colon not found", line);

    const std::string_view word = stripped(line.substr(colon + 1));
    if (word.empty())
        return lineFailure("Method is blank", line);
    const AggMethod* method = findMethodIgnoringCase(word);
    if (method == nullptr)
        return lineFailure("Unknown method specified", line);

    // No method has a dot, so a dot stands before the colon.
    const std::size_t dot = line.find('.');
    if (dot == std::string_view::npos)
        return lineFailure("Dot separator not found", line);
    const std::string_view slot = stripped(line.substr(dot + 1, colon - dot - 1));
    if (slot.empty())
        return lineFailure("Slot name is blank", line);
    const std::string_view object = stripped(line.substr(0, dot));
    if (object.empty())
        return lineFailure("Object name is blank", line);

    if (slot != m_slotBytes) {
        m_slotBytes = slot;
        m_slotName = toText(slot);
    }
    Rule& rule = m_rules[m_slotName][toText(object)];
    if (rule.method == nullptr)
        rule = {m_ruleCount++, method};
    return {};
}

QString MethodControl::methodFor(const HtsSlot& slot) const
{
    const Rule* first = nullptr;
    for (const QString* slotName : {&slot.slotName, &kAny}) {
        const auto rules = m_rules.constFind(*slotName);
        if (rules == m_rules.constEnd())
            continue;
        for (const QString* object : {&slot.objectName, &slot.objectType, &kAny}) {
            const auto rule = rules->constFind(*object);
            if (rule != rules->constEnd() && (first == nullptr || rule->order < first->order))
                first = &*rule;
        }
    }
    return first == nullptr ? QString() : first->method->word;
}
