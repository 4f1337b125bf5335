#ifndef HTS_HTSWALK_H
#define HTS_HTSWALK_H

#include <utility>

#include "hts/htspackage.h"
#include "hts/linereader.h"
#include "hts/status.h"
#include "hts/tablereading.h"

class HtsReader;

// Walks through an HTS file section by section, in one pass: the one loop over the runs and slots
// of a file, which everything that reads files uses. Each next() reads one section; the user
// decides what of it is kept, and whether the values of a slot are converted to numbers.
//
//     HtsPackage preamble;
//     HtsWalk walk(reader, preamble);
//     while (walk.next()) {
//         if (walk.place() == HtsWalk::Place::Slot)
//             use(walk.run(), walk.slot(), walk.values());
//     }
//     return walk.status();
//
// Reader and package outlive the object. Not safe to use from two threads at once.
class HtsWalk
{
public:
    // The section that was read last, or that reading failed in.
    enum class Place { Start, PackagePreamble, Run, Slot, EndOfRun, EndOfLastRun };

    struct Options
    {
        TableRows tableRows = TableRows::Skip;
        MissingTableEnd missingTableEnd = MissingTableEnd::SearchForever;
    };

    // Reads the package preamble into `package`, which is empty.
    HtsWalk(HtsReader& reader, HtsPackage& package) : HtsWalk(reader, package, Options()) {}
    HtsWalk(HtsReader& reader, HtsPackage& package, Options options);

    // Reads the next section. Returns false after the end of the last run, if reading failed, and
    // at a table without an end: status() and isTableWithoutEnd() tell which. Not to be called
    // again then.
    bool next();

    // Where a run or a slot begins.
    struct Bookmark
    {
        Place section = Place::Run; // or Slot
        LinePlace line;
        int runIndex = 0;
        int slotIndex = 0;
    };

    // Of the run or the slot at hand; only for devices that are not sequential.
    Bookmark bookmark() const { return {m_place, m_begin, m_runIndex, m_slotCount - 1}; }
    // The following next() reads the section of a bookmark of this walk; that of a slot only while
    // its run is the one at hand. Allowed after the end of the last run, too.
    void goTo(const Bookmark& bookmark);

    Place place() const { return m_place; }
    // Empty as long as nothing failed; see HtsPackage::read for the messages.
    const Status& status() const { return m_status; }
    // Whether the input ended in the search for the end of a table, which is a conversion's search
    // without end. Only with MissingTableEnd::StopAtEndOfInput.
    bool isTableWithoutEnd() const { return m_isTableWithoutEnd; }

    // The run and the slot at hand, or that were read last; after a failure in one, what was read
    // of it. The index of the run and the number of its slots so far, the one at hand included.
    const HtsRun& run() const { return m_run; }
    int runIndex() const { return m_runIndex; }
    const HtsSlot& slot() const { return m_slot; }
    int slotCount() const { return m_slotCount; }

    // The values of the slot at hand, one for each row; none for a table. Read by the first call;
    // values that nobody asks for are skipped, which is many times faster. Valid until next().
    const HtsColumn& values() { return readValues(); }
    // The same, for a user who keeps them; the buffer is then empty.
    HtsColumn takeValues() { return std::move(readValues()); }

private:
    void readRun();
    void readSlot();
    void finishSlot();
    HtsColumn& readValues();

    HtsReader& m_reader;
    HtsPackage& m_package;
    const Options m_options;
    Place m_place = Place::Start;
    Status m_status;
    bool m_isTableWithoutEnd = false;
    HtsRun m_run;
    LinePlace m_begin; // of the run or the slot
    int m_runIndex = -1;
    HtsSlot m_slot;
    int m_slotCount = 0;
    HtsColumn m_values;            // a buffer for all slots
    bool m_areValuesAhead = false; // the values of the slot at hand have not been read yet
};

#endif // HTS_HTSWALK_H
