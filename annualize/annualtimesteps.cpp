// The complete years of a run: which timesteps belong to which year, and the annual timesteps.

#include "annualize/annualizehts.h"

#include <iterator>

#include "QsLog.h"
#include "hts/datetimetext.h"

namespace {

const QLatin1String kAlreadyAnnual("Source HTS File already in annual timestep");
const QLatin1String kNoCompleteYear("Cannot create a complete year from the input HTS file");

const QLatin1String kMonthUnit("month");
const QLatin1String kWeekUnit("week");
const QLatin1String kYearUnit("year");

QLatin1String monthName(int month)
{
    static const char* const kNames[] = {"January",   "February", "March",    "April",
                                         "May",       "June",     "July",     "August",
                                         "September", "October",  "November", "December"};
    const bool isMonth = month >= 1 && month <= static_cast<int>(std::size(kNames));
    return QLatin1String(isMonth ? kNames[month - 1] : "");
}

// Midnight before the first day that follows the end month, in the calendar year of `runStart`.
QDateTime firstYearStart(const QDateTime& runStart, int endMonth)
{
    const int month = endMonth == 12 ? 1 : endMonth + 1;
    return QDateTime(QDate(runStart.date().year(), month, 1), QTime(0, 0), Qt::UTC);
}

// When the first timestep of a year ends at the latest. Finer units than a day count as a day.
QDateTime endOfFirstTimestep(const QDateTime& yearStart, const QString& unit)
{
    if (unit == kMonthUnit)
        return yearStart.addMonths(1);
    return yearStart.addDays(unit == kWeekUnit ? 7 : 1);
}

// Whether the last timestep of a run completes the year that ends at `yearEnd`. The last week must
// end before the year does: one that ends with the year to the minute deliberately doesn't complete
// it, although it counts to that year when more weeks follow.
bool completesYear(const QDateTime& lastTimestep, const QDateTime& yearEnd, const QString& unit)
{
    if (unit == kWeekUnit)
        return lastTimestep < yearEnd && yearEnd.addDays(-7) < lastTimestep;
    return lastTimestep == yearEnd;
}

// Walks through the timesteps of `run`: appends the number of its year to `valueMap` for each, and
// the last timestep of each complete year to `annualTimesteps`. Returns the number of complete
// years, 0 or less when there is none. A date-time that is not valid ends the walk without a
// complete year: it must not get into a comparison, which would take it for some valid instant.
std::int32_t findCompleteYears(const HtsRun& run, int endMonth, AnnualizeHts::ValueMap& valueMap,
                               QStringList& annualTimesteps)
{
    // End of the year under way, and start of the next.
    QDateTime yearEnd = firstYearStart(run.start, endMonth);
    std::int32_t year = 0; // number of the year under way, 0 before the first complete one
    QDateTime timestep;
    bool isValid = run.start.isValid() && yearEnd.isValid();
    for (int i = 0; isValid && i < run.timeStepCount; ++i) {
        timestep = textToDateTime(run.timesteps.at(i));
        isValid = timestep.isValid();
        if (!isValid)
            break;
        if (i == 0 && yearEnd < timestep &&
            endOfFirstTimestep(yearEnd, run.timeStepUnit) < timestep)
            yearEnd = yearEnd.addYears(1);
        if (yearEnd < timestep) {
            if (year != 0)
                annualTimesteps.append(run.timesteps.at(i - 1));
            yearEnd = yearEnd.addYears(1);
            ++year;
        }
        valueMap.push_back(year);
    }

    const bool hasLast = isValid && timestep.isValid(); // a run may have no timesteps
    if (hasLast && completesYear(timestep, yearEnd, run.timeStepUnit)) {
        annualTimesteps.append(run.timesteps.at(run.timeStepCount - 1));
        return year;
    }
    QLOG_INFO() << "Ignoring partial year at end of timesteps";
    return hasLast ? year - 1 : 0;
}

// Gives `annualRun` the annual timesteps, of which there is at least one, and what stays the same.
void setAnnualTiming(const HtsRun& inputRun, const QStringList& annualTimesteps, HtsRun& annualRun)
{
    annualRun.start = textToDateTime(annualTimesteps.first());
    annualRun.end = textToDateTime(annualTimesteps.last());
    annualRun.timeStepUnit = kYearUnit;
    annualRun.unitQuantity = 1;
    annualRun.timeStepCount = annualTimesteps.size();
    annualRun.consecutive = inputRun.consecutive;
    annualRun.slotSet = inputRun.slotSet;
    annualRun.ruleSet = inputRun.ruleSet;
    annualRun.idxSequential = inputRun.idxSequential;
    annualRun.timesteps = annualTimesteps;
}

} // namespace

Status AnnualizeHts::calculateAnnualTimesteps(const HtsRun& inputRun, ValueMap& valueMap,
                                              HtsRun& annualRun) const
{
    if (inputRun.timeStepUnit == kYearUnit)
        return failure(kAlreadyAnnual);
    if (inputRun.timesteps.size() < inputRun.timeStepCount)
        return failure(HtsRun::kBadPreamble);

    QLOG_INFO() << "Starting calculation of new annual timesteps";
    QLOG_INFO().noquote() << QLatin1String("Using ") + monthName(m_endMonth) +
                                 QLatin1String(" as the year end for calculations.");
    if (inputRun.timeStepCount > 0) {
        // Logged whether or not there is one.
        QLOG_INFO() << "Ignoring partial year at beginning of timesteps";
    }

    QStringList annualTimesteps;
    if (findCompleteYears(inputRun, m_endMonth, valueMap, annualTimesteps) < 1)
        return failure(kNoCompleteYear);
    setAnnualTiming(inputRun, annualTimesteps, annualRun);

    QLOG_INFO().noquote() << QLatin1String("New annual start timestep is ") +
                                 annualTimesteps.first();
    QLOG_INFO().noquote() << QLatin1String("New annual end timestep is ") + annualTimesteps.last();
    QLOG_INFO() << "Finished calculation of new annual timesteps";
    return {};
}
