#include "check/runcheck.h"

#include <algorithm>

#include "annualize/aggvalues.h"
#include "annualize/slotplan.h"
#include "check/findings.h"
#include "check/quotedtext.h"
#include "hts/shareifequal.h"

namespace {

// A run without "unit_quantity:" has steps of one unit.
int stepQuantity(const HtsRun& run)
{
    return std::max(run.unitQuantity, 1);
}

} // namespace

void RunCheck::setFirstRun(const HtsRun& run)
{
    m_start = run.start;
    m_end = run.end;
    m_timeStepCount = run.timeStepCount;
    m_timesteps = run.timesteps;
    m_unit = run.timeStepUnit;
    m_unitQuantity = stepQuantity(run);
}

void RunCheck::addFirstSlot(const HtsSlot& slot, bool isConverted)
{
    FirstSlot first{slot.objectType,     slot.objectName,      slot.slotName,
                    slot.units.value(0), slot.scales.value(0), isConverted};
    // Neighbouring slots mostly have the same texts.
    if (!m_slots.empty()) {
        shareIfEqual(first.objectType, m_slots.back().objectType);
        shareIfEqual(first.objectName, m_slots.back().objectName);
        shareIfEqual(first.slotName, m_slots.back().slotName);
        shareIfEqual(first.units, m_slots.back().units);
    }
    m_slots.push_back(first);
    if (isConverted)
        m_convertedEnd = m_slots.size();
}

void RunCheck::fail(Code code, qint64 line, const Status& status, const QString& text)
{
    if (m_status.ok())
        m_status = status;
    m_findings.add(code, line, [&]() -> QString { return text + conversionFails(status.message); });
}

bool RunCheck::beginRun(int runIndex, const HtsRun& run, const RunLines& lines)
{
    m_runNumber = runIndex + 1;
    m_nextSlot = 0;
    m_isOrderReported = false;
    m_isCountReported = false;
    m_hasFirstTiming =
        run.start == m_start && run.end == m_end && run.timeStepCount == m_timeStepCount;
    if (m_hasFirstTiming) {
        checkSteps(run, lines);
        return true;
    }
    if (m_convertedEnd == 0)
        return false;
    const Status years = yearsOf(run, m_endMonth).years.status;
    const QString what = run.start != m_start ? QStringLiteral("another \"start:\"")
                         : run.end != m_end   ? QStringLiteral("another \"end:\"")
                                              : QStringLiteral("another number of timesteps");
    const qint64 line = run.start != m_start && lines.start > 0 ? lines.start
                        : run.end != m_end && lines.end > 0     ? lines.end
                                                                : lines.endOfPreamble;
    fail(Code::RunTiming, line, years.ok() ? failure(AggValues::kSizesDiffer) : years,
         QStringLiteral("run %1 has %2 than the first").arg(QString::number(m_runNumber), what));
    return false;
}

void RunCheck::checkSteps(const HtsRun& run, const RunLines& lines)
{
    if (run.timesteps == m_timesteps) {
        checkUnit(run, lines);
        return;
    }
    const auto differing = std::mismatch(run.timesteps.begin(), run.timesteps.end(),
                                         m_timesteps.begin(), m_timesteps.end());
    const auto index = differing.first - run.timesteps.begin();
    m_findings.add(Code::RunSteps, lines.endOfPreamble + 1 + index, [&]() -> QString {
        return QStringLiteral("run %1 has the timestep %2 where the first run has %3; the years of "
                              "the first run are used")
            .arg(QString::number(m_runNumber), *differing.first, *differing.second);
    });
}

