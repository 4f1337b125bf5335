#ifndef TOOL_DIFFCOMMAND_H
#define TOOL_DIFFCOMMAND_H

struct ToolIo;
struct ToolOptions;

// htstool diff: compares the two files of `options` and writes what differs. Returns the exit code.
int runDiff(const ToolOptions& options, const ToolIo& io);

#endif // TOOL_DIFFCOMMAND_H
