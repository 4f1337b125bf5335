#include "check/preamblelines.h"

#include <algorithm>
#include <utility>

void PreambleLines::begin(qint64 firstLine)
{
    m_firstLine = firstLine;
    m_endLine = firstLine;
    m_count = 0;
    m_nearKeys.clear();
}

// Their number if there is none.
std::size_t PreambleLines::indexOf(QLatin1String key) const
{
    std::size_t i = 0;
    while (i < m_count && m_lines[i].key != key)
        ++i;
    return i;
}

const PreambleLines::Line* PreambleLines::note(QLatin1String key, std::string_view value,
                                               qint64 number)
{
    const std::size_t index = indexOf(key);
    const bool isRepeated = index < m_count;
    if (isRepeated)
        std::swap(m_previous, m_lines[index]);
    else if (m_count++ == m_lines.size())
        m_lines.emplace_back();
    Line& line = m_lines[index];
    line.key = key;
    line.value.assign(value);
    line.number = number;
    line.isRepeated = isRepeated;
    return isRepeated ? &m_previous : nullptr;
}

void PreambleLines::noteNear(QLatin1String key)
{
    if (!hasNear(key))
        m_nearKeys.push_back(key);
}

qint64 PreambleLines::lineOf(QLatin1String key) const
{
    const std::size_t index = indexOf(key);
    return index < m_count ? m_lines[index].number : 0;
}

bool PreambleLines::hasNear(QLatin1String key) const
{
    return std::find(m_nearKeys.begin(), m_nearKeys.end(), key) != m_nearKeys.end();
}
