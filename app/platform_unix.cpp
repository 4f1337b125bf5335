#include <cstdio>

#include "app/platform.h"

void showFatal(const QString& message)
{
    std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
}
