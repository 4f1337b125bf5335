#ifndef GUI_TEXTWIDTHBOUNDS_H
#define GUI_TEXTWIDTHBOUNDS_H

#include <vector>

#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QPair>
#include <QString>
#include <QStringView>

namespace UtilsNS {

// Makes the font place its glyphs one by one: without kerning and without optional ligatures. A
// text is then as wide as the sum of its letters.
void separateGlyphs(QFont& font);

// Upper bounds of text widths in one font, in a hundredth of the time of a layout.
//
// In scripts whose letters do not affect each other, the advances of the letters are added up. A
// word with anything else (joining scripts, marks, symbols) is laid out once and its width
// remembered, and so are the digits and signs around it, once for each script. The sum is the exact
// width, unless the font treats neighbouring letters specially.
//
// Only for the thread of the user interface.
class TextWidthBounds
{
public:
    // `font` has separate glyphs; see separateGlyphs().
    explicit TextWidthBounds(const QFont& font);

    // In pixels, without blanks at the end, which a layout ignores. Infinite for a text with
    // control characters: tabs and line ends need a layout.
    qreal bound(const QString& text);

private:
    struct Context;

    int sumOfAdvances(QStringView text);
    qreal boundByWords(QStringView text);
    int newAdvance(QChar c);
    qreal wordWidth(QStringView word);
    qreal signWidth(QChar sign, const Context& context);

    QFontMetricsF m_metrics;
    std::vector<int> m_advances; // by UTF-16 unit, in 1/64 pixels or one of two negative values
    QHash<QString, qreal> m_wordWidths;
    QHash<QPair<int, QChar>, qreal> m_signWidths; // of ASCII signs, by script
};

} // namespace UtilsNS

#endif // GUI_TEXTWIDTHBOUNDS_H
