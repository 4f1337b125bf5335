#include "utils/envvars.h"

#include <QObject>
#include <QStringList>

#include "utils/environment.h"

namespace UtilsNS {

namespace {

bool isNameCharacter(QChar c)
{
    const ushort code = c.unicode();
    return (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
           (code >= 'a' && code <= 'z') || code == '_';
}

// The first reference in `text` from `position` on; empty, and `position` unchanged, if there is
// none. Regular expressions of the toolkit find nothing in a text with bytes that are not UTF-8.
QString findReference(const QString& text, int& position)
{
    const auto isAt = [&text](int i, char bracket, char brace) {
        const QChar c = i < text.size() ? text.at(i) : QChar();
        return c == QLatin1Char(bracket) || c == QLatin1Char(brace);
    };
    for (int start = position; start < text.size(); ++start) {
        if (text.at(start) != QLatin1Char('$'))
            continue;
        const int name = start + (isAt(start + 1, '(', '{') ? 2 : 1);
        int end = name;
        while (end < text.size() && isNameCharacter(text.at(end)))
            ++end;
        if (end == name)
            continue;
        position = start;
        return text.mid(start, end - start + (isAt(end, ')', '}') ? 1 : 0));
    }
    return {};
}

// The name in a reference such as "$NAME" or "${NAME}". The last character of a bracketed reference
// is always dropped, without a check: the brackets need not match, and if the closing one is
// missing, the name loses a letter.
QString nameIn(const QString& reference)
{
    Q_ASSERT(reference.size() >= 2 && reference.at(0) == QLatin1Char('$'));
    const QChar second = reference.at(1);
    const bool isBracketed = second == QLatin1Char('(') || second == QLatin1Char('{');
    return isBracketed ? reference.mid(2, reference.size() - 3) : reference.mid(1);
}

} // namespace

Status substituteEnvVars(const QString& text, QString& result)
{
    QStringList undefined;
    result = text;
    int position = 0;
    for (QString reference; !(reference = findReference(result, position)).isEmpty();) {
        int length = static_cast<int>(reference.size());
        const QString name = nameIn(reference);
        const QString value = QString::fromLatin1(environmentValue(name.toLocal8Bit()));
        if (value.isEmpty()) {
            undefined.append(name);
        } else {
            result.replace(position, length, value);
            length = static_cast<int>(value.size());
        }
        position += length; // references in a value are not replaced
    }
    if (undefined.isEmpty())
        return {};
    return failure(QObject::tr("contains undefined environment variable(s): ") +
                   undefined.join(QLatin1String(", ")));
}

} // namespace UtilsNS
