#include "tool/terminal.h"

#include <atomic>
#include <string>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <io.h>
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

std::atomic<int> shownColumns{0}; // of the line

HANDLE errorHandle()
{
    return ::GetStdHandle(STD_ERROR_HANDLE);
}

void writeToConsole(const wchar_t* text, std::size_t size)
{
    DWORD written = 0;
    ::WriteConsoleW(errorHandle(), text, static_cast<DWORD>(size), &written, nullptr);
}

// Called in a thread of its own; the interrupt then ends the process.
BOOL WINAPI wipeAndEnd(DWORD /*event*/)
{
    wipeTerminalLine();
    return FALSE;
}

// Older consoles know no escape sequences: blanks wipe the line.
class ConsoleLine : public StatusLine
{
public:
    int columns() const override
    {
        constexpr int kUsual = 80;
        CONSOLE_SCREEN_BUFFER_INFO info = {};
        const bool isKnown = ::GetConsoleScreenBufferInfo(errorHandle(), &info) != FALSE;
        return isKnown ? info.srWindow.Right - info.srWindow.Left + 1 : kUsual;
    }
    void show(const QString& text) override
    {
        wipe();
        const std::wstring line = text.toStdWString();
        shownColumns = columns() - 1;
        writeToConsole(line.data(), line.size());
    }
    void wipe() override { wipeTerminalLine(); }
};

} // namespace

std::unique_ptr<StatusLine> terminalLine()
{
    DWORD mode = 0;
    if (::GetConsoleMode(errorHandle(), &mode) == FALSE || qgetenv("TERM") == "dumb")
        return nullptr;
    ::SetConsoleCtrlHandler(wipeAndEnd, TRUE);
    return std::make_unique<ConsoleLine>();
}

void wipeTerminalLine()
{
    const int columns = shownColumns.exchange(0);
    if (columns == 0)
        return;
    writeToConsole(L"\r", 1);
    for (int i = 0; i < columns; ++i)
        writeToConsole(L" ", 1);
    writeToConsole(L"\r", 1);
}

bool isTerminal(int descriptor)
{
    return ::_isatty(descriptor) != 0;
}

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
