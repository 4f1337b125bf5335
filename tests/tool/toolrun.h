#ifndef TESTS_TOOL_TOOLRUN_H
#define TESTS_TOOL_TOOLRUN_H

#include "tests/support/processrun.h"

// Runs of htstool, without a window platform, which it does not need.
class ToolRun : public ProcessRun
{
public:
    ToolRun();
};

// A shell command, up to its pipe, that prints a table with 64 slots and as many rows.
QString manyValues(int rows);

#endif // TESTS_TOOL_TOOLRUN_H
