#ifndef TOOL_TOOL_H
#define TOOL_TOOL_H

#include <QStringList>

struct ToolIo;

// Runs htstool: `arguments` as QCoreApplication::arguments() gives them, the program's name first.
// Returns the exit code; see ExitCode. There must be a QCoreApplication.
int runTool(const QStringList& arguments, const ToolIo& io);

#endif // TOOL_TOOL_H
