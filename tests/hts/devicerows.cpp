#include "tests/hts/devicerows.h"

#include <QtTest>

#include "tests/hts/piecedevice.h"
#include "tests/support/testmain.h"

void addDeviceRows(std::size_t kinds)
{
    addColumns<int, bool>("kind", "isTextMode");
    for (std::size_t kind = 0; kind < kinds; ++kind) {
        const char* name = deviceKinds()[kind].name;
        QTest::addRow("%s", name) << static_cast<int>(kind) << false;
        QTest::addRow("%s, text mode", name) << static_cast<int>(kind) << true;
    }
}

int rowKind()
{
    QFETCH(int, kind);
    return kind;
}

const DeviceKind& rowDeviceKind()
{
    return deviceKinds()[static_cast<std::size_t>(rowKind())];
}

bool isRowTextMode()
{
    QFETCH(bool, isTextMode);
    return isTextMode;
}

std::unique_ptr<QIODevice> openRowDevice(const QByteArray& text)
{
    auto device = rowDeviceKind().make(text);
    if (!device->open(rowDeviceKind().mode | readMode(isRowTextMode())))
        qFatal("cannot open the device");
    return device;
}

void addPipeRows()
{
    addColumns<int, int, QByteArray>("pieceSize", "mode", "lineEnd");
    for (const int pieceSize : {1, 2, 7, 1000000}) {
        for (const bool isTextMode : {false, true}) {
            for (const auto buffering : {QIODevice::NotOpen, QIODevice::Unbuffered}) {
                for (const char* lineEnd : {"\n", "\r\n"}) {
                    QTest::addRow("%d bytes%s%s%s", pieceSize, isTextMode ? ", text mode" : "",
                                  buffering == QIODevice::Unbuffered ? ", unbuffered" : "",
                                  lineEnd[0] == '\r' ? ", Windows" : "")
                        << pieceSize << static_cast<int>(readMode(isTextMode) | buffering)
                        << QByteArray(lineEnd);
                }
            }
        }
    }
}
