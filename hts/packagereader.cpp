// Reading an HTS file into the model. The steps on a device leave it after the last line used.

#include "hts/htspackage.h"
#include "hts/htsreader.h"
#include "hts/htswalk.h"
#include "hts/shareifequal.h"

Status HtsPackage::read(QIODevice& device)
{
    Q_ASSERT(runs.isEmpty() && slots.isEmpty() && values.empty());
    HtsReader reader(device);
    HtsWalk walk(reader, *this, {HtsReader::TableRows::Keep, {}});
    while (walk.next())
        append(walk);
    // Also what was read of a section that is bad.
    append(walk);
    return walk.status();
}

// Appends the section at hand.
void HtsPackage::append(HtsWalk& walk)
{
    if (walk.place() == HtsWalk::Place::Run) {
        runs.append(walk.run());
        values.emplace_back();
    } else if (walk.place() == HtsWalk::Place::Slot && walk.slot().preambleRead) {
        appendSlot(walk);
    }
}

// The slots and their column headers are those of the first run; in later runs they only determine
// how many values follow, and the values go to the slot at the same place.
void HtsPackage::appendSlot(HtsWalk& walk)
{
    const HtsSlot& slot = walk.slot();
    values.back().emplace_back(static_cast<std::size_t>(slot.isTable() ? 0 : slot.numColumns()));
    if (walk.status().ok() && !slot.isTable())
        values.back().back().front() = walk.takeValues();
    // Even a slot without a column header.
    if (walk.runIndex() == 0) {
        slots.append(slot);
        if (slots.size() > 1)
            slots.last().shareTexts(slots.at(slots.size() - 2));
    }
}

Status HtsPackage::readPreamble(QIODevice& device)
{
    return HtsReader(device).readPackagePreamble(*this);
}

Status HtsRun::readPreamble(QIODevice& device)
{
    return HtsReader(device).readRun(*this);
}

Status HtsSlot::readPreamble(QIODevice& device)
{
    return HtsReader(device).readSlotPreamble(*this, HtsReader::TableRows::Keep);
}

Status HtsPackage::readColumnHeader(QIODevice& device, QString& units, double& scale,
                                    QString& method)
{
    return HtsReader(device).readColumnHeader(units, scale, method);
}
