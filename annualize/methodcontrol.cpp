#include "annualize/methodcontrol.h"

#include <algorithm>
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

void appendName(QByteArray& rules, std::string_view name)
{
    if (isAscii(name))
        rules.append(name.data(), static_cast<int>(name.size()));
    else
        rules += toText(name).toUtf8();
    rules += '\n';
}

// A name of a slot as names stand among the rules.
class SlotName
{
public:
    explicit SlotName(QStringView name)
    {
        Q_ASSERT(!name.contains(QLatin1Char('\n')));
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
        m_bytes.append('\n');
    }

    std::string_view bytes() const
    {
        return {m_bytes.constData(), static_cast<std::size_t>(m_bytes.size())};
    }

private:
    QVarLengthArray<char, 100> m_bytes;
};

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

MethodControl::Name::Name(std::string_view nameBytes)
    : bytes(nameBytes), hash(std::hash<std::string_view>()(nameBytes))
{
}

Status MethodControl::read(QIODevice& device)
{
    Q_ASSERT(device.isReadable());
    LineReader reader(device);
    while (!reader.atEnd()) {
        const std::string_view line = stripped(textBytes(reader.line()));
        if (line.empty())
            continue;
        Status status = append(line);
        if (!status.ok())
            return status;
    }
    index();
    return {};
}

Status MethodControl::append(std::string_view line)
{
    MethodRule rule;
    Status status = parseMethodRule(line, rule);
    if (!status.ok())
        return status;
    const std::ptrdiff_t method = rule.method - aggMethods().data();
    Q_ASSERT(method >= 0 && method <= std::numeric_limits<char>::max());
    m_rules += static_cast<char>(method);
    appendName(m_rules, rule.object);
    appendName(m_rules, rule.slot);
    ++m_ruleCount;
    m_hasRuleForAnySlot = m_hasRuleForAnySlot || rule.slot == "*";
    return {};
}

void MethodControl::index()
{
    // Half of the buckets stays free at least, or else look-ups in vain would take long.
    std::size_t size = 1;
    while (size < 2 * m_ruleCount)
        size *= 2;
    m_buckets.assign(size, kFree);
    for (int position = 0; position < m_rules.size();) {
        std::string_view rest = namesAt(position);
        const Name object(takeName(rest));
        const Name slot(takeName(rest));
        int& bucket = m_buckets[bucketOf(object, slot)];
        if (bucket == kFree)
            bucket = position;
        position = m_rules.size() - static_cast<int>(rest.size());
    }
}

// m_rules from the names of the rule at that position on.
std::string_view MethodControl::namesAt(int position) const
{
    const int start = position + 1; // behind the method
    return {m_rules.constData() + start, static_cast<std::size_t>(m_rules.size() - start)};
}

// The index of the bucket of the first rule for that object and slot; if there is none, of the free
// bucket where it belongs.
std::size_t MethodControl::bucketOf(const Name& object, const Name& slot) const
{
    Q_ASSERT(m_ruleCount < m_buckets.size());
    const std::size_t mask = m_buckets.size() - 1;
    std::size_t i = (31 * object.hash + slot.hash) & mask;
    for (; m_buckets[i] != kFree; i = (i + 1) & mask) {
        const std::string_view names = namesAt(m_buckets[i]);
        if (startsWith(names, object.bytes) &&
            startsWith(names.substr(object.bytes.size()), slot.bytes))
            break;
    }
    return i;
}

int MethodControl::find(const Name& object, const Name& slot) const
{
    const int position = m_buckets[bucketOf(object, slot)];
    return position == kFree ? kNoRule : position;
}

QString MethodControl::methodFor(const HtsSlot& slot) const
{
    if (m_buckets.empty())
        return {};
    const SlotName objectName(slot.objectName);
    const SlotName objectType(slot.objectType);
    const SlotName slotName(slot.slotName);
    const Name any("*\n"); // every object or every slot
    const auto firstFor = [&, object = Name(objectName.bytes()),
                           type = Name(objectType.bytes())](const Name& name) {
        return std::min({find(object, name), find(type, name), find(any, name)});
    };
    int first = firstFor(Name(slotName.bytes()));
    if (m_hasRuleForAnySlot)
        first = std::min(first, firstFor(any));
    if (first == kNoRule)
        return {};
    return aggMethods()[static_cast<std::size_t>(m_rules[first])].word;
}
