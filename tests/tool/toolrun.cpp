#include "tests/tool/toolrun.h"

ToolRun::ToolRun() : ProcessRun(QStringLiteral(HTSTOOL))
{
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("none"));
}
