#ifndef CHECK_KNOWNLINES_H
#define CHECK_KNOWNLINES_H

#include <string_view>
#include <vector>

#include <QLatin1String>
#include <QString>

#include "hts/readerobserver.h"

// The lines that an HTS file has, by section.

// Keys and end lines of a preamble. For a slot also "END_RUN", which may come in its place.
const std::vector<QLatin1String>& knownLinesOf(ReaderObserver::Section section);

// Whether a known line is an end line; otherwise it is a key.
bool isEndLine(QLatin1String known);

// The key without the blank after its colon, for reports.
QString keyName(QLatin1String key);

// Whether `line` is an end line or begins with a key, of whatever section.
bool isKnownLine(std::string_view line);

// Whether `line` is an end line, or begins with a key of a slot preamble or a column header: such a
// line is among values only if lines were lost.
bool isSlotLine(std::string_view line);

// Whether `line` belongs to a place other than the preamble of `section`: it is a number, a
// timestep, or begins with a key or is an end line of another section. The line is not one of
// `section`.
bool belongsElsewhere(std::string_view line, ReaderObserver::Section section);

#endif // CHECK_KNOWNLINES_H
