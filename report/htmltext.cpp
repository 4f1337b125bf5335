#include "report/htmltext.h"

#include <algorithm>

#include "hts/quotedtext.h"

namespace {

constexpr int kMaxName = 100;

// Whether a character is shown as it is in HTML too, and is of ASCII.
bool isPlain(QChar character)
{
    const ushort code = character.unicode();
    return code >= ' ' && code < 0x7f && code != '<' && code != '>' && code != '&' && code != '"' &&
           code != '\'';
}

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
    // Nearly all texts are like this, and a page has tens of thousands of them.
    if (text.size() <= maxLength && std::all_of(text.begin(), text.end(), isPlain))
        return text.toLatin1();
    return shown(cut(text, maxLength))
        .toHtmlEscaped()
        .replace(QLatin1Char('\''), QLatin1String("&#39;"))
        .toUtf8();
}

QByteArray htmlName(const QString& name)
{
    return "<bdi>" + htmlText(name, kMaxName) + "</bdi>";
}

HtmlTexts::HtmlTexts(const QStringList& texts)
{
    m_ends.reserve(static_cast<std::size_t>(texts.size()));
    for (const QString& text : texts) {
        m_html += htmlText(text);
        m_ends.push_back(static_cast<int>(m_html.size()));
    }
}

QLatin1String HtmlTexts::at(int index) const
{
    const int begin = index == 0 ? 0 : m_ends[static_cast<std::size_t>(index) - 1];
    return QLatin1String(m_html.constData() + begin,
                         m_ends[static_cast<std::size_t>(index)] - begin);
}
