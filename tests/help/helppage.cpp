#include "tests/help/helppage.h"

#include <QXmlStreamReader>

HelpPage::HelpPage(const QByteArray& html)
{
    QXmlStreamReader reader(html);
    QVector<int> open; // indices of the elements around the reader's place
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            PageElement element;
            element.name = reader.name().toString();
            for (const QXmlStreamAttribute& attribute : reader.attributes())
                element.attributes.insert(attribute.name().toString(),
                                          attribute.value().toString());
            for (const int index : open)
                element.path.append(elements.at(index).name);
            open.append(elements.size());
            elements.append(element);
        } else if (reader.isEndElement()) {
            open.removeLast();
        } else if (reader.isCharacters()) {
            for (const int index : open)
                elements[index].text += reader.text();
        }
    }
    if (reader.hasError())
        error = QStringLiteral("line %1: %2").arg(reader.lineNumber()).arg(reader.errorString());
}

QVector<PageElement> HelpPage::named(const QString& name) const
{
    QVector<PageElement> result;
    for (const PageElement& element : elements) {
        if (element.name == name)
            result.append(element);
    }
    return result;
}

QStringList HelpPage::codes() const
{
    QStringList result;
    for (const PageElement& code : named(QStringLiteral("code")))
        result.append(code.text.simplified());
    return result;
}

QString HelpPage::textOf(const QString& id) const
{
    for (const PageElement& element : elements) {
        if (element.attributes.value(QStringLiteral("id")) == id)
            return element.text;
    }
    return {};
}

QString HelpPage::bodyText() const
{
    const QVector<PageElement> bodies = named(QStringLiteral("body"));
    return bodies.isEmpty() ? QString() : bodies.first().text.simplified();
}
