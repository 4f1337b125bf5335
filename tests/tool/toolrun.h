#ifndef TESTS_TOOL_TOOLRUN_H
#define TESTS_TOOL_TOOLRUN_H

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// Runs of htstool in a temporary folder of their own, which is the current folder.
class ToolRun
{
public:
    // Runs the program to its end, with `input` on its standard input. An end by a signal shows as
    // exit code -1.
    void start(const QStringList& arguments, const QByteArray& input = {});
    // The same through a shell, for redirections; $TOOL is the program.
    void startShell(const QString& command);

    QString path(const QString& name) const { return m_folder.filePath(name); }
    void write(const QString& name, const QByteArray& content) const;
    QByteArray read(const QString& name) const;

    int exitCode = -2;
    QByteArray output;
    QByteArray errors;

private:
    void execute(const QString& program, const QStringList& arguments, const QByteArray& input);

    QTemporaryDir m_folder;
};

// Content of a file of the source tree.
QByteArray sourceFile(const QString& path);

// The words of a command line without quotes.
QStringList wordsOf(const char* line);

#endif // TESTS_TOOL_TOOLRUN_H
