#ifndef FUZZ_FUZZSUPPORT_H
#define FUZZ_FUZZSUPPORT_H

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <QtGlobal>

// What the fuzz targets share.
namespace fuzz {

// Unless `holds`, prints `message` to stderr and aborts the process.
void require(bool holds, const QString& message);

// Unless the texts are equal, prints both with `what` and aborts the process.
void requireEqual(const QString& what, const QString& actual, const QString& expected);

// A number for chance that depends on the input alone.
quint64 seedOf(const QByteArray& input);

// A file with a content for each input, in a folder that goes away with the object.
class ScratchFile
{
public:
    QString path() const;
    void write(const QByteArray& content) const;

private:
    QTemporaryDir m_folder;
};

} // namespace fuzz

#endif // FUZZ_FUZZSUPPORT_H
