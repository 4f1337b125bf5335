// The driver of a conversion: settings, and the way from the read package to the written one.

#include "annualize/annualizehts.h"

#include <algorithm>
#include <utility>

#include "QsLog.h"
#include "annualize/aggmethods.h"
#include "annualize/aggvalues.h"

namespace {

const QLatin1String kNoSource("Source HTS device pointer cannot be NULL");
const QLatin1String kNoResult("Result annual HTS device pointer cannot be NULL");
const QLatin1String kNoControlFile("Method specification file name cannot be blank");
const QLatin1String kBadMonth("Integer for the end of year month is out of the range 1 to 12");
const QLatin1String kNotSet("Input HTS file device, output annual file device, control file path, "
                            "or end year month not set");
const QLatin1String kNoSlots("No series slots with valid methods found in input HTS file");
const QLatin1String kUnknownMethod("Unknown method specified");

bool isMonth(int month)
{
    return month >= 1 && month <= 12;
}

QString fullName(const HtsSlot& slot)
{
    return slot.objectName + QLatin1Char('.') + slot.slotName;
}

bool isSalinity(const QString& method)
{
    return method == QLatin1String("Salinity");
}

// Whether a slot gets a place in the result. A method that nothing can be done with is not sorted
// out here: it ends the conversion when its turn comes.
bool isAnnualized(const HtsSlot& slot, const QString& method)
{
    return slot.isSeries() && !method.isEmpty() && !isSalinity(method);
}

void logSkipped(const HtsSlot& slot, const QString& method)
{
    if (!slot.isSeries()) {
        QLOG_INFO() << fullName(slot) +
                           QLatin1String(" is not a series slot and won't be annualized");
    } else if (isSalinity(method)) {
        QLOG_INFO() << fullName(slot) +
                           QLatin1String(" has a method of Salinity, which is not supported in "
                                         "the HtsAnnualizer");
    }
}

// The values of a slot in a run. A later run may hold fewer slots than the first, and there may be
// no column.
const HtsColumn& valuesOf(const HtsPackage& package, int run, int slot)
{
    static const HtsColumn kNoValues;
    const auto r = static_cast<std::size_t>(run);
    const auto s = static_cast<std::size_t>(slot);
    const bool isHeld =
        r < package.values.size() && s < package.values[r].size() && !package.values[r][s].empty();
    return isHeld ? package.values[r][s].front() : kNoValues;
}

HtsSlot annualSlot(const HtsSlot& slot, const AggMethod& method)
{
    HtsSlot result = slot;
    result.methods = QStringList{method.word};
    if (method.isTotal)
        result.units = QStringList{slot.units.value(0) + QLatin1String(" summed over the year")};
    return result;
}

bool haveSameTiming(const HtsRun& run, const HtsRun& other)
{
    return run.start == other.start && run.end == other.end &&
           run.timeStepCount == other.timeStepCount;
}

} // namespace

// Annualizes the slots of one run after another into the output package.
class AnnualizeHts::SlotLoop
{
public:
    SlotLoop(const HtsPackage& input, const QStringList& methods, HtsPackage& output)
        : m_input(input), m_methods(methods), m_output(output)
    {
    }

    // A slot beyond the list of methods, which is empty when they could not be assigned, has none.
    QString methodOf(int slotIndex) const { return m_methods.value(slotIndex); }

    // Number of slots that each run of the output gets.
    int countAnnualized() const
    {
        int count = 0;
        for (int s = 0; s < m_input.numSlots(); ++s)
            count += isAnnualized(m_input.slot(s), methodOf(s)) ? 1 : 0;
        return count;
    }

