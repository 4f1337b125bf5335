#ifndef TOOL_TERMINAL_H
#define TOOL_TERMINAL_H

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

// The arguments of the process, given those of main().
QStringList processArguments(int argc, const char* const* argv);

// The paths that the user means. On Windows, where the shell leaves it to the program, each name
// with * or ? is replaced by those of the files that it stands for, sorted; if there are none, it
// stays.
QStringList expandedPaths(const QStringList& paths);

#endif // TOOL_TERMINAL_H
