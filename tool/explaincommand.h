#ifndef TOOL_EXPLAINCOMMAND_H
#define TOOL_EXPLAINCOMMAND_H

struct ToolIo;
struct ToolOptions;

// htstool explain: says what the codes of `options` mean and what to do, or all codes. Returns the
// exit code.
int runExplain(const ToolOptions& options, const ToolIo& io);

#endif // TOOL_EXPLAINCOMMAND_H
