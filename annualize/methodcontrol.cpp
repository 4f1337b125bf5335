#include "annualize/methodcontrol.h"

#include <algorithm>
#include <cstddef>
#include <functional>

#include <QIODevice>
#include <QStringView>
#include <QVarLengthArray>

#include "annualize/aggmethods.h"
#include "hts/linereader.h"
#include "hts/linetext.h"

namespace {

// Removes the first name, with its line end, from the bytes of names, and returns it.
std::string_view takeName(std::string_view& names)
{
    const std::string_view name = names.substr(0, names.find('\n') + 1);
    names.remove_prefix(name.size());
    return name;
}

bool startsWith(std::string_view bytes, std::string_view start)
{
    return bytes.substr(0, start.size()) == start;
}

using NameBuffer = QVarLengthArray<char, 100>;

void appendName(NameBuffer& bytes, std::string_view name)
{
    if (isAscii(name)) {
        bytes.append(name.data(), static_cast<int>(name.size()));
    } else {
        const QByteArray utf8 = toText(name).toUtf8();
        bytes.append(utf8.constData(), utf8.size());
    }
    bytes.append('\n');
}

// A name of a slot as the rules have names. As no rule is for an empty name, that stands for a name
// with a line end, which no file has.
class NameBytes
{
public:
    explicit NameBytes(QStringView name)
    {
        // Most names are ASCII, which takes no conversion and no memory.
        m_bytes.resize(static_cast<int>(name.size()));
        ushort bits = 0;
        std::transform(name.begin(), name.end(), m_bytes.begin(), [&bits](QChar c) {
            bits |= c.unicode();
            return static_cast<char>(c.unicode());
        });
        if (bits >= 0x80) {
            const QByteArray utf8 = name.toUtf8();
            m_bytes.clear();
            m_bytes.append(utf8.constData(), utf8.size());
        }
        if (bytes().find('\n') != std::string_view::npos)
            m_bytes.clear();
        m_bytes.append('\n');
    }

    std::string_view bytes() const
    {
        return {m_bytes.constData(), static_cast<std::size_t>(m_bytes.size())};
    }

private:
    NameBuffer m_bytes;
};

Status failureOf(RuleFault fault, std::string_view line)
{
    return failure(ruleFaultText(fault) + QLatin1String(" \n\"") + toText(line) + QLatin1Char('"'));
}

} // namespace

QString ruleFaultText(RuleFault fault)
{
    static const char* const kReasons[] = {"",
                                           "Colon not found",
                                           "Method is blank",
                                           "Unknown method specified",
                                           "Dot separator not found",
                                           "Slot name is blank",
                                           "Object name is blank"};
    Q_ASSERT(fault != RuleFault::None);
    return QLatin1String("Method Control File Error: ") +
           QLatin1String(kReasons[static_cast<std::size_t>(fault)]) + QLatin1String(" in line");
}

std::string_view methodWordOf(std::string_view line)
{
    const std::size_t colon = line.rfind(':');
    return colon == std::string_view::npos ? std::string_view() : stripped(line.substr(colon + 1));
}

// Names are stripped of the same white space as the lines of an HTS file, and of nothing else, so
// that every slot can be named.
RuleFault parseMethodRule(std::string_view line, MethodRule& rule)
{
    Q_ASSERT(!line.empty() && line.size() == stripped(line).size());
    const std::size_t colon = line.rfind(':');
    if (colon == std::string_view::npos)
        return RuleFault::NoColon;

    const std::string_view word = stripped(line.substr(colon + 1));
    if (word.empty())
        return RuleFault::NoMethod;
    const AggMethod* method = findMethodIgnoringCase(word);
    if (method == nullptr)
        return RuleFault::UnknownMethod;

    // No method word has a dot, so the first dot is before the colon.
    const std::size_t dot = line.find('.');
    if (dot == std::string_view::npos)
        return RuleFault::NoDot;
    const std::string_view slot = stripped(line.substr(dot + 1, colon - dot - 1));
    if (slot.empty())
        return RuleFault::NoSlot;
    const std::string_view object = stripped(line.substr(0, dot));
    if (object.empty())
        return RuleFault::NoObject;

    rule = {object, slot, method};
    return RuleFault::None;
}

MethodControl::HashedName::HashedName(std::string_view nameBytes)
    : bytes(nameBytes), hash(std::hash<std::string_view>()(nameBytes))
{
}

Status MethodControl::read(QIODevice& device, Observer* observer)
{
    Q_ASSERT(device.isReadable() && m_rules.isEmpty());
    LineReader reader(device);
    Status status;
    while (!reader.atEnd()) {
        const std::string_view line = stripped(textBytes(reader.line()));
        if (line.empty())
            continue;
        MethodRule rule;
        const RuleFault fault = parseMethodRule(line, rule);
        if (fault == RuleFault::None) {
            const RuleId id = append(rule);
            if (observer != nullptr)
                observer->ruleRead(id, reader.lineNumber(), line);
            continue;
        }
        if (status.ok())
            status = failureOf(fault, line);
        if (observer == nullptr)
            return status;
        observer->badLine(reader.lineNumber(), line, fault);
    }
    if (status.ok())
        fillBuckets();
    return status;
}

