// Environment references in any text, against a plain scan of it: the same result and the same
// list of names that are not set.

#include <QByteArray>
#include <QProcessEnvironment>
#include <QStringList>

#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "utils/envvars.h"

namespace {

// Values of the variables that texts may name: plain, with a reference, not ASCII, empty, of the
// greatest length, and too long.
struct Variable
{
    const char* name;
    QByteArray value;
};

const Variable kVariables[] = {
    {"A", "value"},
    {"B", "$A"},
    {"AB", "b\xe4r/${C"},
    {"EMPTY", ""},
    {"_1", ")"},
    {"MOST", QByteArray(1023, 'x')},
    {"LONG", QByteArray(1024, 'x')},
};

// Nothing else is set, independent of the environment of the process.
void setEnvironment()
{
    const QStringList names = QProcessEnvironment::systemEnvironment().keys();
    for (const QString& name : names)
        qunsetenv(name.toLocal8Bit().constData());
    for (const Variable& variable : kVariables)
        qputenv(variable.name, variable.value);
}

// Empty for a name that is not set, or is set to nothing or to too much.
QString valueOf(const QString& name)
{
    for (const Variable& variable : kVariables) {
        if (name == QLatin1String(variable.name))
            return variable.value.size() > 1023 ? QString() : QString::fromLatin1(variable.value);
    }
    return {};
}

bool isOneOf(const QString& text, int position, const char* characters)
{
    return position < text.size() && QString::fromLatin1(characters).contains(text.at(position));
}

bool isNameCharacter(const QString& text, int position)
{
    return isOneOf(text, position,
                   "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_");
}

// Where the reference that begins at `position` ends; `position` when none begins there.
int referenceEnd(const QString& text, int position)
{
    if (text.at(position) != QLatin1Char('$'))
        return position;
    const int nameStart = position + (isOneOf(text, position + 1, "({") ? 2 : 1);
    int end = nameStart;
    while (isNameCharacter(text, end))
        ++end;
    if (end == nameStart)
        return position;
    return isOneOf(text, end, ")}") ? end + 1 : end;
}

// The text with its references replaced; the names that are not set go to `undefined`.
QString substituted(const QString& text, QStringList& undefined)
{
    QString result;
    int position = 0;
    while (position < text.size()) {
        const int end = referenceEnd(text, position);
        if (end == position) {
            result += text.at(position++);
            continue;
        }
        const QString reference = text.mid(position, end - position);
        const bool isBracketed = isOneOf(reference, 1, "({");
        const QString name =
            reference.mid(isBracketed ? 2 : 1, reference.size() - (isBracketed ? 3 : 1));
        const QString value = valueOf(name);
        if (value.isEmpty())
            undefined.append(name);
        result += value.isEmpty() ? reference : value;
        position = end;
    }
    return result;
}

} // namespace

FUZZ_TARGET(envvars)
{
    static const bool kIsSet = (setEnvironment(), true);
    Q_UNUSED(kIsSet)
    const QString text = QString::fromUtf8(input.constData(), input.size());
    QString result = QStringLiteral("before");
    const Status status = UtilsNS::substituteEnvVars(text, result);

    QStringList undefined;
    fuzz::requireEqual(QStringLiteral("result"), result, substituted(text, undefined));
    const QString message = undefined.isEmpty()
                                ? QString()
                                : QStringLiteral("contains undefined environment variable(s): ") +
                                      undefined.join(QStringLiteral(", "));
    fuzz::requireEqual(QStringLiteral("message"), status.message, message);
    fuzz::require(!status.flag, QStringLiteral("the flag is set"));
    if (!text.contains(QLatin1Char('$')))
        fuzz::requireEqual(QStringLiteral("text without a reference"), result, text);
}
