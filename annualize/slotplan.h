#ifndef ANNUALIZE_SLOTPLAN_H
#define ANNUALIZE_SLOTPLAN_H

#include <QString>

#include "annualize/aggmethods.h"
#include "annualize/aggvalues.h"
#include "annualize/completeyears.h"
#include "annualize/methodcontrol.h"
#include "hts/htspackage.h"
#include "hts/status.h"

// What happens to one slot of the input, decided when it is read in the first run: whether it gets
// a place in the result, and by which method. Keeps only what later runs and the log need.
struct SlotPlan
{
    // The slot gets its method from the first rule that matches it.
    SlotPlan(const HtsSlot& slot, const MethodControl& rules);
    // `methodWord` is empty for a slot without a method.
    SlotPlan(const HtsSlot& slot, const QString& methodWord);
    SlotPlan() = default; // for containers

    // Whether the slot gets a place in the result: a series slot with a method that is supported,
    // or with a word that is not a method, for which aggregate() fails.
    bool isAnnualized() const;

    // Logs why the slot has no place in the result. Logs nothing if it has one, or has no method.
    void logSkipped() const;

    // The slot in the result for `slot`, whose plan this is: with the method's word, and with units
    // that say so if the values are totals.
    HtsSlot annualSlot(const HtsSlot& slot) const;

    // Aggregates the values of the slot in one run, as AggValues::aggregate does. Only for a slot
    // that isAnnualized(). Fails when values and map differ in length, and with "Unknown method
    // specified" for a word that is not a method.
    Status aggregate(const HtsColumn& values, const YearStretches& stretches,
                     AggValues& aggValues) const;

    QString objectName;
    QString slotName;
    QString methodWord;
    const AggMethod* method = nullptr; // null also for a word that is not a method
    RuleId rule = kNoRule;             // that gives the method
    bool isSeries = false;
};

Q_DECLARE_TYPEINFO(SlotPlan, Q_MOVABLE_TYPE);

#endif // ANNUALIZE_SLOTPLAN_H
