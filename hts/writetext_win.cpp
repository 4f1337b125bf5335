#include <QByteArray>
#include <QIODevice>

#include "hts/writetext.h"

void writeText(QIODevice& device, const char* text, std::size_t size)
{
    if (!device.isTextModeEnabled()) {
        device.write(text, static_cast<qint64>(size));
        return;
    }
    QByteArray bytes(text, static_cast<int>(size));
    bytes.replace('\n', "\r\n");
    device.setTextModeEnabled(false);
    device.write(bytes);
    device.setTextModeEnabled(true);
}
