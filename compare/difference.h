#ifndef COMPARE_DIFFERENCE_H
#define COMPARE_DIFFERENCE_H

#include <array>
#include <functional>

#include <QLatin1String>
#include <QString>
#include <QtGlobal>

// What stands for each of two files: the first, the second.
template<typename Type>
using Both = std::array<Type, 2>;

// What two files can differ in.
enum class Aspect {
    Run,      // it is in one file only
    RunOrder, // the runs of the second file come in another order, from this one on
    Trace,    // from here to End: a key of the run
    Unit,
    Quantity,
    Start,
    End,
    Timesteps,
    Slot,       // it is in one file only
    SlotOrder,  // the slots of the run in the second file come in another order, from this one on
    ObjectType, // from here to Rows: a line of the slot
    SlotType,
    Units,
    Scale,
    Method,
    Rows, // rows of a table
    Values,
};

// The word for an aspect in documents for programs; that of a key is the key.
QLatin1String aspectWord(Aspect aspect);

// Numbers that differ.
struct NumberPair
{
    QString timestep; // as in the first file; empty for a slot that is not a series
    Both<double> values = {};
    double size = 0; // of the difference, absolute or relative; 0 unless both are finite
};

// How the values of a slot differ. Those of timesteps that only one file has are not compared.
struct ValueDifferences
{
    qint64 compared = 0;
    qint64 differing = 0;
    // How many of them are missing in one of the files: NaN or infinite.
    qint64 missingInOne = 0;
    NumberPair first;
    NumberPair largestAbsolute;
    NumberPair largestRelative; // to the larger of the two
};

// How the timesteps of two runs differ.
struct StepDifferences
{
    Both<qint64> count = {};
    qint64 common = 0;
    QString first; // the first that only one file has; empty if they only come in another order
};

struct Difference
{
    Aspect aspect = Aspect::Run;
    Both<int> runs = {}; // numbers of the run, counted from 1; 0 in a file that does not have it
    QString slot;        // Object.Slot; empty for a difference of the run
    // Where the run, the slot or the first value or row that differs is, counted from 1; 0 in a
    // file that does not have it.
    Both<qint64> lines = {};
    Both<QString> texts; // what each file has: of a key, a line of a slot, or the first such row
    qint64 rows = 0;     // that differ
    ValueDifferences values;
    StepDifferences steps;
};

using DifferenceSink = std::function<void(const Difference&)>;

#endif // COMPARE_DIFFERENCE_H
