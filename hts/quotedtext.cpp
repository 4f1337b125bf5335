#include "hts/quotedtext.h"

#include <algorithm>

#include "hts/linetext.h"

namespace {

bool isShown(QChar character)
{
    const ushort code = character.unicode();
    const bool isPlain = code >= ' ' && code < 0x7f; // most are, and need no look into a table
    return isPlain || character.isPrint() || character.isSurrogate();
}

QString shown(QChar character)
{
    if (character == QLatin1Char('\t'))
        return QStringLiteral("\\t");
    return isShown(character)
               ? QString(character)
               : QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
}

} // namespace

QString shown(const QString& text)
{
    if (std::all_of(text.begin(), text.end(), isShown))
        return text;
    QString result;
    for (const QChar character : text)
        result += shown(character);
    return result;
}

QString quoted(const QString& text)
{
    constexpr int kMaxLength = 60;
    return QLatin1Char('"') + shown(text.left(kMaxLength)) +
           QLatin1String(text.size() > kMaxLength ? "...\"" : "\"");
}

QString quoted(std::string_view bytes)
{
    constexpr std::size_t kMaxBytes = 400; // more than are needed
    return quoted(toText(textBytes(stripped(bytes.substr(0, kMaxBytes)))));
}
