#include "hts/htspackage.h"

#include <algorithm>

namespace {

template<typename Container>
bool isValidIndex(const Container& container, int index)
{
    return index >= 0 && index < container.size();
}

} // namespace

void HtsPackage::copyPreamble(const HtsPackage& other)
{
    preambleRead = other.preambleRead;
    name = other.name;
    owner = other.owner;
    description = other.description;
    createDate = other.createDate;
    numberOfRuns = other.numberOfRuns;
    const int runCount = std::max(numberOfRuns, 0);
    runs.resize(runCount);
    values.resize(static_cast<std::size_t>(runCount));
}

void HtsPackage::setNumSlots(int count)
{
    const int slotCount = std::max(count, 0);
    slots.resize(slotCount);
    for (auto& runValues : values)
        runValues.resize(static_cast<std::size_t>(slotCount));
}

const HtsRun& HtsPackage::run(int index) const
{
    static const HtsRun kDefaultRun;
    return isValidIndex(runs, index) ? runs.at(index) : kDefaultRun;
}

const HtsSlot& HtsPackage::slot(int index) const
{
    static const HtsSlot kDefaultSlot;
    return isValidIndex(slots, index) ? slots.at(index) : kDefaultSlot;
}

void HtsPackage::setRun(int index, const HtsRun& run)
{
    if (isValidIndex(runs, index))
        runs[index] = run;
}

void HtsPackage::setSlot(int index, const HtsSlot& slot)
{
    if (isValidIndex(slots, index))
        slots[index] = slot;
}
