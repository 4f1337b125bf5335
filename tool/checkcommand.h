#ifndef TOOL_CHECKCOMMAND_H
#define TOOL_CHECKCOMMAND_H

struct ToolIo;
struct ToolOptions;

// htstool check: checks the files of `options` one after another and writes what was found. Returns
// the exit code, the worst of all files.
int runCheck(const ToolOptions& options, const ToolIo& io);

#endif // TOOL_CHECKCOMMAND_H
