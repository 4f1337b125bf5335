#ifndef TESTS_TOOL_TOOLRUN_H
#define TESTS_TOOL_TOOLRUN_H

#include <QByteArray>
#include <QString>

#include "tests/support/processrun.h"

// Runs of htstool, without a window platform, which it does not need.
class ToolRun : public ProcessRun
{
public:
    ToolRun();
};

// Content of a file of the source tree.
QByteArray sourceFile(const QString& path);

#endif // TESTS_TOOL_TOOLRUN_H
