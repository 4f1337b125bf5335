#ifndef CHECK_YEARCOUNTS_H
#define CHECK_YEARCOUNTS_H

#include <vector>

#include <QByteArray>
#include <QString>

#include "check/timecheck.h"
#include "hts/htsrun.h"
#include "hts/htsslot.h"

class CsvWriter;

// Counts the timesteps and the missing values of every complete year of every series slot, and
// writes a row for each: file, run, trace, object, slot, year end, timesteps, missing.
class YearCounts
{
public:
    // The writer outlives the object. `file` is the name of the file in the rows.
    YearCounts(CsvWriter& writer, const QString& file);

    // Writes the row of column names; to be called once for all files.
    static void writeHeader(CsvWriter& writer);

    // To be called before the slots of a run; `runIndex` is counted from 0. The years must stay
    // valid until the next run.
    void beginRun(int runIndex, const HtsRun& run, const RunYears& years);
    void addSlot(const HtsSlot& slot, const std::vector<double>& values);

private:
    struct Year
    {
        qint64 timesteps = 0;
        qint64 missing = 0;
    };

    CsvWriter& m_writer;
    // CSV fields: the file; file, run and trace; the end of each year.
    const QByteArray m_file;
    QByteArray m_run;
    std::vector<QByteArray> m_yearEnds;
    const RunYears* m_years = nullptr;
    std::vector<Year> m_counts; // a buffer
};

#endif // CHECK_YEARCOUNTS_H
