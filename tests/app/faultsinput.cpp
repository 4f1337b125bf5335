#include "tests/app/faultsinput.h"

QByteArray withSlots(const QByteArray& file, int count)
{
    const int first = file.indexOf("object_type");
    const int end = file.lastIndexOf("END_RUN");
    const QByteArray block = file.mid(first, end - first);
    QByteArray text = file.left(first);
    for (int i = 0; i < count; ++i) {
        const QByteArray name = QByteArray("Lake ").append(QByteArray::number(i));
        text.append(QByteArray(block).replace("Lake A", name));
    }
    text.append(file.mid(end));
    return text;
}
