#ifndef ANNUALIZE_CONVERSION_H
#define ANNUALIZE_CONVERSION_H

#include <functional>
#include <vector>

#include <QLatin1String>
#include <QVector>

#include "annualize/aggvalues.h"
#include "annualize/completeyears.h"
#include "annualize/controlfile.h"
#include "annualize/slotplan.h"
#include "hts/htspackage.h"
#include "hts/status.h"

class HtsWalk;
class QIODevice;

// All decisions of one conversion: the years of each run, the method of each slot, the annual
// values, and why there is no result. It takes the sections of an HTS file as a walk reads them:
// each slot's values are aggregated at once, and only the annual values are kept.
//
//     Conversion conversion([&] { return readControlFile(path); }, endMonth);
//     HtsPackage preamble;
//     HtsWalk walk(reader, preamble);
//     while (walk.next())
//         conversion.take(walk);
//     conversion.finish(walk, preamble);
//     Status status = conversion.report();
//     if (status.ok())
//         status = conversion.annualPackage().write(result);
//
// It decides while the file is read and reports afterwards, because a fault of the file, up to the
// end of its last run, takes precedence over what is found in years, rules or slots, and a step
// that is not reached must not be logged.
//
// Whoever wants to know what a conversion would do, and not its result, lets it judge: what was
// decided about the section taken last is then open to him.
class Conversion
{
public:
    // The failure when no slot of the input gets a place in the result.
    static inline const QLatin1String kNoSlots{
        "No series slots with valid methods found in input HTS file"};

    enum class Purpose {
        Result, // rules are not read, and values not aggregated, once there can be no result
        Judge,  // everything is judged, also after a failure, and no annual values are kept
    };

    // Gets the rules. Called once, after the timesteps of the first run; for a result only if they
    // have a complete year.
    using RuleSource = std::function<ControlFile()>;

    // `endMonth` is 1 to 12.
    Conversion(RuleSource ruleSource, int endMonth, Purpose purpose = Purpose::Result);

    // Takes the section that the walk has read.
    void take(HtsWalk& walk);
    // To be called once after the walk: `preamble` is the package that it has read.
    void finish(const HtsWalk& walk, const HtsPackage& preamble);

    // The first reason, in the order of the steps of a conversion, why there is no result; a
    // success if there is none. Valid after finish().
    Status verdict() const;
    // Logs the steps of the conversion and returns the verdict. Not after a failure of the walk,
    // which comes before all steps, and not for a Conversion that judges.
    Status report() const;

    // The result; complete if the verdict is a success. Not for a Conversion that judges.
    const HtsPackage& annualPackage() const
    {
        Q_ASSERT(!isJudging());
        return m_annual;
    }

    // The complete years of the first run, and of the run at hand.
    const CompleteYears& firstYears() const { return m_firstYears; }
    const CompleteYears& runYears() const { return m_hasFirstTiming ? m_firstYears : m_ownYears; }
    // Whether start, end and number of timesteps of the run at hand are those of the first run. If
    // not, the conversion fails.
    bool hasFirstTiming() const { return m_hasFirstTiming; }
    // Why a run with another timing fails: its own years, or that the first run's do not fit.
    Status timingFailure() const;
    // One for each slot of the first run, in its order.
    const QVector<SlotPlan>& plans() const { return m_plans; }
    int annualizedCount() const { return m_annualizedCount; }
    const ControlFile& control() const { return m_control; }

    // What became of a slot that is annualized.
    struct SlotOutcome
    {
        int slot = -1; // index of its plan; -1 if none was annualized
        Status status; // why it fails
        // What its annual values are computed from: one for each of the run's years; none if it
        // fails. Valid until the next section is taken.
        const std::vector<YearValues>* years = nullptr;
    };
    // Of the slot taken last; at the end of a run, of the slots that it lacks, the first that
    // fails.
    const SlotOutcome& outcome() const { return m_outcome; }

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

    void beginRun(const HtsRun& run, int runIndex);
    void beginFirstRun(const HtsRun& run);
    void beginLaterRun(const HtsRun& run, int runIndex);
    void takeSlot(HtsWalk& walk);
    void planSlot(const HtsSlot& slot);
    void annualizeSlot(const HtsColumn& values, int runIndex, int slotIndex);
    void finishRun(int runIndex, int slotCount);
    bool isJudging() const { return m_purpose == Purpose::Judge; }
    bool isAnnualizing() const;
    bool isAnnualized(int slotIndex) const;
    void logAssignments() const;
    void logSkippedSlots(int slotCount) const;

    const RuleSource m_ruleSource;
    const int m_endMonth;
    const Purpose m_purpose;

    Status m_readStatus;
    bool m_isFinished = false;
    CompleteYears m_firstYears;
    YearStretches m_firstStretches;
    ControlFile m_control;
    QVector<SlotPlan> m_plans;
    int m_annualizedCount = 0; // plans of slots that get a place in the result
    int m_annualizedEnd = 0;   // index after the last of them
    int m_runCount = 0;
    Failure m_failure;
    HtsPackage m_annual;

    // Timing of the first run.
    QDateTime m_start;
    QDateTime m_end;
    int m_timeStepCount = 0;

    // The run at hand.
    bool m_hasFirstTiming = true;
    CompleteYears m_ownYears;       // if its timing is another
    YearStretches m_grownStretches; // of its slots, if its timing is another
    HtsRun m_annualRun;

    SlotOutcome m_outcome;
    AggValues m_aggValues; // a buffer for all slots
};

// Reads `source` to the end of its last run. Fails only for faults of the file itself; see
// HtsPackage::read for the messages.
Status readConversion(QIODevice& source, Conversion& conversion);

#endif // ANNUALIZE_CONVERSION_H
