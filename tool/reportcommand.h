#ifndef TOOL_REPORTCOMMAND_H
#define TOOL_REPORTCOMMAND_H

struct ToolIo;
struct ToolOptions;

// htstool report: writes a page that shows what a conversion of the file of `options` gives, and
// what is doubtful. Returns the exit code.
int runReport(const ToolOptions& options, const ToolIo& io);

#endif // TOOL_REPORTCOMMAND_H
