#include "annualize/slotplan.h"

#include <vector>

#include <QStringList>

#include "QsLog.h"

namespace {

const QLatin1String kUnknownMethod("Unknown method specified");

// The word of a method as a column header has it. The slots with that method share the list.
const QStringList& wordList(const AggMethod& method)
{
    static const std::vector<QStringList> kLists = [] {
        std::vector<QStringList> lists;
        for (const AggMethod& each : aggMethods())
            lists.push_back({each.word});
        return lists;
    }();
    return kLists[static_cast<std::size_t>(&method - aggMethods().data())];
}

} // namespace

SlotPlan::SlotPlan(const HtsSlot& slot, const QString& word)
    : objectName(slot.objectName), slotName(slot.slotName), methodWord(word),
      method(findMethod(word)), isSeries(slot.isSeries())
{
}

SlotPlan::SlotPlan(const HtsSlot& slot, const MethodControl& rules)
    : objectName(slot.objectName), slotName(slot.slotName), rule(rules.ruleFor(slot)),
      isSeries(slot.isSeries())
{
    if (rule == kNoRule)
        return;
    method = &rules.methodOf(rule);
    methodWord = method->word;
}

bool SlotPlan::isAnnualized() const
{
    const bool isUnsupported = method != nullptr && !method->isSupported();
    return isSeries && !methodWord.isEmpty() && !isUnsupported;
}

void SlotPlan::logSkipped() const
{
    if (!isSeries) {
        QLOG_INFO() << fullSlotName(objectName, slotName) +
                           QLatin1String(" is not a series slot and won't be annualized");
    } else if (method != nullptr && !method->isSupported()) {
        QLOG_INFO() << fullSlotName(objectName, slotName) +
                           QLatin1String(" has a method of Salinity, which is not supported in "
                                         "the HtsAnnualizer");
    }
}

HtsSlot SlotPlan::annualSlot(const HtsSlot& slot) const
{
    HtsSlot annual = slot;
    annual.methods = method == nullptr ? QStringList{methodWord} : wordList(*method);
    if (method != nullptr && method->isTotal)
        annual.units = QStringList{slot.units.value(0) + QLatin1String(" summed over the year")};
    return annual;
}

Status SlotPlan::aggregate(const HtsColumn& values, const YearStretches& stretches,
                           AggValues& aggValues) const
{
    Q_ASSERT(isAnnualized());
    QString message;
    if (!aggValues.aggregate(values, stretches, message))
        return failure(message);
    return method == nullptr ? failure(kUnknownMethod) : Status();
}
