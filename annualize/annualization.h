#ifndef ANNUALIZE_ANNUALIZATION_H
#define ANNUALIZE_ANNUALIZATION_H

#include <vector>

#include <QDateTime>
#include <QString>
#include <QVector>

#include "annualize/aggvalues.h"
#include "annualize/completeyears.h"
#include "annualize/controlfile.h"
#include "annualize/slotplan.h"
#include "hts/htspackage.h"
#include "hts/status.h"

class HtsReader;
class QIODevice;

// One conversion, from the input device to the annual package in memory, in one pass: each slot's
// values are aggregated as they are read, into a buffer that is used again, and only the annual
// values are kept.
//
//     Annualization annualization(controlPath, endMonth);
//     Status status = annualization.read(source);
//     if (status.ok())
//         status = annualization.report();
//     if (status.ok())
//         status = annualization.annualPackage().write(result);
//
// The engine decides while it reads and reports afterwards, because whatever is wrong with the
// file, up to the end of its last run, counts before what the engine finds in years, rules or
// slots, and nothing is logged of a step that would not have been reached. What read() found is
// kept until report() logs it, step by step, and returns the first failure.
class Annualization
{
public:
    // `controlPath` is not empty, `endMonth` is 1 to 12.
    Annualization(const QString& controlPath, int endMonth);

    // Reads the input to the end of its last run, and annualizes it as far as that is possible.
    // Fails only for what the file itself has wrong; see HtsPackage::read for the messages. The
    // control file is opened once: after the timesteps of the first run, if they have a complete
    // year. Call it once.
    Status read(QIODevice& source);

    // Logs the steps of the conversion. Fails with the first reason, in the order of the steps, for
    // which there is no result. After read() has succeeded.
    Status report() const;

    // The result; complete when report() has succeeded.
    const HtsPackage& annualPackage() const { return m_annual; }
    // Number of slots of the input's first run, of whatever kind.
    int inputSlotCount() const { return m_plans.size(); }

private:
    // The first reason for which there is no result that lies after the first run's years and
    // slots.
    struct Failure
    {
        int run = -1; // none
        int slot = 0; // the slots before it are through
        Status status;
        CompleteYears years; // of the run, if they had to be found again
    };

    Status readRun(HtsReader& reader, int runIndex);
    Status readSlot(HtsReader& reader, const HtsRun& run, int runIndex, int slotIndex);
    void startFirstRun(const HtsRun& run);
    void startLaterRun(const HtsRun& run, int runIndex);
    void planSlot(const HtsSlot& slot);
    void annualizeSlot(int runIndex, int slotIndex);
    void finishRun(int runIndex, int slotCount);
    bool isAnnualizing() const;
    bool isAnnualized(int slotIndex) const;
    void logAssignments() const;
    void logSkippedSlots(int slotCount) const;

    const QString m_controlPath;
    const int m_endMonth;

    CompleteYears m_years; // of the first run
    ControlFile m_control;
    QVector<SlotPlan> m_plans; // one for each slot of the first run
    int m_annualizedCount = 0; // of them
    int m_runCount = 0;
    bool m_isRead = false; // all of the input, without a failure
    Failure m_failure;
    HtsPackage m_annual;

    // The timing in force: that of the first run, until a run has another.
    QDateTime m_start;
    QDateTime m_end;
    int m_timeStepCount = 0;
    ValueMap m_valueMap;
    HtsRun m_annualRun;

    // Buffers, used again for each slot.
    HtsColumn m_values;
    AggValues m_aggValues;
};

#endif // ANNUALIZE_ANNUALIZATION_H
