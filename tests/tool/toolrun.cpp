#include "tests/tool/toolrun.h"

#include <QFile>

ToolRun::ToolRun() : ProcessRun(QStringLiteral(HTSTOOL))
{
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("none"));
}

QByteArray sourceFile(const QString& path)
{
    QFile file(QStringLiteral(SOURCE_DIR "/") + path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    return file.readAll();
}
