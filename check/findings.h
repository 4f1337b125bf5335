#ifndef CHECK_FINDINGS_H
#define CHECK_FINDINGS_H

#include <array>
#include <vector>

#include <QtGlobal>

#include "check/finding.h"

// Collects what is found in one file. The first ten of each code are kept, the others only counted,
// so that a file with a million defects takes no more memory than one with ten.
class Findings
{
public:
    static constexpr qint64 kMaxKeptPerCode = 10;

    // Adds a finding whose text `makeText()` returns; it is called only if the finding is kept.
    template<typename MakeText>
    void add(Code code, qint64 line, MakeText makeText)
    {
        addTo(Finding::File::Hts, code, line, makeText);
    }
    // The same, for a line of the control file.
    template<typename MakeText>
    void addToControl(Code code, qint64 line, MakeText makeText)
    {
        addTo(Finding::File::Control, code, line, makeText);
    }

    // How many findings of a code there are, kept or not.
    qint64 count(Code code) const { return m_counts[static_cast<std::size_t>(code)]; }
    qint64 count(Severity severity) const;
    // The findings that are kept: those of the HTS file, then those of the control file, each in
    // the order of lines.
    std::vector<Finding> sorted() const;

private:
    template<typename MakeText>
    void addTo(Finding::File file, Code code, qint64 line, MakeText makeText)
    {
        if (m_counts[static_cast<std::size_t>(code)]++ < kMaxKeptPerCode)
            m_kept.push_back({code, file, line, makeText()});
    }

    std::array<qint64, kCodeCount> m_counts{};
    std::vector<Finding> m_kept;
};

#endif // CHECK_FINDINGS_H
