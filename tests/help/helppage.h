#ifndef TESTS_HELP_HELPPAGE_H
#define TESTS_HELP_HELPPAGE_H

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

// An element of the page with the text inside it, that of the elements in it included.
struct PageElement
{
    QString name;
    QMap<QString, QString> attributes;
    QString text;
    QStringList path; // names of the elements around it, outermost first

    // The value of the attribute; empty when it has none.
    QString attribute(const char* attribute) const;
    bool isInside(const char* element) const;
};

// The help page, taken apart. It is written so that an XML reader can read it too: every element is
// closed, every attribute has a value in quotes.
class HelpPage
{
public:
    // `error` says where the page is not XML; empty if it is.
    explicit HelpPage(const QByteArray& html);

    QString error;
    // In the order of their start tags.
    QVector<PageElement> elements;

    QVector<PageElement> named(const char* name) const;
    // The only one of that name.
    PageElement only(const char* name) const;
    // Texts of the `code` elements, white space simplified.
    QStringList codes() const;
    // Text of the element with the id, an empty text when there is none.
    QString textOf(const char* id) const;
    // The whole text of the body, white space simplified.
    QString bodyText() const;
};

#endif // TESTS_HELP_HELPPAGE_H
