#ifndef CHECK_MAXMISSING_H
#define CHECK_MAXMISSING_H

#include <optional>

#include <QString>
#include <QtGlobal>

#include "check/runyears.h"

// How many of its values a year may lack. Nothing is too much unless it is made from a text.
class MaxMissing
{
public:
    // From "N", a number of values; "P%", a percentage of them, 0 to 100; or "wmo". Nothing for any
    // other text.
    static std::optional<MaxMissing> fromText(const QString& text);

    bool isSet() const { return m_rule != Rule::None; }
    bool isWmo() const { return m_rule == Rule::Wmo; }
    // The text that it is made from.
    const QString& text() const { return m_text; }

    // Whether it can be told for timesteps of that length: "wmo" is for days and months.
    bool isFor(const StepLength& length) const;
    // Whether the year, whose timesteps isFor(), lacks more; `lacking` is how many values, and
    // `missing` which of those that the file has.
    bool isExceeded(const RunYear& year, qint64 lacking, const RunYear::Missing& missing,
                    const StepLength& length) const;

private:
    enum class Rule { None, Count, Percent, Wmo };

    Rule m_rule = Rule::None;
    double m_amount = 0.0;
    QString m_text;
};

#endif // CHECK_MAXMISSING_H
