#include "check/keyvalues.h"

#include <algorithm>
#include <cmath>

#include <QString>

#include "check/findings.h"
#include "check/knownlines.h"
#include "check/quotedtext.h"
#include "hts/datetimetext.h"
#include "hts/htskeys.h"
#include "hts/linetext.h"

namespace {

using Check = void (*)(QLatin1String key, std::string_view value, qint64 line, Findings& findings);

void checkInteger(QLatin1String key, std::string_view value, qint64 line, Findings& findings)
{
    bool isInteger = false;
    static_cast<void>(toText(value).toInt(&isInteger));
    if (isInteger)
        return;
    findings.add(Code::BadInteger, line, [&]() -> QString {
        return QStringLiteral("%1 %2 is not an integer and counts as 0")
            .arg(keyName(key), quoted(value));
    });
}

void checkDate(QLatin1String key, std::string_view value, qint64 line, Findings& findings)
{
    if (textToDateTime(toText(value)).isValid())
        return;
    findings.add(Code::BadDate, line, [&]() -> QString {
        return QStringLiteral("%1 %2 is not a date-time").arg(keyName(key), quoted(value));
    });
}

void checkScale(QLatin1String, std::string_view value, qint64 line, Findings& findings)
{
    const double scale = toText(value).toDouble();
    if (scale != 0.0 && std::isfinite(scale))
        return;
    findings.add(Code::BadScale, line, [&]() -> QString {
        return QStringLiteral("scale: %1 is %2")
            .arg(quoted(value), isNumberLine(value)
                                    ? QStringLiteral("not a usable scale")
                                    : QStringLiteral("not a number and counts as 0"));
    });
}

// Bytes that are plain ASCII text need no decoding.
bool hasOddCharacter(std::string_view value)
{
    const auto isPlain = [](char c) { return c >= ' ' && c < '\x7f'; };
    if (std::all_of(value.begin(), value.end(), isPlain))
        return false;
    const QString text = toText(value);
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        return c == QChar::ReplacementCharacter || (!c.isPrint() && !c.isSurrogate());
    });
}

void checkName(QLatin1String key, std::string_view value, qint64 line, Findings& findings)
{
    if (!hasOddCharacter(value))
        return;
    findings.add(Code::OddCharacter, line, [&]() -> QString {
        return QStringLiteral(
                   "%1 %2 contains a tab, a control character or bytes that are not UTF-8")
            .arg(keyName(key), quoted(value));
    });
}

struct KeyCheck
{
    const char* key;
    Check check;
};

// Keys that are not in the table have texts as values that do not affect a conversion.
const KeyCheck kChecks[] = {
    {"object_type: ", checkName},
    {"object_name: ", checkName},
    {"slot_name: ", checkName},
    {"units: ", checkName},
    {"scale: ", checkScale},
    {"rows: ", checkInteger},
    {"cols: ", checkInteger},
    {"number_of_runs:", checkInteger},
    {"trace:", checkInteger},
    {"unit_quantity:", checkInteger},
    {"time_steps:", checkInteger},
    {"timesteps:", checkInteger},
    {"consecutive:", checkInteger},
    {"idx_sequential:", checkInteger},
    {"create_date:", checkDate},
    {"start:", checkDate},
    {"end:", checkDate},
};

} // namespace

void checkKeyValue(QLatin1String key, std::string_view value, qint64 line, Findings& findings)
{
    for (const KeyCheck& keyCheck : kChecks) {
        if (key == QLatin1String(keyCheck.key))
            keyCheck.check(key, value, line, findings);
    }
}
