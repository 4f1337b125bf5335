#include "check/quotedtext.h"

#include <algorithm>

#include "annualize/slotplan.h"
#include "hts/linetext.h"

namespace {

bool isShownAsItIs(QChar character)
{
    return character.isPrint() || character.isSurrogate();
}

} // namespace

QString shown(const QString& text)
{
    if (std::all_of(text.begin(), text.end(), isShownAsItIs))
        return text;
    QString result;
    for (const QChar character : text) {
        if (isShownAsItIs(character))
            result += character;
        else if (character == QLatin1Char('\t'))
            result += QLatin1String("\\t");
        else
            result += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
    }
    return result;
}

QString shownSlot(const QString& objectName, const QString& slotName)
{
    return shown(fullSlotName(objectName, slotName));
}

QString quoted(const QString& text)
{
    constexpr int kMaxLength = 60;
    return QLatin1Char('"') + shown(text.left(kMaxLength)) +
           (text.size() > kMaxLength ? QLatin1String("...\"") : QLatin1String("\""));
}

QString quoted(std::string_view bytes)
{
    constexpr std::size_t kMaxBytes = 400; // more than are needed
    return quoted(toText(textBytes(stripped(bytes.substr(0, kMaxBytes)))));
}

QString conversionFails(const QString& message)
{
    return QStringLiteral("; a conversion fails: \"%1\"").arg(message);
}
