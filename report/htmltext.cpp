#include "report/htmltext.h"

#include "hts/quotedtext.h"

namespace {

constexpr int kMaxName = 100;

QString cut(const QString& text, int maxLength)
{
    if (text.size() <= maxLength)
        return text;
    const bool isInPair = text.at(maxLength - 1).isHighSurrogate();
    return text.left(isInPair ? maxLength - 1 : maxLength) + QLatin1String("...");
}

} // namespace

QByteArray htmlText(const QString& text, int maxLength)
{
    return shown(cut(text, maxLength))
        .toHtmlEscaped()
        .replace(QLatin1Char('\''), QLatin1String("&#39;"))
        .toUtf8();
}

QByteArray htmlName(const QString& name)
{
    return "<bdi>" + htmlText(name, kMaxName) + "</bdi>";
}
