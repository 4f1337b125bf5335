#ifndef TESTS_HTS_READERCOMPARE_H
#define TESTS_HTS_READERCOMPARE_H

#include <functional>
#include <memory>
#include <vector>

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include "hts/htspackage.h"
#include "hts/status.h"

// Compares the reader of hts/ with the plain reader, on every kind of device.

// A kind of device to read from.
struct DeviceKind
{
    const char* name;
    std::unique_ptr<QIODevice> (*make)(const QByteArray& text);
    // The device for the plain reader. It must return eight bytes at once, since on smaller pieces
    // that reader's look ahead would see less.
    std::unique_ptr<QIODevice> (*makeReference)(const QByteArray& text);
    QIODevice::OpenMode mode = QIODevice::ReadOnly;
};

// All kinds. On the first kQuickKinds of them an input takes no longer than its reading does.
const std::vector<DeviceKind>& deviceKinds();
constexpr std::size_t kQuickKinds = 4;

// Reads from a device into a package, which is empty.
using PackageReader = std::function<Status(QIODevice& device, HtsPackage& package)>;

struct ReaderComparison
{
    // The first difference: message, model (bit by bit), position and rest of the device, text
    // mode. Empty when they agree.
    QString difference;
    // The outcome of the plain reader.
    QString message;
};

// Reads `text`, in text mode without its lone carriage returns, by both.
ReaderComparison compareReaders(const DeviceKind& kind, bool isTextMode, const QByteArray& text,
                                const PackageReader& reader, const PackageReader& plainReader);

// The same with HtsPackage::read. A text whose reading never ends is not given to it; the message
// is then kEndless.
ReaderComparison compareReaders(const DeviceKind& kind, bool isTextMode, const QByteArray& text);
extern const QLatin1String kEndless;

#endif // TESTS_HTS_READERCOMPARE_H
