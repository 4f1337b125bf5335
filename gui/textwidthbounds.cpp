#include "gui/textwidthbounds.h"

#include <algorithm>
#include <limits>

namespace UtilsNS {

namespace {

// The toolkit places glyphs on multiples of this, so that no advance is rounded.
constexpr qreal kUnitsPerPixel = 64;
// Values in the place of an advance.
constexpr int kNotMeasured = -1;
constexpr int kNotFixed = -2; // depends on the letters around it

constexpr int kMaxWords = 20'000;

constexpr QLatin1Char kBlank(' ');

// The general categories Cc, Zl and Zp.
bool isControl(QChar c)
{
    const ushort unit = c.unicode();
    return unit < 0x20 || (unit >= 0x7f && unit < 0xa0) || unit == 0x2028 || unit == 0x2029;
}

// Whether each letter of the script has a glyph of its own, with the same advance in any word.
bool isScriptOfSingleLetters(QChar::Script script)
{
    switch (script) {
    case QChar::Script_Latin:
    case QChar::Script_Greek:
    case QChar::Script_Cyrillic:
    case QChar::Script_Armenian:
    case QChar::Script_Georgian:
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
        return true;
    default:
        return false;
    }
}

bool hasFixedAdvance(QChar c)
{
    const bool isAscii = c.unicode() < 0x80 && !isControl(c);
    return isAscii || (c.isLetter() && isScriptOfSingleLetters(c.script()));
}

// Digits, blanks, punctuation.
bool isAsciiSign(QChar c)
{
    return c.unicode() < 0x80 && !c.isLetter();
}

// The script of the last letter; Script_Common without one.
QChar::Script scriptOf(QStringView word)
{
    QChar::Script last = QChar::Script_Common;
    for (int i = 0; i < word.size(); ++i) {
        const bool isPair = word[i].isHighSurrogate() && i + 1 < word.size();
        const QChar::Script script =
            isPair ? QChar::script(QChar::surrogateToUcs4(word[i], word[i + 1])) : word[i].script();
        if (script != QChar::Script_Common && script != QChar::Script_Inherited)
            last = script;
        i += isPair ? 1 : 0;
    }
    return last;
}

int sizeWithoutBlanksAtEnd(const QString& text)
{
    int size = text.size();
    while (size > 0 && text.at(size - 1) == kBlank)
        --size;
    return size;
}

} // namespace

// The word before a sign, whose script decides the width of the sign.
struct TextWidthBounds::Context
{
    QStringView word;
    QChar::Script script = QChar::Script_Common;

    void update(QStringView newWord)
    {
        const QChar::Script newScript = scriptOf(newWord);
        if (newScript != QChar::Script_Common) {
            word = newWord;
            script = newScript;
        }
    }
};

void separateGlyphs(QFont& font)
{
    font.setKerning(false);
    // Any spacing that is set turns ligatures off; this one changes no advance.
    font.setLetterSpacing(QFont::PercentageSpacing, 100);
}

TextWidthBounds::TextWidthBounds(const QFont& font)
    : m_metrics(font), m_advances(std::numeric_limits<ushort>::max() + 1, kNotMeasured)
{
    Q_ASSERT(!font.kerning());
}

qreal TextWidthBounds::bound(const QString& text)
{
    const QStringView line(text.constData(), sizeWithoutBlanksAtEnd(text));
    const int units = sumOfAdvances(line);
    return units >= 0 ? units / kUnitsPerPixel : boundByWords(line);
}

// Negative if a letter depends on those around it.
int TextWidthBounds::sumOfAdvances(QStringView text)
{
    int sum = 0;
    for (const QChar c : text) {
        int advance = m_advances[c.unicode()];
        if (advance == kNotMeasured)
            advance = newAdvance(c);
        if (advance < 0)
            return -1;
        sum += advance;
    }
    return sum;
}

// Adds up the widths of the words, which are all characters but ASCII signs, and of the signs
// between them.
qreal TextWidthBounds::boundByWords(QStringView text)
{
    if (std::any_of(text.begin(), text.end(), isControl))
        return std::numeric_limits<qreal>::infinity();
    const auto wordAt = [text](QStringView::const_iterator begin) {
        return QStringView(begin, std::find_if(begin, text.end(), isAsciiSign));
    };
    // Signs belong to the script of the word before them; at the start, to that of the first word.
    Context context;
    context.update(wordAt(std::find_if_not(text.begin(), text.end(), isAsciiSign)));
    qreal width = 0;
    for (auto begin = text.begin(); begin != text.end();) {
        const QStringView word = wordAt(begin);
        if (word.isEmpty()) {
            width += signWidth(*begin, context);
            ++begin;
            continue;
        }
        width += wordWidth(word);
        context.update(word);
        begin = word.end();
    }
    return width;
}

int TextWidthBounds::newAdvance(QChar c)
{
    int& advance = m_advances[c.unicode()];
    advance = kNotFixed;
    if (hasFixedAdvance(c))
        advance = qRound(m_metrics.horizontalAdvance(QString(c)) * kUnitsPerPixel);
    return advance;
}

qreal TextWidthBounds::wordWidth(QStringView word)
{
    const int units = sumOfAdvances(word);
    if (units >= 0)
        return units / kUnitsPerPixel;
    const QString key = word.toString();
    const auto known = m_wordWidths.constFind(key);
    if (known != m_wordWidths.constEnd())
        return *known;
    if (m_wordWidths.size() == kMaxWords)
        m_wordWidths.clear();
    return *m_wordWidths.insert(key, m_metrics.horizontalAdvance(key));
}

// Some scripts are shown in another font, including the signs between their words.
qreal TextWidthBounds::signWidth(QChar sign, const Context& context)
{
    if (context.script == QChar::Script_Common || isScriptOfSingleLetters(context.script))
        return wordWidth(QStringView(&sign, 1));
    const auto key = qMakePair(static_cast<int>(context.script), sign);
    const auto known = m_signWidths.constFind(key);
    if (known != m_signWidths.constEnd())
        return *known;
    const QString word = context.word.toString();
    return *m_signWidths.insert(key, m_metrics.horizontalAdvance(word + sign) -
                                         m_metrics.horizontalAdvance(word));
}

} // namespace UtilsNS
