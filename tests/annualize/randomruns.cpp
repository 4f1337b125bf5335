#include "tests/annualize/randomruns.h"

#include <algorithm>

namespace {

struct Timing
{
    const char* unit;
    QByteArray start;
    QByteArray end;
    QByteArrayList steps;
};

// A year is complete when its first and its last timestep are there.
const Timing kTimings[] = {
    // These can be a first run with complete years.
    {"day",
     "2000-1-1 24:00",
     "2001-12-31 24:00",
     {"2000-1-1 24:00", "2000-7-1 12:00", "2000-12-31 24:00", "2001-5-5 6:30", "2001-12-31 24:00"}},
    {"month",
     "2000-1-31 24:00",
     "2001-6-30 24:00",
     {"2000-1-31 24:00", "2000-12-31 24:00", "2001-6-30 24:00"}},
    {"fortnight", "2000-1-1 24:00", "2000-12-31 24:00", {"2000-1-1 24:00", "2000-12-31 24:00"}},
    {"week", "2000-1-7 24:00", "2000-12-29 24:00", {"2000-1-7 24:00", "2000-12-29 24:00"}},
    {"hour",
     "1999-11-1 6:00",
     "2000-12-31 24:00",
     {"1999-11-1 6:00", "2000-1-1 1:00", "2000-12-31 24:00"}},
    // The same timing as the first one here, but for the start of the second.
    {"month",
     "2000-1-1 24:00",
     "2001-12-31 24:00",
     {"2000-1-1 24:00", "2000-1-2 24:00", "2000-1-3 24:00", "2000-1-4 24:00", "2000-1-5 24:00"}},
    {"day",
     "1999-12-31 24:00",
     "2001-12-31 24:00",
     {"2000-1-1 24:00", "2000-7-1 12:00", "2000-12-31 24:00", "2001-5-5 6:30", "2001-12-31 24:00"}},
    {"year",
     "2000-1-1 24:00",
     "2001-12-31 24:00",
     {"2000-1-1 24:00", "2000-1-2 24:00", "2000-1-3 24:00", "2000-1-4 24:00", "2000-1-5 24:00"}},
    // These are none.
    {"day", "2000-1-1 24:00", "2000-3-1 24:00", {"2000-1-1 24:00", "2000-3-1 24:00"}},
    {"year", "2000-12-31 24:00", "2001-12-31 24:00", {"2000-12-31 24:00", "2001-12-31 24:00"}},
    {"day", "2000-1-1 24:00", "2000-12-31 24:00", {"\xd9\xa2\xd9\xa0\xd9\xa0\xd9\xa0-1-1 24:00"}},
    {"day", "2000-1-1 24:00", "2000-12-31 24:00", {"2000-1-1 24:00", "2000-13-31 24:00"}},
    {"month", "2000-1-32 24:00", "", {"2000-1-31 24:00", "2000-12-31 24:00"}},
    {"month", "2000-1-31 24:00", "2000-12-31 24:00", {}},
};

constexpr int kFirstTimings = 5;
constexpr int kTimingCount = static_cast<int>(sizeof kTimings / sizeof *kTimings);

const QByteArrayList kNumbers = {"1", "2.5",  "-3.25", "NaN",  "nan", "inf",  "-inf",
                                 "0", "-0.0", "1e5",   "text", "",    "1e22", " 7 "};

} // namespace

RandomRuns::RandomRuns(quint32 seed) : m_random(seed)
{
    if (oneIn(8))
        endMonth = 1 + below(12);
    addControl();

    int announced = 1 + below(4);
    const int runs = announced;
    if (oneIn(8)) {
        static const int kOther[] = {0, -1, 1, runs + 1, runs - 1, 2000000000};
        announced = kOther[below(6)];
    }
    fileText = "name:by chance\nowner:tests\ncreate_date:2015-3-31 24:00\nnumber_of_runs:" +
               QByteArray::number(announced) + "\nEND_PACKAGE_PREAMBLE\n";

    std::vector<Slot> slotList;
    for (int slot = below(7); slot > 0; --slot)
        slotList.push_back(randomSlot());
    const int first = oneIn(8) ? below(kTimingCount) : below(kFirstTimings);
    for (int run = 0; run < runs; ++run) {
        const int other = oneIn(3)     ? below(kTimingCount)
                          : first == 0 ? kFirstTimings + below(3)
                                       : first;
        addRun(run > 0 && oneIn(5) ? other : first, slotList);
        if (oneIn(3))
            slotList = varied(slotList);
    }
    if (oneIn(8))
        fileText += "after the last run\n";
}

