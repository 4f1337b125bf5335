#ifndef REPORT_PAGEMODEL_H
#define REPORT_PAGEMODEL_H

#include <cstdint>
#include <vector>

#include <QString>
#include <QStringList>

#include "check/finding.h"
#include "check/runyears.h"
#include "report/envelope.h"
#include "report/htmltext.h"

struct AggMethod;

// What a page shows of one annual value.
struct PageYear
{
    double value = qQNaN(); // NaN for none
    qint32 present = 0;
    qint32 longestGap = 0;
    // Indexes of the timesteps of the extremes; -1 without a usable value.
    qint32 maximum = -1;
    qint32 minimum = -1;
    bool isDoubtful = false;   // rests on too few values
    bool hasSentinels = false; // rests on numbers that may mark missing ones
};

// What a page shows of one slot that is converted.
struct PageSlot
{
    QString name;
    QString objectType;
    QString units;
    QString annualUnits;
    double scale = 1.0;
    const AggMethod* method = nullptr;
    qint64 ruleLine = 0; // of the control file
    qint64 firstLine = 0;
    qint64 lastLine = 0;
    // The numbers that may mark missing values, and how many values they are.
    QStringList sentinels;
    qint64 sentinelCount = 0;
    // Of the first run.
    Envelope envelope;
    std::vector<PageYear> years; // none if there is no result
    // The annual values of the other runs with the same years, run after run.
    std::vector<double> others;
};

// A stretch without timesteps.
struct PageGap
{
    QString after; // the timestep before it
    qint64 missing;
    ChartRange place;
};

// A finding about the file, and the slot it concerns.
struct PageFinding
{
    Finding finding;
    int slot; // index of PageModel::slots, or -1
};

// What a page shows of a file; of the values only what is drawn, and of the years what is in the
// tables.
struct PageModel
{
    // Of the first run.
    QStringList timesteps;
    HtmlTexts stepTexts;       // the timesteps, for the tables of the slots
    QStringList yearTimesteps; // the last timestep of each year
    int runCount = 0;          // of all runs
    std::vector<RunYear> years;
    // Places of the years in the chart; as many as `years`.
    std::vector<ChartRange> yearPlaces;
    // All years that the chart touches, complete or not, by the calendar year that they end in.
    int firstYear = 0;
    std::vector<ChartRange> labelPlaces;
    std::vector<PageGap> gaps; // the first of them
    qint64 gapCount = 0;

    std::vector<PageSlot> slots;
    qint64 slotsNotAskedFor = 0; // converted, and of another name
    qint64 slotsBeyondLimit = 0; // converted, and not shown

    std::vector<PageFinding> findings; // by line

    // Against an annual file: the first differences, and how many there are.
    QStringList differences;
    qint64 differenceCount = 0;
};

#endif // REPORT_PAGEMODEL_H
