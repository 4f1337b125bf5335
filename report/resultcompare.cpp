#include "report/resultcompare.h"

#include "check/findinglist.h"
#include "hts/htsslot.h"
#include "report/numberfield.h"
#include "report/pagemodel.h"

namespace {

// How many values of `shown` differ from those of the file as the file has them, and where first.
struct Differences
{
    std::size_t count = 0;
    std::size_t first = 0;
};

// Calls valueAt(i), which may be assigned to, for each year.
template<typename ValueAt>
Differences replaceValues(const HtsColumn& values, ValueAt valueAt)
{
    Differences differences;
    for (std::size_t i = 0; i < values.size(); ++i) {
        double& value = valueAt(i);
        const bool isEqual = numberField(value) == numberField(values[i]);
        if (!isEqual && differences.count++ == 0)
            differences.first = i;
        value = values[i];
    }
    return differences;
}

} // namespace

ResultCompare::ResultCompare(PageModel& model) : m_model(model), m_isFound(model.slots.size())
{
    for (std::size_t i = 0; i < model.slots.size(); ++i)
        m_slotsByName[model.slots[i].name].push_back(i);
}

void ResultCompare::note(const QString& text)
{
    constexpr int kMaxNoted = 40;
    ++m_model.differenceCount;
    if (m_model.differences.size() < kMaxNoted)
        m_model.differences.append(text);
}

void ResultCompare::takeRun(const HtsRun& run)
{
    ++m_run;
    m_seen.clear();
    m_hasYears = run.timesteps == m_model.yearTimesteps;
    if (!m_hasYears)
        note(worded("run %1 of the result has other years: %2 from %3 to %4", m_run + 1,
                    run.timesteps.size(), run.timesteps.value(0),
                    run.timesteps.isEmpty() ? QString() : run.timesteps.constLast()));
}

void ResultCompare::takeSlot(const HtsSlot& slot, const HtsColumn& values)
{
    const QString name = fullSlotName(slot.objectName, slot.slotName);
    const auto known = m_slotsByName.constFind(name);
    const std::size_t place = m_seen[name]++;
    if (known == m_slotsByName.constEnd() || place >= known->size()) {
        const bool isWhole = m_model.slotsBeyondLimit + m_model.slotsNotAskedFor == 0;
        if (m_run == 0 && isWhole)
            note(worded("the result has %1, which a conversion does not give", name));
        return;
    }
    const std::size_t index = (*known)[place];
    PageSlot& shown = m_model.slots[index];
    if (m_run == 0)
        m_isFound[index] = true;
    if (!m_hasYears || values.size() != shown.years.size())
        return;
    if (m_run == 0)
        compareFirst(shown, values);
    else
        compareOther(shown, values);
}

void ResultCompare::compareFirst(PageSlot& slot, const HtsColumn& values)
{
    QByteArray expected;
    const Differences differences = replaceValues(values, [&](std::size_t i) -> double& {
        if (expected.isEmpty() && numberField(slot.years[i].value) != numberField(values[i]))
            expected = numberField(slot.years[i].value);
        return slot.years[i].value;
    });
    if (differences.count == 0)
        return;
    note(worded("%1 differs in %2 %3; in %4 the result has %5, a conversion gives %6", slot.name,
                differences.count, differences.count == 1 ? "year" : "years",
                m_model.years[differences.first].name,
                numberField(values[differences.first]).constData(), expected.constData()));
}

void ResultCompare::compareOther(PageSlot& slot, const HtsColumn& values)
{
    const std::size_t start = static_cast<std::size_t>(m_run - 1) * slot.years.size();
    if (slot.others.size() < start + values.size())
        return;
    const Differences differences =
        replaceValues(values, [&](std::size_t i) -> double& { return slot.others[start + i]; });
    if (differences.count > 0)
        note(worded("run %1: %2 differs in %3 %4", m_run + 1, slot.name, differences.count,
                    differences.count == 1 ? "year" : "years"));
}

void ResultCompare::finish()
{
    for (std::size_t i = 0; i < m_isFound.size(); ++i) {
        if (!m_isFound[i])
            note(worded("the result has no %1", m_model.slots[i].name));
    }
    const int runs = m_run + 1;
    if (runs != m_model.runCount)
        note(worded("the result has %1 runs of %2", runs, m_model.runCount));
}
