// The driver of a conversion: settings, and the way from the read package to the written one.

#include "annualize/annualizehts.h"

#include <new>

#include "QsLog.h"
#include "annualize/slotloop.h"

namespace {

const QLatin1String kNoSource("Source HTS device pointer cannot be NULL");
const QLatin1String kNoResult("Result annual HTS device pointer cannot be NULL");
const QLatin1String kNoControlFile("Method specification file name cannot be blank");
const QLatin1String kBadMonth("Integer for the end of year month is out of the range 1 to 12");
const QLatin1String kNotSet("Input HTS file device, output annual file device, control file path, "
                            "or end year month not set");
const QLatin1String kNoMemory("Not enough memory");
const QLatin1String kNoSlots("No series slots with valid methods found in input HTS file");

bool isMonth(int month)
{
    return month >= 1 && month <= 12;
}

bool haveSameTiming(const HtsRun& run, const HtsRun& other)
{
    return run.start == other.start && run.end == other.end &&
           run.timeStepCount == other.timeStepCount;
}

} // namespace

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
    try {
        return convert();
    } catch (const std::bad_alloc&) {
        return failure(kNoMemory);
    }
}

Status AnnualizeHts::convert()
{
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
