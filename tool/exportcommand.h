#ifndef TOOL_EXPORTCOMMAND_H
#define TOOL_EXPORTCOMMAND_H

struct ToolIo;
struct ToolOptions;

// htstool export: writes the values of the file of `options` as comma-separated values. Returns the
// exit code.
int runExport(const ToolOptions& options, const ToolIo& io);

#endif // TOOL_EXPORTCOMMAND_H
