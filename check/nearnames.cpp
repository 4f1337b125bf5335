#include "check/nearnames.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "check/nearwords.h"

namespace {

int limitFor(const QString& wanted)
{
    constexpr int kMaxDistance = 4;
    return static_cast<int>(std::min<qint64>(kMaxDistance, wanted.size() / 2));
}

// A name that differs in letter case only is the nearest. `limit` + 1 if it is more than that.
int distanceOf(const QString& wanted, const QString& name, int limit)
{
    const bool isSameButCase = name.compare(wanted, Qt::CaseInsensitive) == 0;
    return isSameButCase ? 0 : editDistance(wanted, name, limit);
}

} // namespace

void NearNames::sort()
{
    std::sort(m_names.begin(), m_names.end());
    m_names.erase(std::unique(m_names.begin(), m_names.end()), m_names.end());
}

QString NearNames::nearest(const QString& wanted) const
{
    int best = limitFor(wanted) + 1;
    QString nearest;
    for (const QString& name : m_names) {
        if (best == 0)
            break;
        const int distance = distanceOf(wanted, name, best - 1);
        if (distance < best) {
            best = distance;
            nearest = name;
        }
    }
    return nearest;
}

bool NearNames::hasNear(const QString& wanted, qint64& effort) const
{
    const int limit = limitFor(wanted);
    const auto isNear = [&](const QString& name) {
        return distanceOf(wanted, name, limit) <= limit;
    };
    const auto next = std::lower_bound(m_names.begin(), m_names.end(), wanted);
    if (next != m_names.end() && isNear(*next))
        return true;
    if (next != m_names.begin() && isNear(*std::prev(next)))
        return true;
    for (const QString& name : m_names) {
        if (effort <= 0)
            return false;
        // Names of another length are not compared.
        const bool isCompared = std::abs(wanted.size() - name.size()) <= limit;
        effort -= isCompared ? wanted.size() : 1;
        if (isNear(name))
            return true;
    }
    return false;
}
