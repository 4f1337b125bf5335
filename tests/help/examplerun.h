#ifndef TESTS_HELP_EXAMPLERUN_H
#define TESTS_HELP_EXAMPLERUN_H

#include "tests/app/annualizerrun.h"

// Runs in a folder that looks like the source tree after a build: with the examples, the programs
// where a build puts them, and an empty folder "tmp".
class ExampleRun : public AnnualizerRun
{
public:
    ExampleRun();

    // Types the commands of a console, which is lines that start with "$ " and what is printed
    // after them, each after the commands `before`. Gives the console; `errors` is that of all of
    // them.
    QByteArray type(const QByteArray& console, const QByteArray& before = {});
};

// The same where both programs are commands.
class CommandRun : public ExampleRun
{
public:
    CommandRun();
};

// A result of an example, computed without the program.
QByteArray golden(const char* name);

#endif // TESTS_HELP_EXAMPLERUN_H
