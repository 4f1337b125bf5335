#ifndef COMPARE_MATCHEDSLOTS_H
#define COMPARE_MATCHEDSLOTS_H

#include <cstddef>
#include <vector>

#include <QString>

#include "hts/htswalk.h"

// The slots of a run that are looked up by their names; of slots with the same names the first one
// is found first. Memory grows with the number of slots.
class MatchedSlots
{
public:
    struct Entry
    {
        QString objectName;
        QString slotName;
        HtsWalk::Bookmark bookmark;
    };

    // Reads the slots of the run at hand, to its end.
    explicit MatchedSlots(HtsWalk& walk);

    // The next slot with these names, or null. Each is returned once.
    const Entry* take(const QString& objectName, const QString& slotName);
    // Those that were not taken, in the order of the file.
    std::vector<const Entry*> rest() const;

private:
    std::vector<Entry> m_entries; // by names
    // For the first entry of each pair of names how many were taken; unused for others.
    std::vector<std::size_t> m_taken;
};

#endif // COMPARE_MATCHEDSLOTS_H
