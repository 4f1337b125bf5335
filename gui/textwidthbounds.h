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

// Lets the font place its glyphs one by one: without kerning, and without the ligatures that a
// script can do without. A text then is as wide as its letters together.
void separateGlyphs(QFont& font);

// Upper bounds of text widths in one font, for a hundredth of what a layout takes.
//
// The advances of letters that stand alone in their script are added up. A word with anything else
// (joining scripts, marks, symbols) is laid out once and remembered, the digits and signs around it
// once for each script. Together that is the width itself, unless a font has ways of its own with
// letters next to each other.
//
// For the thread of the user interface alone.
class TextWidthBounds
{
public:
    // `font` has separate glyphs.
    explicit TextWidthBounds(const QFont& font);

    // In pixels, without blanks at the end, which a layout leaves out. Infinite for a text with
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
    QHash<QPair<int, QChar>, qreal> m_signWidths; // of ASCII, by script
};

} // namespace UtilsNS

#endif // GUI_TEXTWIDTHBOUNDS_H
