#ifndef TESTS_APP_PROCESSRUN_H
#define TESTS_APP_PROCESSRUN_H

#include <QByteArray>
#include <QDir>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// One run of the program in a temporary folder of its own, which is its current folder.
//
//     ProcessRun run;
//     run.write("a.hts", text);
//     run.start({"-i", "a.hts", "-o", "b.hts", "-c", "c.txt"});
//     QCOMPARE(run.exitCode, 0);
//
// The environment is empty but for LC_ALL=C.UTF-8 and PATH; `environment` adds to it.
class ProcessRun
{
public:
    ProcessRun();

    // Runs the program to its end, with `input` on its standard input. An end by a signal shows as
    // exit code -1.
    void start(const QStringList& arguments, const QByteArray& input = {});
    // The same through a shell, for redirections; $PROGRAM is the program.
    void startShell(const QString& command);

    QString path(const QString& name) const;
    void write(const QString& name, const QByteArray& content) const;
    // Content of a file, "(no file)" when there is none.
    QByteArray read(const QString& name) const;
    bool exists(const QString& name) const;
    QStringList files() const;

    QProcessEnvironment environment;
    int exitCode = -2;
    QByteArray output;
    QByteArray errors;

private:
    void execute(const QString& program, const QStringList& arguments, const QByteArray& input);

    QTemporaryDir m_folder;
};

// A small file of two years of months, 1999-12-31 24:00 to 2001-12-31 24:00 without the first, with
// the series slot "Lake A.Outflow" of the object type "Reservoir": 1, 2, ... 24 cms.
QByteArray monthlyFile();
// What Sum with years that end in December makes of it.
QByteArray monthlySums();
// Writes monthlyFile as "a.hts" and, as "c.txt", a control file that asks for the sums.
void writeInputs(const ProcessRun& run);

// The words of a command line without quotes.
QStringList words(const char* line);

// What the toolkit writes to the standard error when it can load no platform plugin, in the form
// that withoutPluginList gives it. It then ends the process by a signal.
extern const char kNoPlatform[];
// The text with the toolkit's list of the plugins that are installed replaced by "...".
QByteArray withoutPluginList(QByteArray errors);

// What a log file says of a success.
extern const char kCreated[];
// Log file of a conversion of monthlyFile as "a.hts" to "b.hts" with "c.txt", up to the outcome;
// the time stamp is replaced by "(time)".
QByteArray logWithOutcome(const QByteArray& outcome);
// A log file's content with the time stamp in its second line replaced by "(time)".
QByteArray withoutTime(const QByteArray& log);

#endif // TESTS_APP_PROCESSRUN_H
