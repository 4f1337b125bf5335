// Reading an HTS file into the model. The steps on a device leave it after the last line used.

#include <utility>

#include "hts/htspackage.h"
#include "hts/htsreader.h"
#include "hts/shareifequal.h"

Status HtsPackage::read(QIODevice& device)
{
    Q_ASSERT(runs.isEmpty() && slots.isEmpty() && values.empty());
    HtsReader reader(device);
    Status status = reader.readPackagePreamble(*this);
    // One run at a time: the number in the file may be wrong, and must not decide how much memory
    // is reserved.
    for (int r = 0; status.ok() && r < numberOfRuns; ++r) {
        runs.append(HtsRun());
        values.emplace_back();
        status = reader.readRun(runs[r]);
        // Runs mostly have the timesteps of the run before.
        if (r > 0)
            shareIfEqual(runs[r].timesteps, runs.at(r - 1).timesteps);
        while (status.ok() && !reader.takeEndOfRun())
            status = readSlot(reader, r);
    }
    return status;
}

// The slots and their column headers are those of the first run; in later runs they only determine
// how many values follow, and the values go to the slot at the same place.
Status HtsPackage::readSlot(HtsReader& reader, int runIndex)
{
    HtsSlot slot;
    Status status = reader.readSlot(slot, HtsReader::TableRows::Keep);
    if (!slot.preambleRead)
        return status;

    auto& slotValues = values[static_cast<std::size_t>(runIndex)];
    slotValues.emplace_back(static_cast<std::size_t>(slot.isTable() ? 0 : slot.numColumns()));
    if (slot.isTable()) {
        reader.skipTable();
    } else if (status.ok()) {
        HtsColumn& column = slotValues.back().front();
        column.resize(static_cast<std::size_t>(slot.valueCount(runs.at(runIndex))));
        reader.readValues(column);
        reader.readLine(); // "END_COLUMN", not checked
        reader.readLine(); // "END_SLOT", not checked
    }
    // Even a slot without a column header.
    if (runIndex == 0) {
        if (!slots.isEmpty())
            slot.shareTexts(slots.constLast());
        slots.append(std::move(slot));
    }
    return status;
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
