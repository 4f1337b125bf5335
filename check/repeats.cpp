#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string_view>
#include <tuple>
#include <vector>

#include "check/topiccheck.h"
#include "hts/doublebits.h"
#include "hts/htskeys.h"

namespace {

constexpr FindingKind kRepeatedSlot = {
    Severity::Warning, "repeated-slot",
    "A slot of the first run has the object type, object name and slot name of an earlier one. Of "
    "series the result has both.",
    "Remove one of them, with its values; or correct its names."};
constexpr FindingKind kRepeatedRun = {
    Severity::Note, "repeated-run",
    "A run has the trace of an earlier one, or all its values; rows of tables are not compared.",
    "Check whether one of them should be another run."};

std::uint64_t mixed(std::uint64_t hash, std::uint64_t bits)
{
    constexpr std::uint64_t kOddFactor = 0xff51afd7ed558ccd;
    const std::uint64_t product = (hash ^ bits) * kOddFactor;
    return product ^ product >> 32; // only the high bits depend on all bits of the factors
}

// A hash of 64 bits of numbers in their order. All of their bits count for it, so that different
// series have the same one only by a chance of next to nothing.
class SeriesHash
{
public:
    void add(const HtsColumn& values)
    {
        // Four chains side by side, because each multiplication waits for the one before it.
        std::array<std::uint64_t, 4> chains = {1, 2, 3, 4};
        std::size_t i = 0;
        for (; i + chains.size() <= values.size(); i += chains.size()) {
            for (std::size_t chain = 0; chain < chains.size(); ++chain)
                chains[chain] = mixed(chains[chain], bitsOf(values[i + chain]));
        }
        for (; i < values.size(); ++i)
            chains[0] = mixed(chains[0], bitsOf(values[i]));
        for (const std::uint64_t chain : chains)
            m_hash = mixed(m_hash, chain);
        m_isEmpty = m_isEmpty && values.empty();
    }

    bool isEmpty() const { return m_isEmpty; } // of numbers
    std::uint64_t value() const { return m_hash; }

private:
    std::uint64_t m_hash = 0;
    bool m_isEmpty = true;
};

// Of object, slot and type; the toolkit's hashes have 32 bits, too few for a million slots.
std::uint64_t nameHash(const HtsSlot& slot)
{
    static_assert(sizeof(std::size_t) == sizeof(std::uint64_t));
    std::uint64_t hash = 0;
    for (const QString* text : {&slot.objectName, &slot.slotName, &slot.objectType}) {
        const std::string_view bytes(reinterpret_cast<const char*>(text->constData()),
                                     static_cast<std::size_t>(text->size()) * sizeof(QChar));
        hash = mixed(hash, std::hash<std::string_view>()(bytes));
    }
    return hash;
}

// Finds slots of the first run, and runs, that occur twice. Later runs whose slots are not those of
// the first are found by their places.
class RepeatCheck : public TopicCheck
{
public:
    using TopicCheck::TopicCheck;

    void runRead() override;
    void slotRead() override;
    void runEnded() override;

private:
    struct Slot
    {
        std::uint64_t hash = 0; // of its name
        qint64 line = 0;        // its first
        int index = 0;
    };

    void reportSlots();
    void reportRun();

    std::vector<Slot> m_slots; // of the first run, as long as it is at hand
    // The first run with each trace, and with each hash of the values; counted from 1.
    std::map<int, int> m_runOfTrace;
    std::map<std::uint64_t, int> m_runOfValues;
    // Of the run at hand.
    qint64 m_traceLine = 0;
    SeriesHash m_values;
};

void RepeatCheck::runRead()
{
    m_traceLine = m_context.lineOfRunKey(kTraceKey);
    m_values = SeriesHash();
}

void RepeatCheck::slotRead()
{
    const HtsWalk& walk = m_context.walk;
    // Slots that have lost their names are not the same.
    const bool hasName = !walk.slot().objectName.isEmpty() && !walk.slot().slotName.isEmpty();
    if (walk.runIndex() == 0 && hasName)
        m_slots.push_back(
            {nameHash(walk.slot()), m_context.lines.firstLine(), walk.slotCount() - 1});
    if (m_context.package.numberOfRuns > 1)
        m_values.add(m_context.walk.values());
}

void RepeatCheck::runEnded()
{
    reportSlots();
    m_slots = {};
    reportRun();
}

void RepeatCheck::reportSlots()
{
    std::sort(m_slots.begin(), m_slots.end(), [](const Slot& a, const Slot& b) {
        return std::tie(a.hash, a.line) < std::tie(b.hash, b.line);
    });
    for (std::size_t i = 1; i < m_slots.size(); ++i) {
        const Slot& slot = m_slots[i];
        if (slot.hash != m_slots[i - 1].hash)
            continue;
        const SlotPlan& plan = m_context.conversion.plans().at(slot.index);
        add(kRepeatedSlot, slot.line, "%1 is the slot of line %2 once more",
            fullSlotName(plan.objectName, plan.slotName), m_slots[i - 1].line);
    }
}

void RepeatCheck::reportRun()
{
    const int run = m_context.walk.runIndex() + 1;
    const int trace = m_context.walk.run().trace;
    const int ofTrace = trace == -1 ? run : m_runOfTrace.emplace(trace, run).first->second;
    const int ofValues =
        m_values.isEmpty() ? run : m_runOfValues.emplace(m_values.value(), run).first->second;
    if (ofTrace != run)
        add(kRepeatedRun, m_traceLine, "run %1 has the trace %2%3 of run %4", run, trace,
            ofTrace == ofValues ? " and all values" : "", ofTrace);
    if (ofValues != run && ofValues != ofTrace)
        add(kRepeatedRun, m_traceLine, "run %1 has all values of run %2", run, ofValues);
}

} // namespace

const Topic& repeatTopic()
{
    static const Topic kTopic = {
        "Repetitions", {&kRepeatedSlot, &kRepeatedRun}, makeCheck<RepeatCheck>};
    return kTopic;
}
