#ifndef ANNUALIZE_SLOTLOOP_H
#define ANNUALIZE_SLOTLOOP_H

#include <vector>

#include <QStringList>

#include "annualize/aggmethods.h"
#include "annualize/aggvalues.h"
#include "hts/htspackage.h"
#include "hts/status.h"

// Annualizes the slots of one run after another, from the input package into the output package:
// which slots get a place in the result, and what the result holds of them.
//
//     SlotLoop slotLoop(input, methods, output);
//     output.setNumSlots(slotLoop.countAnnualized());
//     const Status status = slotLoop.annualizeRun(0, valueMap, yearCount);
class SlotLoop
{
public:
    // The packages outlive the object. `methods` holds a method word for each slot of the input; a
    // slot beyond its end has none.
    SlotLoop(const HtsPackage& input, const QStringList& methods, HtsPackage& output);

    // Number of slots that get a place in the output: series slots with a method.
    int countAnnualized() const;

    // Annualizes all slots of a run that both packages hold. `valueMap` and `yearCount` are what
    // AggValues::aggregate takes. The first run also fills the output's slots. Fails when a slot
    // has another number of values than the value map, and with "Unknown method specified" for a
    // word that is no method.
    Status annualizeRun(int runIndex, const std::vector<std::int32_t>& valueMap, int yearCount);

private:
    struct SlotMethod
    {
        bool isGiven = false;
        const AggMethod* method = nullptr; // null for a word that is no method
    };

    bool isAnnualized(int slotIndex) const;
    void logSkipped(int slotIndex) const;
    void setOutputSlot(int slotIndex, const AggMethod& method);
    Status annualizeSlot(int runIndex, int slotIndex, const std::vector<std::int32_t>& valueMap,
                         int yearCount);

    const HtsPackage& m_input;
    HtsPackage& m_output;
    std::vector<SlotMethod> m_methods; // one for each slot of the input
    AggValues m_aggValues;
    int m_outputSlot = 0; // where the next slot goes
};

#endif // ANNUALIZE_SLOTLOOP_H