void RunCheck::checkUnit(const HtsRun& run, const RunLines& lines)
{
    const int quantity = stepQuantity(run);
    if (run.timeStepUnit == m_unit && quantity == m_unitQuantity)
        return;
    m_findings.add(
        Code::RunSteps, lines.unit > 0 ? lines.unit : lines.endOfPreamble, [&]() -> QString {
            return QStringLiteral(
                       "run %1 has steps of %2 %3 where the first run has steps of %4 %5; the "
                       "years of the first run are used")
                .arg(QString::number(m_runNumber), QString::number(quantity),
                     quoted(run.timeStepUnit), QString::number(m_unitQuantity), quoted(m_unit));
        });
}

void RunCheck::addSlot(const HtsSlot& slot, std::size_t valueCount, qint64 line)
{
    const std::size_t index = m_nextSlot++;
    if (index < m_slots.size()) {
        const FirstSlot& first = m_slots[index];
        compareName(first, slot, line);
        compareHeader(first, slot, line);
        compareValueCount(first, valueCount, line);
    } else if (!m_isCountReported) {
        m_isCountReported = true;
        m_findings.add(Code::RunSlotCount, line, [&]() -> QString {
            return QStringLiteral("run %1 has more slots than the %2 of the first run; they are "
                                  "left out")
                .arg(QString::number(m_runNumber), QString::number(m_slots.size()));
        });
    }
}

// Once for each run: if one slot is in another position, most are.
void RunCheck::compareName(const FirstSlot& first, const HtsSlot& slot, qint64 line)
{
    const bool isSame = slot.objectName == first.objectName && slot.slotName == first.slotName &&
                        slot.objectType == first.objectType;
    if (isSame || m_isOrderReported)
        return;
    m_isOrderReported = true;
    m_findings.add(Code::RunSlots, line, [&]() -> QString {
        const QString given = shownSlot(slot.objectName, slot.slotName);
        const QString wanted = shownSlot(first.objectName, first.slotName);
        if (given == wanted)
            return QStringLiteral("run %1 has %2 with the object type %3 instead of %4")
                .arg(QString::number(m_runNumber), given, quoted(slot.objectType),
                     quoted(first.objectType));
        return QStringLiteral("run %1 has %2 in the place of the first run's %3, which gets "
                              "its values")
            .arg(QString::number(m_runNumber), given, wanted);
    });
}

void RunCheck::compareHeader(const FirstSlot& first, const HtsSlot& slot, qint64 line)
{
    const QString units = slot.units.value(0);
    const double scale = slot.scales.value(0);
    const bool isSameScale = !(scale < first.scale) && !(scale > first.scale);
    if ((units == first.units && isSameScale) || m_isOrderReported)
        return;
    m_findings.add(Code::RunUnits, line, [&]() -> QString {
        return QStringLiteral("run %1 has %2 in %3, scale %4, and the first run in %5, scale %6")
            .arg(QString::number(m_runNumber), shownSlot(slot.objectName, slot.slotName),
                 quoted(units), QString::number(scale), quoted(first.units),
                 QString::number(first.scale));
    });
}

// A run with another timing has failed already.
void RunCheck::compareValueCount(const FirstSlot& first, std::size_t valueCount, qint64 line)
{
    const auto expected = static_cast<std::size_t>(std::max(m_timeStepCount, 0));
    if (!m_hasFirstTiming || !first.isConverted || valueCount == expected)
        return;
    fail(Code::RunValues, line, failure(AggValues::kSizesDiffer),
         QStringLiteral("run %1 has a slot of another kind in the place of %2")
             .arg(QString::number(m_runNumber), shownSlot(first.objectName, first.slotName)));
}

void RunCheck::finishRun(qint64 line)
{
    if (!m_hasFirstTiming)
        return;
    for (std::size_t index = m_nextSlot; index < m_convertedEnd; ++index) {
        if (!m_slots[index].isConverted)
            continue;
        fail(Code::RunValues, line, failure(AggValues::kSizesDiffer),
             QStringLiteral("run %1 ends without the slot %2")
                 .arg(QString::number(m_runNumber),
                      shownSlot(m_slots[index].objectName, m_slots[index].slotName)));
        return;
    }
}
