#include "utils/envvars.h"

#include <QByteArray>
#include <QObject>
#include <QRegExp>
#include <QStringList>

namespace UtilsNS {

namespace {

// Longer values count as not set.
constexpr int kMaxValueLength = 1023;

// The value of a variable, empty when it is not set or too long.
QString environmentValue(const QString& name)
{
    const QByteArray value = qgetenv(name.toLocal8Bit().constData());
    return value.size() > kMaxValueLength ? QString() : QString::fromLatin1(value);
}

// The name in a reference such as "$NAME" or "${NAME}". Whatever the last character of a bracketed
// reference is, it is dropped: the brackets need not agree, and a missing one costs a letter of the
// name.
QString nameIn(const QString& reference)
{
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
        const QString value = environmentValue(name);
        if (value.isEmpty()) {
            undefined.append(name);
        } else {
            result.replace(position, length, value);
            length = value.size();
        }
        position += length; // references in a value are left alone
    }
    if (undefined.isEmpty())
        return {};
    return failure(QObject::tr("contains undefined environment variable(s): ") +
                   undefined.join(QLatin1String(", ")));
}

} // namespace UtilsNS