RuleId MethodControl::append(const MethodRule& rule)
{
    const RuleId id = m_rules.size();
    const std::ptrdiff_t method = rule.method - aggMethods().data();
    Q_ASSERT(method >= 0 && method <= std::numeric_limits<char>::max());
    NameBuffer bytes;
    bytes.append(static_cast<char>(method));
    appendName(bytes, rule.object);
    appendName(bytes, rule.slot);
    m_rules.append(bytes.constData(), bytes.size());
    ++m_ruleCount;
    m_hasRuleForAnyObject = m_hasRuleForAnyObject || rule.object == "*";
    m_hasRuleForAnySlot = m_hasRuleForAnySlot || rule.slot == "*";
    return id;
}

void MethodControl::fillBuckets()
{
    // Half of the buckets stays free, so that looking for what is not there is short.
    m_buckets.assign(2 * m_ruleCount + 1, kNoRule);
    for (RuleId rule = 0; rule < m_rules.size();) {
        std::string_view rest = namesAt(rule);
        const HashedName object(takeName(rest));
        const HashedName slot(takeName(rest));
        RuleId& bucket = m_buckets[bucketOf(object, slot)];
        if (bucket == kNoRule)
            bucket = rule;
        rule = m_rules.size() - static_cast<RuleId>(rest.size());
    }
}

// m_rules from the names of that rule on.
std::string_view MethodControl::namesAt(RuleId rule) const
{
    const RuleId start = rule + 1; // after the method
    return {m_rules.constData() + start, static_cast<std::size_t>(m_rules.size() - start)};
}

// The index of the bucket of the first rule for that object and slot; if there is none, of the free
// bucket where it belongs.
std::size_t MethodControl::bucketOf(const HashedName& object, const HashedName& slot) const
{
    Q_ASSERT(m_ruleCount < m_buckets.size());
    // Equal names of object and slot must not cancel each other out.
    constexpr quint64 kOddNumber = 0x9e3779b97f4a7c15;
    const quint64 hash = object.hash + kOddNumber * slot.hash;
    // From all 32-bit numbers to all buckets.
    std::size_t i = (hash >> 32) * m_buckets.size() >> 32;
    while (m_buckets[i] != kNoRule) {
        const std::string_view names = namesAt(m_buckets[i]);
        if (startsWith(names, object.bytes) &&
            startsWith(names.substr(object.bytes.size()), slot.bytes))
            break;
        if (++i == m_buckets.size())
            i = 0;
    }
    return i;
}

RuleId MethodControl::find(const HashedName& object, const HashedName& slot) const
{
    return m_buckets[bucketOf(object, slot)];
}

// The one place where it is decided which rules match a slot: calls `take` with the first for each
// combination of names, or kNoRule, in no order.
template<typename Take>
void MethodControl::forEachMatch(const HtsSlot& slot, Take take) const
{
    if (m_buckets.empty())
        return;
    const NameBytes objectName(slot.objectName);
    const NameBytes objectType(slot.objectType);
    const NameBytes slotName(slot.slotName);
    static const HashedName any("*\n"); // every object or every slot
    const auto takeFor = [&, object = HashedName(objectName.bytes()),
                          type = HashedName(objectType.bytes())](const HashedName& name) {
        take(find(object, name));
        take(find(type, name));
        if (m_hasRuleForAnyObject)
            take(find(any, name));
    };
    takeFor(HashedName(slotName.bytes()));
    if (m_hasRuleForAnySlot)
        takeFor(any);
}

RuleId MethodControl::ruleFor(const HtsSlot& slot) const
{
    RuleId first = kNoRule;
    forEachMatch(slot, [&first](RuleId rule) { first = std::min(first, rule); });
    return first;
}

MatchingRules MethodControl::matchingRules(const HtsSlot& slot) const
{
    MatchingRules rules;
    forEachMatch(slot, [&rules](RuleId rule) {
        if (rule != kNoRule)
            rules.append(rule);
    });
    return rules;
}

QString MethodControl::methodFor(const HtsSlot& slot) const
{
    const RuleId rule = ruleFor(slot);
    return rule == kNoRule ? QString() : methodOf(rule).word;
}

const AggMethod& MethodControl::methodOf(RuleId rule) const
{
    Q_ASSERT(rule >= 0 && rule < m_rules.size());
    return aggMethods()[static_cast<std::size_t>(m_rules[rule])];
}

MethodRule MethodControl::ruleAt(RuleId rule) const
{
    std::string_view names = namesAt(rule);
    const std::string_view object = takeName(names);
    const std::string_view slot = takeName(names);
    const auto withoutLineEnd = [](std::string_view name) {
        return name.substr(0, name.size() - 1);
    };
    return {withoutLineEnd(object), withoutLineEnd(slot), &methodOf(rule)};
}

RuleId MethodControl::firstLike(RuleId rule) const
{
    std::string_view names = namesAt(rule);
    const HashedName object(takeName(names));
    const HashedName slot(takeName(names));
    return find(object, slot);
}
