#include "tool/terminal.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <windows.h>

namespace {

DWORD modeBefore = 0; // of the console

HANDLE outputHandle()
{
    return ::GetStdHandle(STD_OUTPUT_HANDLE);
}

// Brackets are letters of a name, unlike in the toolkit's own patterns.
QRegularExpression expressionOf(const QString& pattern)
{
    QString text = QRegularExpression::escape(pattern);
    text.replace(QLatin1String("\\*"), QLatin1String(".*"));
    text.replace(QLatin1String("\\?"), QLatin1String("."));
    return QRegularExpression(QRegularExpression::anchoredPattern(text),
                              QRegularExpression::CaseInsensitiveOption);
}

QStringList pathsLike(const QString& path)
{
    const QString pattern = QFileInfo(path).fileName();
    if (!pattern.contains(QLatin1Char('*')) && !pattern.contains(QLatin1Char('?')))
        return {path};
    const QString folder = path.left(path.size() - pattern.size());
    const QRegularExpression expression = expressionOf(pattern);
    QStringList paths;
    for (const QString& name : QDir(folder.isEmpty() ? QStringLiteral(".") : folder)
                                   .entryList(QDir::Files, QDir::Name | QDir::IgnoreCase)) {
        if (expression.match(name).hasMatch())
            paths.append(folder + name);
    }
    return paths.isEmpty() ? QStringList{path} : paths;
}

} // namespace

OutputColour::OutputColour()
{
    if (!qEnvironmentVariableIsEmpty("NO_COLOR") || qgetenv("TERM") == "dumb" ||
        ::GetConsoleMode(outputHandle(), &modeBefore) == FALSE)
        return;
    m_isWanted =
        ::SetConsoleMode(outputHandle(), modeBefore | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
}

OutputColour::~OutputColour()
{
    if (m_isWanted)
        ::SetConsoleMode(outputHandle(), modeBefore);
}

QStringList processArguments(int /*argc*/, const char* const* /*argv*/)
{
    return QCoreApplication::arguments(); // in UTF-16
}

QStringList expandedPaths(const QStringList& paths)
{
    QStringList expanded;
    for (const QString& path : paths)
        expanded += pathsLike(path);
    return expanded;
}
