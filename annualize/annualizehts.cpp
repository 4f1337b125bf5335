// The driver of a conversion: settings, and the steps from the source to the result.

#include "annualize/annualizehts.h"

#include <new>

#include "QsLog.h"
#include "annualize/controlfile.h"
#include "annualize/conversion.h"
#include "annualize/months.h"

namespace {

const QLatin1String kNoSource("Source HTS device pointer cannot be NULL");
const QLatin1String kNoResult("Result annual HTS device pointer cannot be NULL");
const QLatin1String kNoControlFile("Method specification file name cannot be blank");
const QLatin1String kBadMonth("Integer for the end of year month is out of the range 1 to 12");
const QLatin1String kNotSet("Input HTS file device, output annual file device, control file path, "
                            "or end year month not set");
const QLatin1String kNoMemory("Not enough memory");

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

Status AnnualizeHts::convert() const
{
    Conversion conversion([this] { return readControlFile(m_controlFile); }, m_endMonth);
    Status status = readConversion(*m_source, conversion);
    if (status.ok())
        status = conversion.report();
    if (status.ok())
        status = conversion.annualPackage().write(*m_result);
    if (status.ok()) {
        QLOG_INFO() << QStringLiteral("Successfully wrote %1 out of %2 slots")
                           .arg(QString::number(conversion.annualPackage().numSlots()),
                                QString::number(conversion.plans().size()));
    }
    return status;
}

Status AnnualizeHts::calculateAnnualTimesteps(const HtsRun& inputRun, ValueMap& valueMap,
                                              HtsRun& annualRun) const
{
    const CompleteYears years = findCompleteYears(inputRun, m_endMonth);
    valueMap.insert(valueMap.end(), years.valueMap.begin(), years.valueMap.end());
    logCompleteYears(years, m_endMonth);
    if (years.status.ok())
        setAnnualTiming(inputRun, years, annualRun);
    return years.status;
}

Status AnnualizeHts::assignMethods(const QVector<HtsSlot>& slots, QStringList& methods) const
{
    const ControlFile control = readControlFile(m_controlFile);
    if (control.isRead)
        logAssignmentStart();
    if (!control.status.ok())
        return control.status;
    methods.clear();
    methods.reserve(slots.size());
    for (const HtsSlot& slot : slots) {
        methods.append(control.rules.methodFor(slot));
        logAssignment(slot.objectName, slot.slotName, methods.constLast());
    }
    logAssignmentEnd();
    return {};
}
