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

    const Name name(toText(object), toText(slot));
    if (!m_rules.contains(name))
        m_rules.insert(name, {m_rules.size(), method});
    m_hasAnyObject = m_hasAnyObject || name.first == kAny;
    m_hasAnySlot = m_hasAnySlot || name.second == kAny;
    return {};
}

QString MethodControl::methodFor(const HtsSlot& slot) const
{
    const Rule* first = nullptr;
    const auto tryName = [&](const QString& object, const QString& slotName) {
        const auto rule = m_rules.constFind(Name(object, slotName));
        if (rule != m_rules.constEnd() && (first == nullptr || rule->order < first->order))
            first = &*rule;
    };
    const auto tryObject = [&](const QString& object) {
        tryName(object, slot.slotName);
        if (m_hasAnySlot)
            tryName(object, kAny);
    };
    tryObject(slot.objectName);
    tryObject(slot.objectType);
    if (m_hasAnyObject)
        tryObject(kAny);
    return first == nullptr ? QString() : first->method->word;
}
