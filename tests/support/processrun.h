#ifndef TESTS_SUPPORT_PROCESSRUN_H
#define TESTS_SUPPORT_PROCESSRUN_H

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// Runs of a program in a temporary folder, which is their current folder.
//
//     ProcessRun run(QStringLiteral("/path/of/program"));
//     run.write("a.hts", text);
//     run.start("-i a.hts");
//     QCOMPARE(run.exitCode, 0);
//
// The environment is empty except for LC_ALL=C.UTF-8, PATH and the options of the sanitizers;
// `environment` adds to it.
class ProcessRun
{
public:
    explicit ProcessRun(const QString& program);

    // Runs the program to its end, with `input` on its standard input. An end by a signal shows as
    // exit code -1.
    void start(const QStringList& arguments, const QByteArray& input = {});
    // The same with the words of `line`.
    void start(const char* line);
    // The same through a shell, for redirections; $PROGRAM is the program.
    void startShell(const QString& command);
    void startShell(const char* command) { startShell(QString::fromUtf8(command)); }
    void set(const char* variable, const QString& value);

    // What the run printed, and its exit code: "exit 0" for a success without a word.
    QByteArray ended() const;

    QString path(const QString& name) const;
    void write(const QString& name, const QByteArray& content) const;
    // Content of a file, "(no file)" when there is none.
    QByteArray read(const QString& name) const;
    bool exists(const QString& name) const;
    QStringList files() const;
    // The same for names that are literals, in UTF-8.
    QString path(const char* name) const { return path(QString::fromUtf8(name)); }
    void write(const char* name, const QByteArray& content) const;
    QByteArray read(const char* name) const { return read(QString::fromUtf8(name)); }
    bool exists(const char* name) const { return exists(QString::fromUtf8(name)); }

    QProcessEnvironment environment;
    int exitCode = -2;
    QByteArray output;
    QByteArray errors;

private:
    void execute(const QString& program, const QStringList& arguments, const QByteArray& input);

    const QString m_program;
    QTemporaryDir m_folder;
};

// The words of a command line without quotes.
QStringList words(const char* line);

#endif // TESTS_SUPPORT_PROCESSRUN_H
