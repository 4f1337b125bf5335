#include <cstddef>

#include <QByteArray>

#include "app/platform.h"
#include "utils/console.h"

void showFatal(const QString& message)
{
    const QByteArray text = message.toLocal8Bit() + '\n';
    UtilsNS::Console& console = UtilsNS::processConsole();
    if (console.open())
        console.write(text.constData(), static_cast<std::size_t>(text.size()));
}
