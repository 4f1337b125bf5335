#include "tests/hts/samplefile.h"

#include <limits>

#include "tests/hts/htstext.h"

const QByteArray kSampleFile =
    "name:Basin study\nowner:planning\ndescription:monthly flows\n"
    "create_date:2015-3-31 24:00\nnumber_of_runs:1\nEND_PACKAGE_PREAMBLE\n"
    "start:2000-1-31 24:00\nend:2000-3-31 24:00\ntime_step_unit:month\n"
    "unit_quantity:1\ntime_steps:3\nconsecutive:1\nidx_sequential:1\n"
    "END_RUN_PREAMBLE\n2000-1-31 24:00\n2000-2-29 24:00\n2000-3-31 24:00\n"
    "object_type: Reservoir\nobject_name: Lake A\nslot_type: SeriesSlot\n"
    "slot_name: Outflow\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n"
    "method: Average\n12.500000000000\nNaN\n14.000000000000\nEND_COLUMN\n"
    "END_SLOT\nEND_RUN\n";

HtsPackage samplePackage()
{
    HtsPackage package;
    package.preambleRead = true;
    package.name = QStringLiteral("Basin study");
    package.owner = QStringLiteral("planning");
    package.description = QStringLiteral("monthly flows");
    package.createDate = utc(2015, 4, 1);
    package.numberOfRuns = 1;
    HtsRun run;
    run.complete = true;
    run.start = utc(2000, 2, 1);
    run.end = utc(2000, 4, 1);
    run.timeStepUnit = QStringLiteral("month");
    run.unitQuantity = 1;
    run.timeStepCount = 3;
    run.consecutive = 1;
    run.idxSequential = 1;
    run.timesteps = texts("2000-1-31 24:00|2000-2-29 24:00|2000-3-31 24:00");
    package.runs.append(run);
    HtsSlot slot;
    slot.preambleRead = true;
    slot.objectType = QStringLiteral("Reservoir");
    slot.objectName = QStringLiteral("Lake A");
    slot.slotType = QStringLiteral("SeriesSlot");
    slot.slotName = QStringLiteral("Outflow");
    slot.units = texts("cms");
    slot.scales = QList<double>{1.0};
    slot.methods = texts("Average");
    package.slots.append(slot);
    package.values = {{{{12.5, std::numeric_limits<double>::quiet_NaN(), 14.0}}}};
    return package;
}
