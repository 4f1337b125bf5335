#ifndef COMPARE_MATCHEDSTEPS_H
#define COMPARE_MATCHEDSTEPS_H

#include <cstddef>
#include <utility>
#include <vector>

#include <QStringList>

#include "compare/difference.h"

// The timesteps that two runs have in common, by the instants that their texts mean.
class MatchedSteps
{
public:
    explicit MatchedSteps(const Both<const QStringList*>& timesteps);

    bool areSame() const { return m_areSame; }
    const StepDifferences& differences() const { return m_differences; }

    // Calls visit(i, j) for each common timestep, with its places in both runs.
    template<typename Visitor>
    void forEach(Visitor visit) const
    {
        if (m_areSame) {
            for (std::size_t i = 0; i < static_cast<std::size_t>(m_differences.common); ++i)
                visit(i, i);
        } else {
            for (const auto& [first, second] : m_pairs)
                visit(first, second);
        }
    }

private:
    void match(const Both<const QStringList*>& timesteps);

    bool m_areSame;
    StepDifferences m_differences;
    std::vector<std::pair<std::size_t, std::size_t>> m_pairs; // in the order of the first run
};

#endif // COMPARE_MATCHEDSTEPS_H
