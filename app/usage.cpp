#include "app/usage.h"

#include <iostream>

namespace {

// The last two lines are empty.
const char* const kUsageLines[] = {
    "The HtsAnnualizer will take an HTS file of timestep less than a year",
    "and aggregate it to create an HTS file with a yearly timestep. Methods",
    "to aggregate the slot data are specifed via a control file.",
    "",
    "Usage: ",
    "HtsAnnualizer <-i file> <-o file> <-c file> <-l file> <-y number> <-h> <-v>",
    "-i: This specifies the input hts file (required).",
    "-o: This specifies the output annual hts file (required).",
    "-c: This specifies the method control file (required).",
    "-l: This specifies the log file for messages.",
    "    (will default to the output hts file name plus a .log file extension)",
    "-y: This integer number specifies the month that ",
    "    you want the year to end with (1 to 12).",
    "    (will default to 12 for December)",
    "-h: This will print help information.",
    "-v: This will print the version number.",
    "",
    "The control file indicates which slots to",
    "process and the method for annualizing the data.",
    "The control file syntax is for each line to contain:",
    "   Object.Slot: method",
    "where method can be Sum, Average, Max, Min, End, Begin ",
    "SumNan, AverageNan, MaxNan, MinNan, EndNan, or BeginNan.",
    "  Sum adds all of the values for the year.",
    "  Average is the average of the values for the year.",
    "  Max is the maximum of the values for the year.",
    "  Min is the minimum of the values for the year.",
    "  End is the last value in the year.",
    "  Begin is the first value in the year.",
    "The default behavior of non-Nan methods is to report NaN",
    "if any of the input values are NaN.",
    "The Nan suffix on the method means that it will ignore any",
    "NaN values when calculating and reporting the result.",
    "",
    "Wildcards can be used for the Object or Slot name:",
    "   *.Slot: method",
    "   Object.*: method",
    "",
    "The object type name can also be used as Object to get",
    "all slots for the same object type:",
    "   LevelPowerReservoir.Slot: method",
    "",
    "If the same slot is identified more than once through",
    "specific declarations or wildcards, the method is set at",
    "the first identification and not changed thereafter.",
    "",
    "",
};

} // namespace

void printUsage()
{
    for (const char* line : kUsageLines)
        std::cout << line << std::endl;
}
