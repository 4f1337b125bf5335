#include <QIODevice>

#include "hts/writetext.h"

void writeText(QIODevice& device, const char* text, std::size_t size)
{
    device.write(text, static_cast<qint64>(size));
}
