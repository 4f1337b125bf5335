#ifndef TESTS_PLAIN_PLAINREADER_H
#define TESTS_PLAIN_PLAINREADER_H

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include "hts/status.h"

class QIODevice;
struct HtsPackage;
struct HtsRun;
struct HtsSlot;

// The simplest form of the HTS reader: one QIODevice::readLine and one QString for every line. The
// tests of the reader compare with it, and the benchmarks measure against it. It shares nothing
// with the reader of hts/ but the model and textToDateTime, so keep it simple: no blocks, no
// tables.
//
//     HtsPackage package;
//     const Status status = plainreader::read(device, package);
namespace plainreader {

// How many lines the search for the "END_SLOT" of table slots may still read. A file without that
// line would make the search endless.
struct LineBudget
{
    qint64 left;
    bool isExhausted = false;
};

// The number of rows of a table that may be past the end of the input.
constexpr int kMaxRowsPastTheEnd = 4096;

// Reads a whole file into `package`, which is empty. Without a budget the search for "END_SLOT" has
// no end; with one, a read that needs more lines fails and sets isExhausted.
Status read(QIODevice& device, HtsPackage& package, LineBudget* budget = nullptr);

// Reads `device`, which holds `text`. Sets `isEndless` when by the rules of the format reading
// never ends: a table has no "END_SLOT" after it, and the search for that line deliberately doesn't
// stop at the end of the input. The reader of hts/ must not get such an input.
//
// This is exact: the search can read no more lines than the text has, unless it is past the end.
//
// No other input has to be kept away from it. Counts that it announces cost no memory: runs,
// timesteps and values must be in the file, and a table has few rows past its end.
Status readUnlessEndless(QIODevice& device, const QByteArray& text, HtsPackage& package,
                         bool& isEndless);

// Whether the reading of `text` in binary mode never ends.
bool isEndless(const QByteArray& text);

// The steps, each from the device's position on.
Status readPackagePreamble(QIODevice& device, HtsPackage& package);
Status readRunPreamble(QIODevice& device, HtsRun& run);
Status readSlotPreamble(QIODevice& device, HtsSlot& slot);
Status readColumnHeader(QIODevice& device, QString& units, double& scale, QString& method);

} // namespace plainreader

#endif // TESTS_PLAIN_PLAINREADER_H
