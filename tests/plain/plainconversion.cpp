#include "tests/plain/plainconversion.h"

#include <vector>

#include <QStringList>

#include "QsLog.h"
#include "annualize/aggmethods.h"
#include "annualize/aggvalues.h"
#include "annualize/annualizehts.h"
#include "tests/plain/plainreader.h"

namespace plainconversion {

namespace {

bool haveSameTiming(const HtsRun& run, const HtsRun& other)
{
    return run.start == other.start && run.end == other.end &&
           run.timeStepCount == other.timeStepCount;
}

bool isAnnualized(const HtsSlot& slot, const QString& method)
{
    const bool isSeries = slot.slotType.isEmpty() || slot.slotType == QLatin1String("SeriesSlot");
    return isSeries && !method.isEmpty() && method != QLatin1String("Salinity");
}

QString nameOf(const HtsSlot& slot)
{
    return slot.objectName + QLatin1Char('.') + slot.slotName;
}

void logSkipped(const HtsSlot& slot, const QString& method)
{
    if (!slot.slotType.isEmpty() && slot.slotType != QLatin1String("SeriesSlot")) {
        QLOG_INFO() << nameOf(slot) +
                           QLatin1String(" is not a series slot and won't be annualized");
    } else if (method == QLatin1String("Salinity")) {
        QLOG_INFO() << nameOf(slot) + QLatin1String(" has a method of Salinity, which is not "
                                                    "supported in the HtsAnnualizer");
    }
}

HtsColumn valuesOf(const HtsPackage& package, int run, int slot)
{
    const auto& slots = package.values.at(static_cast<std::size_t>(run));
    const auto s = static_cast<std::size_t>(slot);
    return s < slots.size() && !slots[s].empty() ? slots[s].front() : HtsColumn();
}

HtsSlot annualSlot(const HtsSlot& slot, const QString& method)
{
    HtsSlot annual = slot;
    annual.methods = QStringList{method};
    if (method == QLatin1String("Sum") || method == QLatin1String("SumNaN"))
        annual.units = QStringList{slot.units.value(0) + QLatin1String(" summed over the year")};
    return annual;
}

Status annualizeRun(const HtsPackage& input, int r, const QStringList& methods,
                    const AnnualizeHts::ValueMap& valueMap, HtsPackage& output)
{
    AggValues aggValues;
    int k = 0;
    for (int s = 0; s < input.numSlots(); ++s) {
        const HtsSlot& slot = input.slot(s);
        if (!isAnnualized(slot, methods.value(s))) {
            logSkipped(slot, methods.value(s));
            continue;
        }
        QString message;
        if (!aggValues.aggregate(valuesOf(input, r, s), valueMap, output.run(r).timeStepCount,
                                 message))
            return failure(message);
        const AggMethod* method = findMethod(methods.at(s));
        if (method == nullptr)
            return failure(QLatin1String("Unknown method specified"));
        if (r == 0)
            output.setSlot(k, annualSlot(slot, methods.at(s)));
        auto& columns = output.values[static_cast<std::size_t>(r)][static_cast<std::size_t>(k)];
        columns.assign(1, aggValues.results(*method));
        ++k;
    }
    return {};
}

} // namespace

Status annualizePackage(const HtsPackage& input, const QString& controlPath, int endMonth,
                        HtsPackage& output)
{
    AnnualizeHts engine; // for its steps
    Status status = engine.setControlFile(controlPath);
    if (status.ok())
        status = engine.setEndMonth(endMonth);
    if (!status.ok())
        return status;

    output.copyPreamble(input);
    HtsRun timing = input.run(0);
    HtsRun annualRun;
    AnnualizeHts::ValueMap valueMap;
    status = engine.calculateAnnualTimesteps(timing, valueMap, annualRun);
    if (!status.ok())
        return status;
    QStringList methods;
    static_cast<void>(engine.assignMethods(input.slots, methods));

    int count = 0;
    for (int s = 0; s < input.numSlots(); ++s)
        count += isAnnualized(input.slot(s), methods.value(s)) ? 1 : 0;
    if (count == 0)
        return failure(QLatin1String("No series slots with valid methods found in input HTS file"));
    output.setNumSlots(count);
    QLOG_INFO() << "Starting to annualize slot data";

    for (int r = 0; r < input.numberOfRuns; ++r) {
        if (!haveSameTiming(input.run(r), timing)) {
            timing = input.run(r);
            status = engine.calculateAnnualTimesteps(timing, valueMap, annualRun);
            if (!status.ok())
                return status;
        }
        output.setRun(r, annualRun);
        status = annualizeRun(input, r, methods, valueMap, output);
        if (!status.ok())
            return status;
    }
    return {};
}

Status convert(QIODevice& source, const QString& controlPath, int endMonth, QIODevice& result)
{
    HtsPackage input;
    Status status = plainreader::read(source, input);
    HtsPackage output;
    if (status.ok())
        status = annualizePackage(input, controlPath, endMonth, output);
    if (status.ok())
        status = output.write(result);
    if (status.ok()) {
        QLOG_INFO() << QStringLiteral("Successfully wrote %1 out of %2 slots")
                           .arg(output.numSlots())
                           .arg(input.numSlots());
    }
    return status;
}

} // namespace plainconversion
