#include "check/findinglist.h"

#include <algorithm>

#include "check/topic.h"
#include "hts/quotedtext.h"

QString wordOf(const QString& text)
{
    return shown(text);
}

QString wordOf(QLatin1String text)
{
    return text;
}

QString wordOf(const char* text)
{
    return QString::fromLatin1(text);
}

QString conversionFails(const QString& message)
{
    return worded("; a conversion fails: \"%1\"", message);
}

// Returns whether the finding is wanted with its text.
bool FindingList::countOne(const FindingKind& kind)
{
    Q_ASSERT(findFindingKind(QString::fromLatin1(kind.code)) == &kind);
    if (m_options.ignored.count(&kind) > 0)
        return false;
    const qint64 before = m_counts[&kind]++;
    return m_options.sink || before < m_options.maxKeptPerKind;
}

void FindingList::keep(Finding finding)
{
    if (m_options.sink)
        m_options.sink(finding);
    else
        m_kept.push_back(std::move(finding));
}

qint64 FindingList::count(const FindingKind& kind) const
{
    const auto counted = m_counts.find(&kind);
    return counted == m_counts.end() ? 0 : counted->second;
}

qint64 FindingList::count(Severity severity) const
{
    qint64 sum = 0;
    for (const auto& [kind, count] : m_counts)
        sum += kind->severity == severity ? count : 0;
    return sum;
}

bool FindingList::hasAnyOf(const FindingKinds& kinds) const
{
    return std::any_of(kinds.begin(), kinds.end(),
                       [this](const FindingKind* kind) { return count(*kind) > 0; });
}

std::vector<FindingCount> FindingList::notShown() const
{
    std::vector<FindingCount> rest;
    for (const Topic* topic : findingTopics()) {
        for (const FindingKind* kind : topic->kinds) {
            const qint64 more = count(*kind) - m_options.maxKeptPerKind;
            if (more > 0 && !m_options.sink)
                rest.push_back({kind, more});
        }
    }
    return rest;
}

std::vector<Finding> FindingList::sorted() const
{
    std::vector<Finding> result = m_kept;
    std::stable_sort(result.begin(), result.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    return result;
}
