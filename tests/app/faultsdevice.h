#ifndef TESTS_APP_FAULTSDEVICE_H
#define TESTS_APP_FAULTSDEVICE_H

#include <QByteArray>
#include <QIODevice>

// A device that gives some bytes of its data and whose reads fail from then on, as those of a disk
// or a network do.
class FaultsDevice : public QIODevice
{
public:
    FaultsDevice(const QByteArray& data, int failAt);

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    const QByteArray m_readable;
    qint64 m_next = 0;
};

#endif // TESTS_APP_FAULTSDEVICE_H
