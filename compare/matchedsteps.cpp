#include "compare/matchedsteps.h"

#include <algorithm>
#include <limits>
#include <tuple>

#include <QDateTime>

#include "hts/datetimetext.h"

namespace {

struct Step
{
    qint64 instant; // kNone for a text that is not a date-time
    QString text;   // only of those
    std::size_t place;
};

constexpr qint64 kNone = std::numeric_limits<qint64>::max();

bool isStepBefore(const Step& a, const Step& b)
{
    return std::tie(a.instant, a.text) < std::tie(b.instant, b.text);
}

// By instant; equal ones in the order of the run.
std::vector<Step> sortedSteps(const QStringList& timesteps)
{
    std::vector<Step> steps;
    steps.reserve(static_cast<std::size_t>(timesteps.size()));
    for (const QString& text : timesteps) {
        const QDateTime time = textToDateTime(text);
        steps.push_back({time.isValid() ? time.toMSecsSinceEpoch() : kNone,
                         time.isValid() ? QString() : text, steps.size()});
    }
    std::stable_sort(steps.begin(), steps.end(), isStepBefore);
    return steps;
}

} // namespace

MatchedSteps::MatchedSteps(const Both<const QStringList*>& timesteps)
    : m_areSame(*timesteps[0] == *timesteps[1])
{
    m_differences.count = {timesteps[0]->size(), timesteps[1]->size()};
    m_differences.common = m_differences.count[0];
    if (!m_areSame)
        match(timesteps);
}

void MatchedSteps::match(const Both<const QStringList*>& timesteps)
{
    const Both<std::vector<Step>> steps = {sortedSteps(*timesteps[0]), sortedSteps(*timesteps[1])};
    auto first = steps[0].begin();
    auto second = steps[1].begin();
    const auto noteSingle = [&](std::size_t file, const Step& step) {
        if (m_differences.first.isEmpty())
            m_differences.first = timesteps[file]->at(static_cast<int>(step.place));
    };
    while (first != steps[0].end() || second != steps[1].end()) {
        if (second == steps[1].end() ||
            (first != steps[0].end() && isStepBefore(*first, *second))) {
            noteSingle(0, *first++);
        } else if (first == steps[0].end() || isStepBefore(*second, *first)) {
            noteSingle(1, *second++);
        } else {
            m_pairs.emplace_back(first->place, second->place);
            ++first;
            ++second;
        }
    }
    m_differences.common = static_cast<qint64>(m_pairs.size());
    std::sort(m_pairs.begin(), m_pairs.end());
    const bool isInOrder =
        std::is_sorted(m_pairs.begin(), m_pairs.end(),
                       [](const auto& a, const auto& b) { return a.second < b.second; });
    // The same instants may be written in different ways.
    m_areSame = m_differences.first.isEmpty() && isInOrder;
}
