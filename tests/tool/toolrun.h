#ifndef TESTS_TOOL_TOOLRUN_H
#define TESTS_TOOL_TOOLRUN_H

#include "tests/support/processrun.h"

// Runs of htstool, without a window platform, which it does not need.
class ToolRun : public ProcessRun
{
public:
    ToolRun();
};

#endif // TESTS_TOOL_TOOLRUN_H
