#include "compare/matchedslots.h"

#include <algorithm>
#include <tuple>

namespace {

bool isNameBefore(const MatchedSlots::Entry& a, const MatchedSlots::Entry& b)
{
    return std::tie(a.objectName, a.slotName) < std::tie(b.objectName, b.slotName);
}

} // namespace

MatchedSlots::MatchedSlots(HtsWalk& walk)
{
    while (walk.next() && walk.place() == HtsWalk::Place::Slot)
        m_entries.push_back({walk.slot().objectName, walk.slot().slotName, walk.bookmark()});
    std::stable_sort(m_entries.begin(), m_entries.end(), isNameBefore);
    m_taken.resize(m_entries.size());
}

const MatchedSlots::Entry* MatchedSlots::take(const QString& objectName, const QString& slotName)
{
    const Entry wanted{objectName, slotName, {}};
    const auto first = std::lower_bound(m_entries.begin(), m_entries.end(), wanted, isNameBefore);
    if (first == m_entries.end() || isNameBefore(wanted, *first))
        return nullptr;
    const auto begin = static_cast<std::size_t>(first - m_entries.begin());
    const std::size_t next = begin + m_taken[begin];
    if (next >= m_entries.size() || isNameBefore(wanted, m_entries[next]))
        return nullptr;
    ++m_taken[begin];
    return &m_entries[next];
}

std::vector<const MatchedSlots::Entry*> MatchedSlots::rest() const
{
    std::vector<const Entry*> entries;
    std::size_t taken = 0; // of the names at hand
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        if (i == 0 || isNameBefore(m_entries[i - 1], m_entries[i]))
            taken = m_taken[i];
        if (taken == 0)
            entries.push_back(&m_entries[i]);
        else
            --taken;
    }
    std::sort(entries.begin(), entries.end(), [](const Entry* a, const Entry* b) {
        return a->bookmark.slotIndex < b->bookmark.slotIndex;
    });
    return entries;
}
