#ifndef COMPARE_COMPAREFILES_H
#define COMPARE_COMPAREFILES_H

#include "compare/difference.h"
#include "compare/valuecompare.h"
#include "hts/status.h"

class QIODevice;

struct CompareOutcome
{
    // Why a file cannot be read: the reader's message, or that a table has no end. Then nothing was
    // compared, unless a file became another one while it was read.
    Both<Status> status;
    // Of what was compared.
    qint64 runs = 0;
    qint64 slotCount = 0; // in all runs
    qint64 values = 0;
    // Of these, those that differ.
    qint64 differingSlots = 0;
    qint64 differingValues = 0; // without rows of tables
    // Differences in anything else than values and rows.
    qint64 structureDifferences = 0;
    // Values of both files that are not numbers, and count as 0.
    Both<qint64> textValues = {};

    bool areEqual() const { return structureDifferences == 0 && differingSlots == 0; }
};

// Compares two HTS files, and calls `sink` for each difference: run by run in the order of the
// first file, then what only the second has.
//
// Runs are matched by their traces, or their place (see matchRuns()), slots by object and slot
// name, timesteps by the instant. Names and texts of the package, and the keys of a run that say
// nothing of its timesteps, are not compared. Values are compared as they are, without scales.
//
// The devices are different ones, open for reading and not sequential. Both are read twice: without
// their values at first. Memory grows with the timesteps of a run; if two runs have different slots
// or in another order, with their number too.
CompareOutcome compareHts(const Both<QIODevice*>& devices, const Tolerance& tolerance,
                          const DifferenceSink& sink);

#endif // COMPARE_COMPAREFILES_H
