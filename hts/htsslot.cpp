#include "hts/htsslot.h"

#include <algorithm>

#include "hts/htsrun.h"
#include "hts/shareifequal.h"

bool HtsSlot::isSeries() const
{
    return slotType.isEmpty() || slotType == QLatin1String("SeriesSlot");
}

bool HtsSlot::isTable() const
{
    return slotType == QLatin1String("TableSlot");
}

int HtsSlot::numColumns() const
{
    return isTable() ? cols : 1;
}

int HtsSlot::numRows() const
{
    if (isSeries())
        return -1;
    return isTable() ? rows : 1;
}

int HtsSlot::valueCount(const HtsRun& run) const
{
    return std::max(isSeries() ? run.timeStepCount : numRows(), 0);
}

void HtsSlot::shareTexts(const HtsSlot& neighbour)
{
    shareIfEqual(objectType, neighbour.objectType);
    shareIfEqual(objectName, neighbour.objectName);
    shareIfEqual(slotType, neighbour.slotType);
    shareIfEqual(slotName, neighbour.slotName);
    shareIfEqual(units, neighbour.units);
    if (std::equal(scales.begin(), scales.end(), neighbour.scales.begin(), neighbour.scales.end(),
                   isSameNumber))
        scales = neighbour.scales;
    shareIfEqual(methods, neighbour.methods);
}
