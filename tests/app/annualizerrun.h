#ifndef TESTS_APP_ANNUALIZERRUN_H
#define TESTS_APP_ANNUALIZERRUN_H

#include <QByteArray>

#include "tests/support/processrun.h"

// Runs of HtsAnnualizer.
class AnnualizerRun : public ProcessRun
{
public:
    AnnualizerRun();
};

// A small file of two years of months, 2000-1-31 24:00 to 2001-12-31 24:00, with the series slot
// "Lake A.Outflow" of the object type "Reservoir": 1, 2, ... 24 cms.
QByteArray monthlyFile();
// The result of Sum for it, with years that end in December.
QByteArray monthlySums();
// Writes monthlyFile as "a.hts" and, as "c.txt", a control file that asks for the sums.
void writeInputs(const AnnualizerRun& run);

// The text of a log file about a success.
inline const QByteArray kCreated = "HtsAnnualizer: Annual HTs file successfully created\n\n";
// Log file of a conversion of monthlyFile as "a.hts" to "b.hts" with "c.txt", up to the outcome;
// the time stamp is replaced by "(time)".
QByteArray logWithOutcome(const QByteArray& outcome);
// A log file's content with the time stamp in its second line replaced by "(time)".
QByteArray withoutTime(const QByteArray& log);

#endif // TESTS_APP_ANNUALIZERRUN_H
