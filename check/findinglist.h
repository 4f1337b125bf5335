#ifndef CHECK_FINDINGLIST_H
#define CHECK_FINDINGLIST_H

#include <functional>
#include <limits>
#include <map>
#include <type_traits>
#include <utility>
#include <vector>

#include <QLatin1String>
#include <QString>
#include <QtGlobal>

#include "check/finding.h"

// An argument of a text. Names and values of a file may be anything: they are shown on one line,
// and never control a terminal.
QString wordOf(const QString& text);
QString wordOf(QLatin1String text);
QString wordOf(const char* text); // ASCII
template<typename Integer, typename = std::enable_if_t<std::is_integral_v<Integer>>>
QString wordOf(Integer number)
{
    return QString::number(number);
}

// `pattern` with %1, %2, ... replaced by the arguments, all at once, so that an argument may
// contain such a mark.
template<typename... Arguments>
QString worded(const char* pattern, const Arguments&... arguments)
{
    QString text = QString::fromLatin1(pattern);
    if constexpr (sizeof...(arguments) == 0)
        return text;
    else
        return text.arg(wordOf(arguments)...);
}

// The end of a text that says how a conversion of the file fails: "; a conversion fails: "Cannot
// read run preamble"".
QString conversionFails(const QString& message);

// What a FindingList does with what is found.
struct FindingOptions
{
    static constexpr qint64 kAll = std::numeric_limits<qint64>::max();

    // Kinds that are left out as if they did not exist.
    FindingKinds ignored;
    // How many findings of a kind are kept.
    qint64 maxKeptPerKind = 10;
    // Gets each finding when it is found, in place of keeping it; may be empty.
    std::function<void(const Finding&)> sink;
};

// How many findings of a kind there are.
struct FindingCount
{
    const FindingKind* kind;
    qint64 count;
};

// Collects what is found in one file. Unless the options say otherwise, the first ten of each kind
// are kept, the others only counted, so that a file with a million defects takes no more memory
// than one with ten.
class FindingList
{
public:
    FindingList() = default;
    explicit FindingList(FindingOptions options) : m_options(std::move(options)) {}

    // Adds a finding with the text that `makeText()` returns, which is called only if the finding
    // is kept; or with the text worded(pattern, arguments...).
    template<typename Text, typename... Arguments>
    void add(const FindingKind& kind, qint64 line, const Text& text, const Arguments&... arguments)
    {
        if (!countOne(kind))
            return;
        if constexpr (std::is_invocable_v<Text>)
            keep({&kind, line, text()});
        else
            keep({&kind, line, worded(text, arguments...)});
    }

    // How many findings of a kind there are, kept or not.
    qint64 count(const FindingKind& kind) const;
    qint64 count(Severity severity) const;
    bool hasAnyOf(const FindingKinds& kinds) const;
    // The kinds of which there are findings that were neither kept nor taken by the sink, and how
    // many; in the order in which people read them.
    std::vector<FindingCount> notShown() const;
    // The findings that are kept, in the order in which they were found.
    const std::vector<Finding>& kept() const { return m_kept; }
    // The findings that are kept, in the order of lines.
    std::vector<Finding> sorted() const;

private:
    bool countOne(const FindingKind& kind);
    void keep(Finding finding);

    FindingOptions m_options;
    std::map<const FindingKind*, qint64> m_counts;
    std::vector<Finding> m_kept;
};

#endif // CHECK_FINDINGLIST_H
