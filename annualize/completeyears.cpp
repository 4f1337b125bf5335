// Which timesteps belong to which year. Pure calendar arithmetic, except for the log lines.

#include "annualize/completeyears.h"

#include "QsLog.h"
#include "annualize/months.h"
#include "annualize/timestepunit.h"
#include "hts/datetimetext.h"

namespace {

const QLatin1String kAlreadyAnnual("Source HTS File already in annual timestep");
const QLatin1String kNoCompleteYear("Cannot create a complete year from the input HTS file");

const QLatin1String kYearUnit("year");

// Walks through the timesteps of `run`: appends the number of its year to the value map for each,
// and the last timestep of each complete year. Returns the number of complete years, 0 or
// less when there is none. A date-time that is not valid ends the walk without a complete year: a
// comparison would take it for some valid instant.
std::int32_t walkYears(const HtsRun& run, int endMonth, CompleteYears& years)
{
    const TimestepUnit& unit = timestepUnitOrDay(run.timeStepUnit);
    Q_ASSERT(!unit.isYear());
    // End of the current year, and start of the next.
    QDateTime yearEnd = yearEndIn(run.start.date().year(), endMonth);
    std::int32_t year = 0; // number of the current year, 0 before the first complete one
    QDateTime timestep;
    const bool hasStart = run.start.isValid() && yearEnd.isValid();
    for (int i = 0; hasStart && i < run.timeStepCount; ++i) {
        timestep = textToDateTime(run.timesteps.at(i));
        if (!timestep.isValid())
            break;
        if (i == 0 && yearEnd < timestep && unit.latestEndOfFirst(yearEnd) < timestep)
            yearEnd = yearEnd.addYears(1);
        if (yearEnd < timestep) {
            if (year != 0)
                years.timesteps.append(run.timesteps.at(i - 1));
            yearEnd = yearEnd.addYears(1);
            ++year;
        }
        years.valueMap.push_back(year);
    }

    const bool hasLast = timestep.isValid(); // a run may have no timesteps
    years.endsInPartialYear = !hasLast || !unit.completesYear(timestep, yearEnd);
    if (years.endsInPartialYear)
        return hasLast ? year - 1 : 0;
    years.timesteps.append(run.timesteps.at(run.timeStepCount - 1));
    return year;
}

QLatin1String monthName(int month)
{
    return isMonth(month) ? kMonthNames[static_cast<std::size_t>(month - 1)] : QLatin1String("");
}

} // namespace

QDateTime yearEndIn(int year, int endMonth)
{
    const int month = endMonth == 12 ? 1 : endMonth + 1;
    return QDateTime(QDate(year, month, 1), QTime(0, 0), Qt::UTC);
}

CompleteYears findCompleteYears(const HtsRun& run, int endMonth)
{
    CompleteYears years;
    if (timestepUnitOrDay(run.timeStepUnit).isYear()) {
        years.status = failure(kAlreadyAnnual);
        return years;
    }
    if (run.timesteps.size() < run.timeStepCount) {
        years.status = failure(HtsRun::kBadPreamble);
        return years;
    }
    years.isSearched = true;
    years.hasTimesteps = run.timeStepCount > 0;
    years.valueMap.reserve(static_cast<std::size_t>(run.timesteps.size()));
    if (walkYears(run, endMonth, years) < 1)
        years.status = failure(kNoCompleteYear);
    return years;
}

void logCompleteYears(const CompleteYears& years, int endMonth)
{
    if (!years.isSearched)
        return;
    QLOG_INFO() << "Starting calculation of new annual timesteps";
    QLOG_INFO().noquote() << QLatin1String("Using ") + monthName(endMonth) +
                                 QLatin1String(" as the year end for calculations.");
    if (years.hasTimesteps) {
        // Logged whether or not there is one.
        QLOG_INFO() << "Ignoring partial year at beginning of timesteps";
    }
    if (years.endsInPartialYear) {
        QLOG_INFO() << "Ignoring partial year at end of timesteps";
    }
    if (!years.status.ok())
        return;
    QLOG_INFO().noquote() << QLatin1String("New annual start timestep is ") +
                                 years.timesteps.first();
    QLOG_INFO().noquote() << QLatin1String("New annual end timestep is ") + years.timesteps.last();
    QLOG_INFO() << "Finished calculation of new annual timesteps";
}

void setAnnualTiming(const HtsRun& run, const CompleteYears& years, HtsRun& annualRun)
{
    Q_ASSERT(years.status.ok() && !years.timesteps.isEmpty());
    annualRun.start = textToDateTime(years.timesteps.first());
    annualRun.end = textToDateTime(years.timesteps.last());
    annualRun.timeStepUnit = kYearUnit;
    annualRun.unitQuantity = 1;
    annualRun.timeStepCount = years.count();
    annualRun.consecutive = run.consecutive;
    annualRun.slotSet = run.slotSet;
    annualRun.ruleSet = run.ruleSet;
    annualRun.idxSequential = run.idxSequential;
    annualRun.timesteps = years.timesteps;
}
