#include "utils/envvars.h"

#include <QObject>
#include <QRegExp>
#include <QStringList>

#include "utils/environment.h"

namespace UtilsNS {

namespace {

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
    QRegExp pattern(QStringLiteral("\\$[({]?[A-Za-z0-9_]+[})]?"));
    QStringList undefined;
    result = text;
    int position = 0;
    while ((position = pattern.indexIn(result, position)) >= 0) {
        int length = pattern.matchedLength();
        const QString name = nameIn(pattern.cap());
        const QString value = QString::fromLatin1(environmentValue(name.toLocal8Bit()));
        if (value.isEmpty()) {
            undefined.append(name);
        } else {
            result.replace(position, length, value);
            length = value.size();
        }
        position += length; // references in a value are not replaced
    }
    if (undefined.isEmpty())
        return {};
    return failure(QObject::tr("contains undefined environment variable(s): ") +
                   undefined.join(QLatin1String(", ")));
}

} // namespace UtilsNS
