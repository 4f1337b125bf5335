#include "utils/desktopentry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>

namespace UtilsNS {

namespace {

// A dash of an id stands for itself or, when there is such a folder, for a slash.
QString pathOf(const QString& id, const QString& folder)
{
    QString path = folder + QLatin1Char('/') + id;
    if (QFileInfo(path).isFile())
        return path;
    for (int dash = id.indexOf(QLatin1Char('-')); dash >= 0;
         dash = id.indexOf(QLatin1Char('-'), dash + 1)) {
        const QString subfolder = folder + QLatin1Char('/') + id.left(dash);
        if (dash == 0 || !QFileInfo(subfolder).isDir())
            continue;
        QString pathBelow = pathOf(id.mid(dash + 1), subfolder);
        if (!pathBelow.isEmpty())
            return pathBelow;
    }
    return QString();
}

// Undoes the escapes of a value of the type string: \s \n \t \r \\ .
QString unescaped(const QString& value)
{
    const QLatin1String letters("sntr\\");
    const QLatin1String characters(" \n\t\r\\");
    QString text;
    for (int i = 0; i < value.size(); ++i) {
        const QChar next = i + 1 < value.size() ? value.at(i + 1) : QChar();
        const int letter = value.at(i) == QLatin1Char('\\') ? letters.indexOf(next) : -1;
        if (letter >= 0) {
            text += characters.at(letter);
            ++i;
        } else {
            text += value.at(i);
        }
    }
    return text;
}

// Splits an Exec value at its blanks. An argument, or a part of one, may stand between double
// quotes, where a backslash takes the next character as it is. Empty when a quote is not closed.
QStringList splitExec(const QString& exec)
{
    QStringList arguments;
    QString argument;
    bool isQuoted = false;
    bool hasArgument = false;
    for (int i = 0; i < exec.size(); ++i) {
        const QChar c = exec.at(i);
        if (c == QLatin1Char('"')) {
            isQuoted = !isQuoted;
            hasArgument = true;
        } else if (isQuoted && c == QLatin1Char('\\') && i + 1 < exec.size()) {
            argument += exec.at(++i);
        } else if (!isQuoted && c.isSpace()) {
            if (hasArgument)
                arguments.append(argument);
            argument.clear();
            hasArgument = false;
        } else {
            argument += c;
            hasArgument = true;
        }
    }
    if (isQuoted)
        return QStringList();
    if (hasArgument)
        arguments.append(argument);
    return arguments;
}

// The four field codes for what is to be opened. A handler of URLs takes a URL with each of them;
// as a file name it would lose its fragment.
bool isTargetCode(QChar code)
{
    return QLatin1String("uUfF").contains(code);
}

bool hasTargetCode(const QString& argument)
{
    for (int i = 0; i + 1 < argument.size(); ++i) {
        if (argument.at(i) != QLatin1Char('%'))
            continue;
        ++i; // the second character of %% begins no code
        if (isTargetCode(argument.at(i)))
            return true;
    }
    return false;
}

} // namespace

DesktopEntry DesktopEntry::find(const QString& id)
{
    const QStringList folders =
        QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
    for (const QString& folder : folders) {
        const QString path = pathOf(id, folder);
        if (!path.isEmpty())
            return read(path);
    }
    return DesktopEntry();
}

DesktopEntry DesktopEntry::read(const QString& path)
{
    DesktopEntry entry;
    entry.m_path = path;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return entry;
    bool isInGroup = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        const int equals = line.indexOf(QLatin1Char('='));
        if (line.startsWith(QLatin1Char('[')))
            isInGroup = line == QLatin1String("[Desktop Entry]");
        else if (isInGroup && equals > 0 && !line.startsWith(QLatin1Char('#')))
            entry.m_values.insert(line.left(equals).trimmed(),
                                  unescaped(line.mid(equals + 1).trimmed()));
    }
    return entry;
}

QStringList DesktopEntry::command(const QString& url) const
{
    const QLatin1String isTrue("true");
    if (value(QStringLiteral("Hidden")) == isTrue || value(QStringLiteral("Terminal")) == isTrue)
        return QStringList();
    const QStringList arguments = splitExec(value(QStringLiteral("Exec")));
    if (arguments.isEmpty())
        return QStringList();
    QStringList command;
    bool takesTarget = false;
    for (const QString& argument : arguments) {
        command += expanded(argument, url);
        takesTarget = takesTarget || hasTargetCode(argument);
    }
    if (!takesTarget)
        command.append(url);
    return command;
}

QString DesktopEntry::value(const QString& key) const
{
    return m_values.value(key);
}

QString DesktopEntry::localizedName() const
{
    const QString name = QStringLiteral("Name");
    const QString locale = QLocale().name(); // de_DE
    const QString language = locale.section(QLatin1Char('_'), 0, 0);
    for (const QString& suffix : {locale, language}) {
        QString translation = value(name + QLatin1Char('[') + suffix + QLatin1Char(']'));
        if (!translation.isEmpty())
            return translation;
    }
    return value(name);
}

// The arguments that one argument of the Exec value stands for; the deprecated and unknown field
// codes stand for nothing.
QStringList DesktopEntry::expanded(const QString& argument, const QString& url) const
{
    if (argument == QLatin1String("%i")) {
        const QString icon = value(QStringLiteral("Icon"));
        return icon.isEmpty() ? QStringList() : QStringList{QStringLiteral("--icon"), icon};
    }
    QString text;
    for (int i = 0; i < argument.size(); ++i) {
        if (argument.at(i) != QLatin1Char('%') || i + 1 == argument.size()) {
            text += argument.at(i);
            continue;
        }
        const QChar code = argument.at(++i);
        if (isTargetCode(code))
            text += url;
        else if (code == QLatin1Char('c'))
            text += localizedName();
        else if (code == QLatin1Char('k'))
            text += m_path;
        else if (code == QLatin1Char('%'))
            text += code;
    }
    // A lone code without a value is no argument, but "" is an empty one.
    const bool isDropped = text.isEmpty() && !argument.isEmpty();
    return isDropped ? QStringList() : QStringList(text);
}

} // namespace UtilsNS
