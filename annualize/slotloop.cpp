#include "annualize/slotloop.h"

#include "QsLog.h"

namespace {

const QLatin1String kUnknownMethod("Unknown method specified");

QString fullName(const HtsSlot& slot)
{
    return slot.objectName + QLatin1Char('.') + slot.slotName;
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

} // namespace

SlotLoop::SlotLoop(const HtsPackage& input, const QStringList& methods, HtsPackage& output)
    : m_input(input), m_output(output)
{
    m_methods.reserve(static_cast<std::size_t>(input.numSlots()));
    for (int s = 0; s < input.numSlots(); ++s) {
        const QString word = methods.value(s);
        m_methods.push_back({!word.isEmpty(), findMethod(word)});
    }
}

// A word that is no method is not sorted out here: it ends the conversion when its turn comes.
bool SlotLoop::isAnnualized(int slotIndex) const
{
    const SlotMethod& method = m_methods[static_cast<std::size_t>(slotIndex)];
    const bool isUnsupported = method.method != nullptr && !method.method->isSupported();
    return m_input.slot(slotIndex).isSeries() && method.isGiven && !isUnsupported;
}

int SlotLoop::countAnnualized() const
{
    int count = 0;
    for (int s = 0; s < m_input.numSlots(); ++s)
        count += isAnnualized(s) ? 1 : 0;
    return count;
}

Status SlotLoop::annualizeRun(int runIndex, const std::vector<std::int32_t>& valueMap,
                              int yearCount)
{
    m_outputSlot = 0;
    for (int s = 0; s < m_input.numSlots(); ++s) {
        if (!isAnnualized(s)) {
            logSkipped(s);
            continue;
        }
        Status status = annualizeSlot(runIndex, s, valueMap, yearCount);
        if (!status.ok())
            return status;
    }
    return {};
}

void SlotLoop::logSkipped(int slotIndex) const
{
    const HtsSlot& slot = m_input.slot(slotIndex);
    if (!slot.isSeries()) {
        QLOG_INFO() << fullName(slot) +
                           QLatin1String(" is not a series slot and won't be annualized");
    } else if (m_methods[static_cast<std::size_t>(slotIndex)].isGiven) {
        QLOG_INFO() << fullName(slot) +
                           QLatin1String(" has a method of Salinity, which is not supported in "
                                         "the HtsAnnualizer");
    }
}

void SlotLoop::setOutputSlot(int slotIndex, const AggMethod& method)
{
    HtsSlot slot = annualSlot(m_input.slot(slotIndex), method);
    if (m_outputSlot > 0)
        slot.shareTexts(m_output.slot(m_outputSlot - 1));
    m_output.setSlot(m_outputSlot, slot);
}

Status SlotLoop::annualizeSlot(int runIndex, int slotIndex,
                               const std::vector<std::int32_t>& valueMap, int yearCount)
{
    QString message;
    if (!m_aggValues.aggregate(valuesOf(m_input, runIndex, slotIndex), valueMap, yearCount,
                               message))
        return failure(message);
    const AggMethod* method = m_methods[static_cast<std::size_t>(slotIndex)].method;
    if (method == nullptr)
        return failure(kUnknownMethod);

    if (runIndex == 0)
        setOutputSlot(slotIndex, *method);
    auto& runValues = m_output.values[static_cast<std::size_t>(runIndex)];
    auto& columns = runValues[static_cast<std::size_t>(m_outputSlot)];
    columns.resize(1); // a series slot
    columns.front() = (m_aggValues.*method->result)();
    ++m_outputSlot;
    return {};
}
