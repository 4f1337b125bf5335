#ifndef CHECK_SENTINELS_H
#define CHECK_SENTINELS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <QString>

#include "hts/htspackage.h"

// Numbers that mark missing values in the files of other programs, such as -999 and -99.9, and how
// they occur in a slot. They are compared as printed: with -99.9 any text of that number counts,
// and any of the number that 32 bits hold for it, such as -99.900001525879.
//
//     const Sentinels sentinels({-77.0});
//     for (const Sentinels::Occurrence& found : sentinels.findIn({values, values.size(), {}}))
//         report(found);
class Sentinels
{
public:
    // The numbers that are known, and those of `given`, which are finite.
    explicit Sentinels(const std::vector<double>& given);

    struct Slot
    {
        const HtsColumn& values;
        std::size_t count; // of the values that are the slot's, from the first on
        // Indexes of values that the file does not have as numbers; ascending.
        const std::vector<std::size_t>& noNumbers;
    };

    // One of the numbers, among the values of a slot.
    struct Occurrence
    {
        double number; // as it is meant: -99.9
        bool isGiven;
        std::size_t first; // index
        std::size_t count;
        // Far outside the range of the values that are none of the numbers; the range is valid if
        // so. A number is far if it is negative and the others are not, or if its distance from
        // their range is greater than the width of that; if it occurs once, three times the width.
        bool isFar = false;
        double low = 0.0;
        double high = 0.0;
    };
    // Those that may mark missing values, in the order of their first place. A number that was not
    // given must occur twice if it lies between other values, or if there are none, and more often
    // than any value within a hundredth of it.
    std::vector<Occurrence> findIn(const Slot& slot) const;
    // Whether a value is one of the numbers that were found.
    bool isOneOf(const std::vector<Occurrence>& found, double value) const;

private:
    // What may be read from the texts of a number.
    struct Reading
    {
        double value;
        double number;
        bool isGiven;
    };

    static constexpr unsigned kFilterBits = 14;

    void add(double number, bool isGiven);
    static std::size_t filterIndex(double value);
    bool passesFilter(double value) const;
    const Reading* readingOf(double value) const;
    bool mayOccurIn(const Slot& slot) const;
    std::vector<Occurrence> occurrencesIn(const Slot& slot) const;
    template<typename Take>
    void forEachOther(const Slot& slot, Take take) const;
    std::size_t countNear(const Slot& slot, double number) const;

    std::vector<Reading> m_readings; // by value, one for each
    // A bit for each hash of kFilterBits, set if a reading has it. It rules out nearly all values
    // of a file, and costs next to nothing.
    std::array<std::uint64_t, (1U << kFilterBits) / 64> m_filter = {};
};

// The number as people write it: "-99.9", "-2147483648", "3.402823e+38".
QString sentinelText(double number);

#endif // CHECK_SENTINELS_H
