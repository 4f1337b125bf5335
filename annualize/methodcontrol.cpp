#include "annualize/methodcontrol.h"

#include <QIODevice>

#include "annualize/aggmethods.h"
#include "hts/linereader.h"

namespace {

// Matches every object or every slot. A text already, for the look-ups of every slot.
const QString kAny = QStringLiteral("*");

Status lineFailure(const char* reason, const QString& line)
{
    return failure(QLatin1String("Method Control File Error: ") + QLatin1String(reason) +
                   QLatin1String(" in line \n\"") + line + QLatin1Char('"'));
}

} // namespace

Status MethodControl::read(QIODevice& device)
{
    LineReader reader(device);
    while (!reader.atEnd()) {
        const QString line = reader.text().trimmed();
        if (line.isEmpty())
            continue;
        Status status = readRule(line);
        if (!status.ok())
            return status;
    }
    return {};
}

Status MethodControl::readRule(const QString& line)
{
    const int colon = line.lastIndexOf(QLatin1Char(':'));
    if (colon < 0)
        return lineFailure("Colon not found", line);

    const QStringRef word = line.midRef(colon + 1).trimmed();
    if (word.isEmpty())
        return lineFailure("Method is blank", line);
    const AggMethod* method = findMethodIgnoringCase(word);
    if (method == nullptr)
        return lineFailure("Unknown method specified", line);

    // No method has a dot, so a dot stands before the colon.
    const int dot = line.indexOf(QLatin1Char('.'));
    if (dot < 0)
        return lineFailure("Dot separator not found", line);
    const QString slot = line.midRef(dot + 1, colon - dot - 1).trimmed().toString();
    if (slot.isEmpty())
        return lineFailure("Slot name is blank", line);
    const QString object = line.leftRef(dot).trimmed().toString();
    if (object.isEmpty())
        return lineFailure("Object name is blank", line);

    const Name name(object, slot);
    if (!m_rules.contains(name))
        m_rules.insert(name, {m_rules.size(), method});
    m_hasAnyObject = m_hasAnyObject || object == kAny;
    m_hasAnySlot = m_hasAnySlot || slot == kAny;
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