    Status annualizeRun(int runIndex, const ValueMap& valueMap, int yearCount)
    {
        m_outputSlot = 0;
        for (int s = 0; s < m_input.numSlots(); ++s) {
            if (!isAnnualized(m_input.slot(s), methodOf(s))) {
                logSkipped(m_input.slot(s), methodOf(s));
                continue;
            }
            Status status = annualizeSlot(runIndex, s, valueMap, yearCount);
            if (!status.ok())
                return status;
        }
        return {};
    }

private:
    Status annualizeSlot(int runIndex, int slotIndex, const ValueMap& valueMap, int yearCount)
    {
        QString message;
        if (!m_aggValues.aggregate(valuesOf(m_input, runIndex, slotIndex), valueMap, yearCount,
                                   message))
            return failure(message);
        const AggMethod* method = findMethod(methodOf(slotIndex));
        if (method == nullptr || !method->isSupported())
            return failure(kUnknownMethod);

        if (runIndex == 0)
            m_output.setSlot(m_outputSlot, annualSlot(m_input.slot(slotIndex), *method));
        auto& columns =
            m_output
                .values[static_cast<std::size_t>(runIndex)][static_cast<std::size_t>(m_outputSlot)];
        columns.resize(1); // a series slot
        columns.front() = (m_aggValues.*method->result)();
        ++m_outputSlot;
        return {};
    }

    const HtsPackage& m_input;
    const QStringList& m_methods;
    HtsPackage& m_output;
    AggValues m_aggValues;
    int m_outputSlot = 0; // where the next slot goes
};

AnnualizeHts::~AnnualizeHts() = default;

Status AnnualizeHts::setSourceDevice(QIODevice* device)
{
    if (device == nullptr)
        return failure(kNoSource);
    m_source = device;
    return {};
}

Status AnnualizeHts::setResultDevice(QIODevice* device)
{
    if (device == nullptr)
        return failure(kNoResult);
    m_result = device;
    return {};
}

Status AnnualizeHts::setControlFile(const QString& path)
{
    if (path.isEmpty())
        return failure(kNoControlFile);
    m_controlFile = path;
    return {};
}

Status AnnualizeHts::setEndMonth(int month)
{
    if (!isMonth(month))
        return failure(kBadMonth);
    m_endMonth = month;
    return {};
}

Status AnnualizeHts::annualize()
{
    if (m_source == nullptr || m_result == nullptr || m_controlFile.isEmpty() ||
        !isMonth(m_endMonth))
        return failure(kNotSet);

    HtsPackage input;
    Status status = input.read(*m_source);
    if (!status.ok())
        return status;
    HtsPackage output;
    status = annualizePackage(input, output);
    if (!status.ok())
        return status;
    status = output.write(*m_result);
    if (!status.ok())
        return status;
    QLOG_INFO() << QStringLiteral("Successfully wrote %1 out of %2 slots")
                       .arg(output.numSlots())
                       .arg(input.numSlots());
    return {};
}

Status AnnualizeHts::annualizePackage(const HtsPackage& input, HtsPackage& output) const
{
    HtsRun timing = input.run(0);
    HtsRun annualRun;
    ValueMap valueMap;
    Status status = calculateAnnualTimesteps(timing, valueMap, annualRun);
    if (!status.ok())
        return status;

    // The status is deliberately not looked at: without methods there are no slots to annualize,
    // which is what the user is told.
    QStringList methods;
    static_cast<void>(assignMethods(input.slots, methods));

    output.copyPreamble(input);
    SlotLoop slotLoop(input, methods, output);
    const int slotCount = slotLoop.countAnnualized();
    if (slotCount == 0)
        return failure(kNoSlots);
    output.setNumSlots(slotCount);
    QLOG_INFO() << "Starting to annualize slot data";

    for (int r = 0; r < input.numberOfRuns; ++r) {
        if (!haveSameTiming(input.run(r), timing)) {
            // The value map deliberately goes on growing, so that the aggregation refuses a run
            // whose timing differs.
            timing = input.run(r);
            status = calculateAnnualTimesteps(timing, valueMap, annualRun);
            if (!status.ok())
                return status;
        }
        output.setRun(r, annualRun);
        status = slotLoop.annualizeRun(r, valueMap, annualRun.timeStepCount);
        if (!status.ok())
            return status;
    }
    return {};
}
