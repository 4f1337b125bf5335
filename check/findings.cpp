#include "check/findings.h"

#include <algorithm>
#include <tuple>

qint64 Findings::count(Severity severity) const
{
    qint64 sum = 0;
    for (const CodeInfo& info : kCodes)
        sum += info.severity == severity ? count(info.code) : 0;
    return sum;
}

std::vector<Finding> Findings::sorted() const
{
    std::vector<Finding> result = m_kept;
    std::stable_sort(result.begin(), result.end(), [](const Finding& a, const Finding& b) {
        return std::tie(a.file, a.line) < std::tie(b.file, b.line);
    });
    return result;
}
