#ifndef COMPARE_RUNINDEX_H
#define COMPARE_RUNINDEX_H

#include <vector>

#include <QByteArray>

#include "compare/difference.h"
#include "hts/htswalk.h"
#include "hts/status.h"

class QIODevice;

// A run of a file, as it is found by reading all of the file without its values.
struct RunEntry
{
    HtsWalk::Bookmark bookmark;
    int trace = -1; // -1 for none
    // The same for two runs with the same slots in the same order, by the names.
    QByteArray slotNames;
};

// Sets `runs` to the runs of a file. Fails with the reader's message, or for a table without its
// end. The device is not sequential, and its position is at the package preamble.
Status readRunIndex(QIODevice& device, std::vector<RunEntry>& runs);

// For each run of the first file the index of the run of the second one that it is compared with,
// or -1: the one with the same trace if all runs of both files have one of their own, else the one
// in the same place.
std::vector<int> matchRuns(const Both<std::vector<RunEntry>>& runs);

#endif // COMPARE_RUNINDEX_H
