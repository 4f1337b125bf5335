#include "check/quotedtext.h"

#include "hts/linetext.h"

namespace {

QString shown(QChar character)
{
    if (character == QLatin1Char('\t'))
        return QStringLiteral("\\t");
    if (character.isPrint() || character.isSurrogate())
        return character;
    return QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
}

} // namespace

QString quoted(const QString& text)
{
    constexpr int kMaxLength = 60;
    QString result(QLatin1Char('"'));
    for (const QChar character : text.left(kMaxLength))
        result += shown(character);
    return result + (text.size() > kMaxLength ? QLatin1String("...\"") : QLatin1String("\""));
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
