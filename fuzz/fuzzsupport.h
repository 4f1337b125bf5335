#ifndef FUZZ_FUZZSUPPORT_H
#define FUZZ_FUZZSUPPORT_H

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <QtGlobal>

#include "hts/status.h"

class QIODevice;
struct HtsPackage;

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

// Reads `device`, which holds `text`, line by line. Sets `isEndless` when the rules of the format
// let the reading go on for ever: a table has no "END_SLOT" behind it, and the search for that line
// deliberately doesn't stop at the end of the input. Such an input must not get to the reader of
// hts/.
//
// This is exact: the search can read no more lines than the text has, unless it is past the end.
//
// Nothing else of an input needs to be kept away. Counts that it announces cost no memory: runs,
// timesteps and values must stand in the file, and a table has few rows behind its end.
Status readPlainly(QIODevice& device, const QByteArray& text, HtsPackage& package, bool& isEndless);

// Whether the reading of `text` in binary mode never ends.
bool isEndless(const QByteArray& text);

} // namespace fuzz

#endif // FUZZ_FUZZSUPPORT_H
