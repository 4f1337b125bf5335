#include "hts/htsslot.h"

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
