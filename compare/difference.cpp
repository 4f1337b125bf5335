#include "compare/difference.h"

QLatin1String aspectWord(Aspect aspect)
{
    switch (aspect) {
    case Aspect::Run:
        return QLatin1String("run");
    case Aspect::RunOrder:
        return QLatin1String("run_order");
    case Aspect::Trace:
        return QLatin1String("trace");
    case Aspect::Unit:
        return QLatin1String("time_step_unit");
    case Aspect::Quantity:
        return QLatin1String("unit_quantity");
    case Aspect::Start:
        return QLatin1String("start");
    case Aspect::End:
        return QLatin1String("end");
    case Aspect::Timesteps:
        return QLatin1String("timesteps");
    case Aspect::Slot:
        return QLatin1String("slot");
    case Aspect::SlotOrder:
        return QLatin1String("slot_order");
    case Aspect::ObjectType:
        return QLatin1String("object_type");
    case Aspect::SlotType:
        return QLatin1String("slot_type");
    case Aspect::Units:
        return QLatin1String("units");
    case Aspect::Scale:
        return QLatin1String("scale");
    case Aspect::Method:
        return QLatin1String("method");
    case Aspect::Rows:
        return QLatin1String("rows");
    case Aspect::Values:
        break;
    }
    return QLatin1String("values");
}
