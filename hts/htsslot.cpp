#include "hts/htsslot.h"

#include <algorithm>
#include <cstring>

#include "hts/htsrun.h"
#include "hts/shareifequal.h"

namespace {

// By bytes: -0 is another number than 0, and a NaN the same as itself.
bool isSameNumber(double a, double b)
{
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

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
