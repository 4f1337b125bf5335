#ifndef TESTS_APP_ANNUALIZERRUN_H
#define TESTS_APP_ANNUALIZERRUN_H

#include <QByteArray>
#include <QByteArrayList>

#include "tests/support/processrun.h"

// Runs of HtsAnnualizer.
class AnnualizerRun : public ProcessRun
{
public:
    AnnualizerRun();

    // Converts "a.hts" to "b.hts" with the control file "c.txt".
    void convert(const QStringList& otherArguments = {});
    // The same through a shell, after the text `before`, such as "umask 7; exec".
    void convertAfter(const QString& before);
    // What the conversion to "b.hts" left.
    QByteArray result() const { return read("b.hts"); }
    // Its log, as withoutTime() has it.
    QByteArray log() const;
    // How it ended, its log and its result.
    QByteArrayList outcome() const { return {ended(), log(), result()}; }
};

// A small file of two years of months, 2000-1-31 24:00 to 2001-12-31 24:00, with the series slot
// "Lake A.Outflow" of the object type "Reservoir": 1, 2, ... 24 cms.
QByteArray monthlyFile();
// The result of Sum for it, with years that end in December.
QByteArray monthlySums();
// Writes monthlyFile as "a.hts" and, as "c.txt", a control file that asks for the sums.
void writeInputs(const AnnualizerRun& run);

// A run with those files.
class MonthlyRun : public AnnualizerRun
{
public:
    MonthlyRun() { writeInputs(*this); }
};

// What the program prints, or adds to its log, about an error.
QByteArray errorText(const QByteArray& message);
inline const char kNoMethods[] = "No series slots with valid methods found in input HTS file";
// The text of a log file about a success.
inline const QByteArray kCreated = "HtsAnnualizer: Annual HTs file successfully created\n\n";
// Log file of a conversion of monthlyFile as "a.hts" to "b.hts" with "c.txt", up to the outcome;
// the time stamp is replaced by "(time)".
QByteArray logWithOutcome(const QByteArray& outcome);
// A log file's content with the time stamp in its second line replaced by "(time)".
QByteArray withoutTime(const QByteArray& log);

// AnnualizerRun::outcome() after a success and after a failure that only the log reports.
QByteArrayList converted(const QByteArray& result = monthlySums());
QByteArrayList failed(const QByteArray& message, const QByteArray& result = {});

#endif // TESTS_APP_ANNUALIZERRUN_H