void RandomRuns::addControl()
{
    if (oneIn(16)) {
        static const Control kOthers[] = {Control::Missing, Control::Folder, Control::Unreadable};
        control = kOthers[below(3)];
        return;
    }
    static const QByteArrayList kRules = {"*.*: Sum",          "*.*: Salinity",
                                          "Lake.*: MaxNaN",    "River.Flow: Average",
                                          "*.Level: Begin",    "Lake.Salt: Salinity",
                                          "*.Salt: salinity",  "Reservoir.Flow: minnan",
                                          "River.*: EndNaN",   "",
                                          "*.Flow: AverageNaN"};
    for (int rule = below(5); rule > 0; --rule)
        controlText += pick(kRules) + '\n';
    if (oneIn(12))
        controlText += pick({"no rule", "Lake.Flow: Median", "Lake.Flow:", ": Sum"}) + '\n';
}

RandomRuns::Slot RandomRuns::randomSlot()
{
    Slot slot;
    slot.name =
        pick({"Lake.Flow", "Lake.Level", "Lake.Salt", "River.Flow", "River.Level", "Hill."});
    slot.kind = "SeriesSlot";
    if (oneIn(3))
        slot.kind = pick({"", "ScalarSlot", "TableSlot", "Other"});
    return slot;
}

// The slots of a later run.
std::vector<RandomRuns::Slot> RandomRuns::varied(std::vector<Slot> slotList)
{
    switch (below(4)) {
    case 0:
        slotList.push_back(randomSlot());
        break;
    case 1:
        if (!slotList.empty())
            slotList.resize(static_cast<std::size_t>(below(static_cast<int>(slotList.size()))));
        break;
    case 2:
        std::reverse(slotList.begin(), slotList.end());
        break;
    default:
        for (Slot& slot : slotList) {
            if (oneIn(3))
                slot.kind = pick({"ScalarSlot", "TableSlot", "TableSlot", "SeriesSlot"});
        }
    }
    return slotList;
}

void RandomRuns::addRun(int timing, const std::vector<Slot>& slotList)
{
    const Timing& run = kTimings[timing];
    const int steps = run.steps.size();
    // In statements of their own: compilers differ in the order in which they take operands.
    const QByteArray index = QByteArray::number(below(4));
    const QByteArray ruleSet = pick({"", "r"});
    const QByteArray slotSet = pick({"all", "some"});
    const QByteArray consecutive = QByteArray::number(below(2));
    const QByteArray count = QByteArray::number(steps == 0 ? -below(2) : steps);
    const QByteArray trace = QByteArray::number(below(9));
    fileText += "trace:" + trace + "\nstart:" + run.start + "\nend:" + run.end +
                "\ntime_step_unit:" + run.unit + "\ntime_steps:" + count +
                "\nconsecutive:" + consecutive + "\nslot_set:" + slotSet + "\nrule_set:" + ruleSet +
                "\nidx_sequential:" + index + "\nEND_RUN_PREAMBLE\n";
    for (const QByteArray& step : run.steps)
        fileText += step + '\n';
    for (const Slot& slot : slotList)
        addSlot(slot, steps);
    fileText += "END_RUN\n";
}

void RandomRuns::addSlot(const Slot& slot, int steps)
{
    const int dot = slot.name.indexOf('.');
    fileText += "object_type: Reservoir\nobject_name: " + slot.name.left(dot) +
                "\nslot_name: " + slot.name.mid(dot + 1) + '\n';
    if (!slot.kind.isEmpty())
        fileText += "slot_type: " + slot.kind + '\n';
    if (slot.kind == "TableSlot") {
        fileText += "rows: 2\ncols: 1\nEND_SLOT_PREAMBLE\n1\n2\nEND_SLOT\n";
        return;
    }
    const QByteArray method = pick({"", "", "method: Max\n"});
    const QByteArray scale = pick({"1", "0.5"});
    const QByteArray units = pick({"cms", "", "m 3"});
    fileText += "END_SLOT_PREAMBLE\nunits: " + units + "\nscale: " + scale + '\n' + method;
    const bool isSeries = slot.kind.isEmpty() || slot.kind == "SeriesSlot";
    const bool isPlain = !oneIn(3);
    for (int row = 0; row < (isSeries ? steps : 1); ++row)
        fileText += (isPlain ? QByteArray::number(below(1000) / 8.0) : pick(kNumbers)) + '\n';
    fileText += "END_COLUMN\nEND_SLOT\n";
}
