#include "check/findinglist.h"

#include <algorithm>

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

// Returns whether the finding is kept.
bool FindingList::countOne(const FindingKind& kind)
{
    Q_ASSERT(findFindingKind(QString::fromLatin1(kind.code)) == &kind);
    return m_counts[&kind]++ < kMaxKeptPerKind;
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

std::vector<Finding> FindingList::sorted() const
{
    std::vector<Finding> result = m_kept;
    std::stable_sort(result.begin(), result.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    return result;
}
