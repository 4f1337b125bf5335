#ifndef APP_OPTIONS_H
#define APP_OPTIONS_H

#include <QString>

// What the command line asks for.
struct Options
{
    enum class Request { Conversion, Usage, Version, Invalid };

    Request request = Request::Conversion;
    // Paths as given, environment references included; empty when not given.
    QString inputPath;
    QString outputPath;
    QString controlPath;
    QString logPath;
    // Month as given, -1 when it is not; not checked.
    int endMonth = -1;
};

// Reads the arguments behind the program's name. The first that asks for something else than a
// conversion, or that is no option and no value of one, ends the reading. Of an argument that
// begins with '-' only the next character counts.
Options parseOptions(int argumentCount, const char* const* arguments);

#endif // APP_OPTIONS_H
