#ifndef TOOL_TERMINAL_H
#define TOOL_TERMINAL_H

#include <memory>

#include <QString>
#include <QStringList>

// What a process has of the terminal or console that it runs in, in the way of each system.

// Whether texts on the standard output are coloured: as is usual, on a terminal; see no-color.org.
// On Windows the console takes colours while the object exists.
class OutputColour
{
public:
    OutputColour();
    ~OutputColour();
    OutputColour(const OutputColour&) = delete;
    OutputColour& operator=(const OutputColour&) = delete;

    bool isWanted() const { return m_isWanted; }

private:
    bool m_isWanted = false;
};

// Where one line is shown until another takes its place, or it is wiped.
class StatusLine
{
public:
    StatusLine() = default;
    virtual ~StatusLine() = default;
    Q_DISABLE_COPY(StatusLine)

    // How many there are for the line and the cursor after it.
    virtual int columns() const = 0;
    virtual void show(const QString& text) = 0;
    virtual void wipe() = 0;
};

// The line of the terminal that is the standard error; null if that is none, or one that cannot
// wipe. A signal or an interrupt that ends the process wipes it, too. Call it once.
std::unique_ptr<StatusLine> terminalLine();
// Wipes that line, where there is no object at hand. Takes no memory.
void wipeTerminalLine();

// Whether what is written to the descriptor, which may be -1, comes to a terminal.
bool isTerminal(int descriptor);

// The arguments of the process, given those of main().
QStringList processArguments(int argc, const char* const* argv);

// The paths that the user means. On Windows, where the shell leaves it to the program, each name
// with * or ? is replaced by those of the files that it stands for, sorted; if there are none, it
// stays.
QStringList expandedPaths(const QStringList& paths);

#endif // TOOL_TERMINAL_H
