#ifndef BENCH_PLAINREADER_PLAINREADER_H
#define BENCH_PLAINREADER_PLAINREADER_H

#include <QString>
#include <QtGlobal>

#include "hts/status.h"

class QIODevice;
struct HtsPackage;
struct HtsRun;
struct HtsSlot;

// The HTS reader in its plainest form: one QIODevice::readLine and one QString for every line. The
// tests of the reader compare with it, and the benchmarks measure against it. It shares nothing
// with the reader of hts/ but the model and textToDateTime, so keep it dull: no blocks, no tables.
//
//     HtsPackage package;
//     const Status status = plainreader::read(device, package);
namespace plainreader {

// How many lines the search for the "END_SLOT" of table slots may still read. A file without that
// line would keep it busy for ever.
struct LineBudget
{
    qint64 left;
    bool isExhausted = false;
};

// The rows of a table that may stand behind the end of the input.
constexpr int kMostRowsBehindTheEnd = 4096;

// Reads a whole file into `package`, which is empty. Without a budget the search for "END_SLOT" has
// no end; with one, a read that needs more lines fails and sets isExhausted.
Status read(QIODevice& device, HtsPackage& package, LineBudget* budget = nullptr);

// The steps, each from the device's position on.
Status readPackagePreamble(QIODevice& device, HtsPackage& package);
Status readRunPreamble(QIODevice& device, HtsRun& run);
Status readSlotPreamble(QIODevice& device, HtsSlot& slot);
Status readColumnHeader(QIODevice& device, QString& units, double& scale, QString& method);

} // namespace plainreader

#endif // BENCH_PLAINREADER_PLAINREADER_H
