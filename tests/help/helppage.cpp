#include "tests/help/helppage.h"

#include <QXmlStreamReader>

QString PageElement::attribute(const char* attribute) const
{
    return attributes.value(QLatin1String(attribute));
}

bool PageElement::isInside(const char* element) const
{
    return path.contains(QLatin1String(element));
}

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

QVector<PageElement> HelpPage::named(const char* name) const
{
    QVector<PageElement> result;
    for (const PageElement& element : elements) {
        if (element.name == QLatin1String(name))
            result.append(element);
    }
    return result;
}

PageElement HelpPage::only(const char* name) const
{
    const QVector<PageElement> found = named(name);
    if (found.size() != 1)
        qFatal("%d elements %s", static_cast<int>(found.size()), name);
    return found.first();
}

QStringList HelpPage::codes() const
{
    QStringList result;
    for (const PageElement& code : named("code"))
        result.append(code.text.simplified());
    return result;
}

QString HelpPage::textOf(const char* id) const
{
    for (const PageElement& element : elements) {
        if (element.attribute("id") == QLatin1String(id))
            return element.text;
    }
    return {};
}

QString HelpPage::bodyText() const
{
    return only("body").text.simplified();
}
