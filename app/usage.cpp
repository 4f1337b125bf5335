#include "app/usage.h"

#include <iostream>

#include "app/options.h"

namespace {

const char* const kPurpose[] = {
    "The HtsAnnualizer will take an HTS file of timestep less than a year",
    "and aggregate it to create an HTS file with a yearly timestep. Methods",
    "to aggregate the slot data are specifed via a control file.",
    "",
};

// The last two lines are empty.
const char* const kControlFile[] = {
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

template<std::size_t count>
void printLines(const char* const (&lines)[count])
{
    for (const char* line : lines)
        std::cout << line << std::endl;
}

void printSynopsis()
{
    std::cout << "HtsAnnualizer";
    for (const Option& option : kOptions) {
        std::cout << " <-" << option.letter;
        if (!option.isFlag())
            std::cout << ' ' << option.valueName;
        std::cout << '>';
    }
    std::cout << std::endl;
}

} // namespace

void printUsage()
{
    printLines(kPurpose);
    std::cout << "Usage: " << std::endl;
    printSynopsis();
    for (const Option& option : kOptions) {
        Q_ASSERT(option.usage != nullptr && option.usage[0] != 0);
        std::cout << '-' << option.letter << ": " << option.usage << std::endl;
    }
    std::cout << std::endl;
    printLines(kControlFile);
}
