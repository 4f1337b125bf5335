#ifndef CHECK_YEARCOUNTS_H
#define CHECK_YEARCOUNTS_H

#include <vector>

#include <QByteArray>
#include <QString>

#include "annualize/aggvalues.h"
#include "check/checkobserver.h"
#include "check/runyears.h"

class CsvWriter;

// Writes what every annual value of every series slot rests on, a row for each: file, run, trace,
// object, slot and year, how many values there are and are missing, the result, and the times of
// the extremes.
class YearCounts : public CheckObserver
{
public:
    // The writer outlives the object. `file` is the name of the file in the rows.
    YearCounts(CsvWriter& writer, const QString& file);

    // Writes the row of column names; to be called once for all files.
    static void writeHeader(CsvWriter& writer);

    void runRead(const CheckContext& context) override;
    void slotRead(const CheckContext& context) override;

private:
    void addYear(std::size_t index, const YearValues& counts, const AggMethod* method);
    void addExtremes(const RunYear& year, const YearValues& counts);
    const QByteArray& fieldOfStep(std::size_t index);

    CsvWriter& m_writer;
    const CheckContext* m_context = nullptr; // of the run at hand
    // CSV fields of a year: its end, its name, and of one with all its values those up to the name,
    // and from the number of timesteps expected to the longest gap.
    struct YearFields
    {
        QByteArray end;
        QByteArray name;
        QByteArray wholeStart;
        QByteArray wholeRest;
    };

    // CSV fields: the file; file, run and trace; of each year.
    const QByteArray m_file;
    QByteArray m_run;
    std::vector<YearFields> m_years;
    bool m_isOfFirstRun = false; // the years are those of the first run
    QByteArray m_method;         // of the slot at hand
    // The timesteps of the run, and those of their fields that were needed: extremes often share
    // one.
    QStringList m_steps;
    std::vector<QByteArray> m_stepFields;
    AggValues m_aggValues; // a buffer
};

#endif // CHECK_YEARCOUNTS_H
