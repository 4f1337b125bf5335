#include "check/numberhint.h"

#include <QRegularExpression>

#include "hts/linetext.h"

namespace {

struct Hint
{
    const char* pattern; // matches the whole text, in any letter case
    const char* text;
};

// The first that matches is used.
const Hint kHints[] = {
    {R"(n/?a|#n/a|[+-]nan|null|none|missing|nodata|no data|\?+|\*+|-+|\.+|[+-]?1\.#\w+)",
     "a missing value, which is written NaN"},
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
    for (const Hint& hint : kHints) {
        const QRegularExpression pattern(
            QRegularExpression::anchoredPattern(QString::fromLatin1(hint.pattern)),
            QRegularExpression::CaseInsensitiveOption);
        if (pattern.match(text).hasMatch())
            return QString::fromLatin1(hint.text);
    }
    return {};
}
