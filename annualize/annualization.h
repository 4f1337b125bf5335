#ifndef ANNUALIZE_ANNUALIZATION_H
#define ANNUALIZE_ANNUALIZATION_H

#include <QDateTime>
#include <QLatin1String>
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
// values are read into a buffer that all slots use and aggregated at once, and only the annual
// values are kept.
//
//     Annualization annualization(controlPath, endMonth);
//     Status status = annualization.read(source);
//     if (status.ok())
//         status = annualization.report();
//     if (status.ok())
//         status = annualization.annualPackage().write(result);
//
// The engine decides while it reads and reports afterwards, because a fault of the file, up to the
// end of its last run, takes precedence over what the engine finds in years, rules or slots, and a
// step that is not reached must not be logged. What read() found is kept until report() logs it,
// step by step, and returns the first failure.
class Annualization
{
public:
    // The failure when no slot of the input gets a place in the result.
    static inline const QLatin1String kNoSlots{
        "No series slots with valid methods found in input HTS file"};

    // `controlPath` is not empty, `endMonth` is 1 to 12.
    Annualization(const QString& controlPath, int endMonth);

    // Reads the input to the end of its last run, and annualizes it as far as that is possible.
    // Fails only for faults of the file itself; see HtsPackage::read for the messages. The control
    // file is opened once: after the timesteps of the first run, if they have a complete year. Call
    // it once.
    Status read(QIODevice& source);

    // Logs the steps of the conversion. Fails with the first reason, in the order of the steps, why
    // there is no result. Call it after read() has succeeded.
    Status report() const;

    // The result; complete when report() has succeeded.
    const HtsPackage& annualPackage() const { return m_annual; }
    // Number of slots of the input's first run, of whatever kind.
    int inputSlotCount() const { return m_plans.size(); }

private:
    // The first reason why there is no result, of those that come after the search for the first
    // run's years.
    struct Failure
    {
        int run = -1; // none
        int slot = 0; // the slots before it were annualized
        Status status;
        CompleteYears years; // of the run, if its timing is another
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
    int m_annualizedCount = 0; // plans of slots that get a place in the result
    int m_annualizedEnd = 0;   // index after the last of them
    int m_runCount = 0;
    bool m_isRead = false; // the whole input was read without a failure
    Failure m_failure;
    HtsPackage m_annual;

    // Timing of the first run.
    QDateTime m_start;
    QDateTime m_end;
    int m_timeStepCount = 0;
    // Those of the first run, until a run has another timing.
    ValueMap m_valueMap;
    HtsRun m_annualRun;

    // Buffers that are reused for each slot.
    HtsColumn m_values;
    AggValues m_aggValues;
};

#endif // ANNUALIZE_ANNUALIZATION_H
