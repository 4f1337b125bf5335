#include "tests/tool/toolrun.h"

ToolRun::ToolRun() : ProcessRun(QStringLiteral(HTSTOOL))
{
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("none"));
}

QString manyValues(int rows)
{
    return QStringLiteral(R"sh(
    awk 'BEGIN {
        header = "time"
        for (i = 0; i < 64; ++i) {
            header = header ",A.S" i " [m]"
            values = values "," i
        }
        print header
        for (i = 0; i < %1; ++i)
            print strftime("%Y-%m-%dT%H:%M", i * 60, 1) values
    }' | )sh")
        .arg(rows);
}
