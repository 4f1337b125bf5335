#ifndef TOOL_TOOL_H
#define TOOL_TOOL_H

#include <QStringList>

struct ToolIo;

// Runs htstool with `arguments`, the program's name first, as from QCoreApplication::arguments().
// Returns the exit code; see ExitCode. A QCoreApplication must exist.
int runTool(const QStringList& arguments, const ToolIo& io);

#endif // TOOL_TOOL_H
