#ifndef CHECK_YEARCOUNTS_H
#define CHECK_YEARCOUNTS_H

#include <vector>

#include <QByteArray>
#include <QString>

#include "annualize/aggvalues.h"

class Conversion;
class CsvWriter;
class HtsWalk;

// Writes the number of timesteps and of missing values of every complete year of every series slot,
// a row for each: file, run, trace, object, slot, year end, timesteps, missing.
class YearCounts
{
public:
    // The writer outlives the object. `file` is the name of the file in the rows.
    YearCounts(CsvWriter& writer, const QString& file);

    // Writes the row of column names; to be called once for all files.
    static void writeHeader(CsvWriter& writer);

    // To be called with each run and each slot that the walk has read and the conversion has taken.
    void beginRun(const HtsWalk& walk, const Conversion& conversion);
    void addSlot(HtsWalk& walk, const Conversion& conversion);

private:
    CsvWriter& m_writer;
    // CSV fields: the file; file, run and trace; the end of each year.
    const QByteArray m_file;
    QByteArray m_run;
    std::vector<QByteArray> m_yearEnds;
    AggValues m_aggValues; // a buffer
};

#endif // CHECK_YEARCOUNTS_H
