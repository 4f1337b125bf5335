#ifndef TOOL_TOOLIO_H
#define TOOL_TOOLIO_H

class Progress;
class QIODevice;

// Where a command writes its results and its errors, as UTF-8. The devices are not owned.
struct ToolIo
{
    QIODevice& output;
    QIODevice& errors;
    // Whether the severities in text reports are coloured.
    bool hasColour = false;
    // Wiped by what is written to both devices; null where none is shown. Not owned.
    Progress* progress = nullptr;
};

// What the exit codes mean; with several files the highest one counts.
struct ExitCode
{
    static constexpr int kNoWorseThanNotes = 0; // or, with --fail-on, nothing of it
    static constexpr int kWarnings = 1;         // or what --fail-on names
    static constexpr int kErrors = 2;
    static constexpr int kUnusable = 3; // wrong usage, or a file that cannot be opened or read
};

#endif // TOOL_TOOLIO_H
