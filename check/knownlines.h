#ifndef CHECK_KNOWNLINES_H
#define CHECK_KNOWNLINES_H

#include <string_view>
#include <vector>

#include <QLatin1String>

// The lines that an HTS file is made of, by section.

enum class Section { Package, Run, Slot };

// Keys and end lines that may stand in a preamble; that of a slot may be replaced by "END_RUN".
const std::vector<QLatin1String>& knownLinesOf(Section section);

// Whether `line` is an end line, or begins with a key of a slot preamble or a column header: what
// stands among values only if lines were lost.
bool isSlotLine(std::string_view line);

// Whether `line` belongs to a place other than the preamble of `section`: it is a number, a
// timestep, or begins with a key or is an end line of another section. The line is not one of
// `section`.
bool belongsElsewhere(std::string_view line, Section section);

// Whether the line holds a number (see lineToNumber) and nothing else.
bool isNumberLine(std::string_view line);

#endif // CHECK_KNOWNLINES_H
