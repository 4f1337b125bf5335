#ifndef TOOL_IMPORTCOMMAND_H
#define TOOL_IMPORTCOMMAND_H

struct ToolIo;
struct ToolOptions;

// htstool import: makes an HTS file of the table of `options`. Returns the exit code.
int runImport(const ToolOptions& options, const ToolIo& io);

#endif // TOOL_IMPORTCOMMAND_H
