#include "check/numberhint.h"

#include <algorithm>
#include <iterator>

#include <QRegularExpression>

#include "hts/linetext.h"

namespace {

const char kMissingValue[] = "a missing value, which is written NaN";

// What tables have in the place of a missing value, in lower case; the last ones are a gauge's
// reasons for having none, such as ice, equipment, backwater, season.
const char* const kMissingWords[] = {
    "na",           "n/a",          "n.a.",    "#na",       "#n/a",          "+nan",
    "-nan",         "null",         "nil",     "none",      "nothing",       "missing",
    "miss",         "missing data", "m",       "nd",        "n.d.",          "nr",
    "nodata",       "no data",      "no_data", "no record", "not available", "not recorded",
    "not measured", "unavailable",  "unknown", "undefined", "blank",         "empty",
    "#null!",       "#num!",        "#value!", "#ref!",     "#div/0!",       "bkw",
    "dis",          "eqp",          "fld",     "ice",       "mnt",           "rat",
    "ssn",          "tst",          "ukn"};

struct Hint
{
    const char* pattern; // matches the whole text, in any letter case
    const char* text;
};

// The first that matches is used.
const Hint kHints[] = {
    {R"([+-]?nan\(\w*\)|\?+|\*+|-+|_+|\.+|[+-]?1\.#\w+)", kMissingValue},
    {R"([+-]?\d{1,3}(,\d{3}){2,}(\.\d*)?|[+-]?\d{1,3}(,\d{3})+\.\d*|[+-]?\d{1,3}(['\x{a0} ]\d{3})+(\.\d*)?)",
     "a thousands separator"},
    {R"([+-]?\d{1,3},\d{3})", "a decimal comma or a thousands separator"},
    {R"([+-]?\d*,\d*(e[+-]?\d+)?)", "a decimal comma"},
    {R"([+-]?\d{1,3}(\.\d{3})*,\d+)", "a decimal comma"},
    {R"(\d{1,4}[-/.]\d{1,2}[-/.]\d{1,4}.*)", "a date"},
    {R"([+-]?(\d+\.?\d*|\.\d+)d[+-]?\d+)", "an exponent that begins with D instead of E"},
    {R"(["'].*["'])", "quotes around a number"},
    {R"([+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?[\s,;]+[+-]?(\d|\.\d).*)", "more than one number"},
    {R"([+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?\s*[^\d\s].*)", "something after a number"},
};

} // namespace

QString numberHint(std::string_view line)
{
    constexpr std::size_t kMaxBytes = 100; // the texts in question are shorter
    if (line.size() > kMaxBytes)
        return {};
    const QString text = toText(textBytes(stripped(line)));
    const auto isText = [lower = text.simplified().toLower()](const char* word) {
        return lower == QLatin1String(word);
    };
    if (std::any_of(std::begin(kMissingWords), std::end(kMissingWords), isText))
        return QLatin1String(kMissingValue);
    for (const Hint& hint : kHints) {
        const QRegularExpression pattern(
            QRegularExpression::anchoredPattern(QString::fromLatin1(hint.pattern)),
            QRegularExpression::CaseInsensitiveOption);
        if (pattern.match(text).hasMatch())
            return QString::fromLatin1(hint.text);
    }
    return {};
}
