#ifndef CHECK_RUNCHECK_H
#define CHECK_RUNCHECK_H

#include <vector>

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include "check/finding.h"
#include "check/timecheck.h"
#include "hts/htsrun.h"
#include "hts/htsslot.h"
#include "hts/status.h"

class Findings;

// Compares later runs with the first, whose slots, headers and years a conversion uses for all of
// them. The values of a slot go to the slot of the first run in the same position.
class RunCheck
{
public:
    RunCheck(int endMonth, Findings& findings) : m_endMonth(endMonth), m_findings(findings) {}

    void setFirstRun(const HtsRun& run);
    // A slot of the first run; `isConverted`: a conversion gives it a place in the result.
    void addFirstSlot(const HtsSlot& slot, bool isConverted);

    // A later run; `runIndex` is counted from 0. To be called before its slots. Returns whether its
    // timing, and with it its years, are those of the first run.
    bool beginRun(int runIndex, const HtsRun& run, const RunLines& lines);
    // The next slot of the run, with `valueCount` values and a preamble that begins on `line`.
    void addSlot(const HtsSlot& slot, std::size_t valueCount, qint64 line);
    // To be called after the last slot of the run, with the line of "END_RUN".
    void finishRun(qint64 line);

    // The failure of a conversion because of a later run; a success if there is none.
    const Status& status() const { return m_status; }

private:
    struct FirstSlot
    {
        QString objectType;
        QString objectName;
        QString slotName;
        QString units;
        double scale = 0.0;
        bool isConverted = false;
    };

    void fail(Code code, qint64 line, const Status& status, const QString& text);
    void checkSteps(const HtsRun& run, const RunLines& lines);
    void checkUnit(const HtsRun& run, const RunLines& lines);
    void compareName(const FirstSlot& first, const HtsSlot& slot, qint64 line);
    void compareHeader(const FirstSlot& first, const HtsSlot& slot, qint64 line);
    void compareValueCount(const FirstSlot& first, std::size_t valueCount, qint64 line);

    const int m_endMonth;
    Findings& m_findings;
    Status m_status;

    QDateTime m_start;
    QDateTime m_end;
    int m_timeStepCount = 0;
    QStringList m_timesteps;
    QString m_unit;
    int m_unitQuantity = 0;
    std::vector<FirstSlot> m_slots;
    std::size_t m_convertedEnd = 0; // index after the last that is converted

    // The current run.
    int m_runNumber = 0; // counted from 1
    std::size_t m_nextSlot = 0;
    bool m_hasFirstTiming = false;
    bool m_isOrderReported = false;
    bool m_isCountReported = false;
};

#endif // CHECK_RUNCHECK_H
