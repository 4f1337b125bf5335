#ifndef TESTS_PLAIN_PLAINCONVERSION_H
#define TESTS_PLAIN_PLAINCONVERSION_H

#include <QString>

#include "hts/htspackage.h"
#include "hts/status.h"

class QIODevice;

// The simplest form of a conversion: step after step on a whole package in memory, each step logged
// at once. The tests of the engine compare with it, and the benchmarks measure against it. It
// shares the single steps with the engine (complete years, rules, aggregation), but not the order
// in which they are taken and reported, so keep it simple.
namespace plainconversion {

// Reads `source` with the plain reader, converts and writes the result to `result`, with the log
// lines and messages of AnnualizeHts::annualize.
Status convert(QIODevice& source, const QString& controlPath, int endMonth, QIODevice& result);

// The step between reading and writing: fills `output`, which is empty, with the annual runs, slots
// and values of `input`.
Status annualizePackage(const HtsPackage& input, const QString& controlPath, int endMonth,
                        HtsPackage& output);

} // namespace plainconversion

#endif // TESTS_PLAIN_PLAINCONVERSION_H
