#include <cstdio>

#include <QByteArray>
#include <QtGlobal>

#include "app/platform.h"

void choosePlatformPlugin()
{
    // "minimal" does not read the fonts, which takes half of the start-up time; but not every
    // installation has it.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "minimal;offscreen");
}

void showFatal(const QString& message)
{
    std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
}
