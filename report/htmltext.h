#ifndef REPORT_HTMLTEXT_H
#define REPORT_HTMLTEXT_H

#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>

// A text of a file, a path or an argument as HTML, for elements and for attributes in double
// quotes: nothing in it is markup, and what is invisible or turns the direction of the text is
// shown as in reports, as \u202e. Of a text of more than `maxLength` characters the beginning, and
// three dots.
QByteArray htmlText(const QString& text, int maxLength = 400);
// The same for a text that is not of one direction with the page's: a name.
QByteArray htmlName(const QString& name);

// Texts as HTML, one after the other: where each of many is needed rarely, it is not searched for
// all over the memory.
class HtmlTexts
{
public:
    explicit HtmlTexts(const QStringList& texts);
    HtmlTexts() = default;

    // Valid as long as the object.
    QLatin1String at(int index) const;

private:
    QByteArray m_html;
    std::vector<int> m_ends; // of each text
};

#endif // REPORT_HTMLTEXT_H
