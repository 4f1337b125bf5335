#include "annualize/methodcontrol.h"

#include <algorithm>
#include <utility>

#include <QHashFunctions>
#include <QIODevice>

#include "annualize/aggmethods.h"
#include "hts/linereader.h"
#include "hts/linetext.h"

namespace {

constexpr QStringView kAny = u"*"; // every object or every slot

quint32 hashOf(QStringView object, quint32 slotHash)
{
    // The toolkit's hashes of names that differ only at the end differ only in their low bits.
    constexpr quint32 kSpread = 0x9e3779b1;
    const quint32 hash = qHash(object, slotHash) * kSpread;
    return hash ^ hash >> 15;
}

Status lineFailure(const char* reason, std::string_view line)
{
    return failure(QLatin1String("Method Control File Error: ") + QLatin1String(reason) +
                   QLatin1String(" in line \n\"") + toText(line) + QLatin1Char('"'));
}

} // namespace

// Names are stripped of the same white space as the lines of an HTS file, and of nothing else, so
// that every slot can be named.
Status parseMethodRule(std::string_view line, MethodRule& rule)
{
    Q_ASSERT(!line.empty() && line.size() == stripped(line).size());
    const std::size_t colon = line.rfind(':');
    if (colon == std::string_view::npos)
        return lineFailure("Colon not found", line);

    const std::string_view word = stripped(line.substr(colon + 1));
    if (word.empty())
        return lineFailure("Method is blank", line);
    const AggMethod* method = findMethodIgnoringCase(word);
    if (method == nullptr)
        return lineFailure("Unknown method specified", line);

    // No method word has a dot, so the first dot is before the colon.
    const std::size_t dot = line.find('.');
    if (dot == std::string_view::npos)
        return lineFailure("Dot separator not found", line);
    const std::string_view slot = stripped(line.substr(dot + 1, colon - dot - 1));
    if (slot.empty())
        return lineFailure("Slot name is blank", line);
    const std::string_view object = stripped(line.substr(0, dot));
    if (object.empty())
        return lineFailure("Object name is blank", line);

    rule = {object, slot, method};
    return {};
}

Status MethodControl::read(QIODevice& device)
{
    Q_ASSERT(device.isReadable());
    LineReader reader(device);
    while (!reader.atEnd()) {
        const std::string_view line = stripped(textBytes(reader.line()));
        if (line.empty())
            continue;
        Status status = readRule(line);
        if (!status.ok())
            return status;
    }
    return {};
}

Status MethodControl::readRule(std::string_view line)
{
    MethodRule parsed;
    Status status = parseMethodRule(line, parsed);
    if (!status.ok())
        return status;
    if (2 * (m_rules.size() + 1) > m_buckets.size())
        grow();
    const int namesSize = m_names.size();
    Rule rule;
    rule.object = append(parsed.object);
    // Most rules have the slot of the one before them.
    const QString& slotName = m_slotName.of(parsed.slot);
    const bool isSameSlot = !m_rules.empty() && text(m_rules.back().slot) == slotName;
    rule.slot = isSameSlot ? m_rules.back().slot : append(parsed.slot);
    rule.method = parsed.method;
    const quint32 hash = hashOf(text(rule.object), qHash(slotName));
    Bucket& bucket = bucketOf(hash, text(rule.object), slotName);
    if (bucket.rule != Bucket::kFree) {
        m_names.truncate(namesSize);
        return {};
    }
    m_hasRuleForAnySlot = m_hasRuleForAnySlot || QStringView(slotName) == kAny;
    bucket = {hash, static_cast<int>(m_rules.size())};
    m_rules.push_back(rule);
    return {};
}

MethodControl::Name MethodControl::append(std::string_view name)
{
    const int position = m_names.size();
    appendText(m_names, name);
    return {position, m_names.size() - position};
}

// The bucket of the rule for that object and slot; if there is none, the free bucket where it
// belongs. Some bucket is always free.
const MethodControl::Bucket& MethodControl::bucketOf(quint32 hash, QStringView object,
                                                     QStringView slot) const
{
    Q_ASSERT(m_rules.size() < m_buckets.size());
    const std::size_t mask = m_buckets.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const Bucket& bucket = m_buckets[i];
        if (bucket.rule == Bucket::kFree)
            return bucket;
        const Rule& rule = m_rules[static_cast<std::size_t>(bucket.rule)];
        if (bucket.hash == hash && text(rule.object) == object && text(rule.slot) == slot)
            return bucket;
    }
}

MethodControl::Bucket& MethodControl::bucketOf(quint32 hash, QStringView object, QStringView slot)
{
    return const_cast<Bucket&>(std::as_const(*this).bucketOf(hash, object, slot));
}

void MethodControl::grow()
{
    constexpr std::size_t kFirstSize = 16;
    std::vector<Bucket> buckets(std::max(kFirstSize, 4 * m_buckets.size()));
    m_buckets.swap(buckets);
    const std::size_t mask = m_buckets.size() - 1;
    for (const Bucket& bucket : buckets) {
        if (bucket.rule == Bucket::kFree)
            continue;
        // No two rules are for the same object and slot, so any free bucket will do.
        std::size_t i = bucket.hash & mask;
        while (m_buckets[i].rule != Bucket::kFree)
            i = (i + 1) & mask;
        m_buckets[i] = bucket;
    }
}

int MethodControl::find(QStringView object, QStringView slot, quint32 slotHash) const
{
    const Bucket& bucket = bucketOf(hashOf(object, slotHash), object, slot);
    return bucket.rule == Bucket::kFree ? kNoRule : bucket.rule;
}

QString MethodControl::methodFor(const HtsSlot& slot) const
{
    if (m_rules.empty())
        return {};
    int first = kNoRule;
    for (const QStringView slotName : {QStringView(slot.slotName), kAny}) {
        if (slotName == kAny && !m_hasRuleForAnySlot)
            continue;
        const quint32 slotHash = qHash(slotName);
        for (const QStringView object :
             {QStringView(slot.objectName), QStringView(slot.objectType), kAny})
            first = std::min(first, find(object, slotName, slotHash));
    }
    return first == kNoRule ? QString() : m_rules[static_cast<std::size_t>(first)].method->word;
}
