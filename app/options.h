#ifndef APP_OPTIONS_H
#define APP_OPTIONS_H

#include <array>

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
    // Month as given, not checked: 0 for a text that is not a number, the nearest int for a number
    // that does not fit. -1 when it is not given, or given as -1.
    int endMonth = -1;
};

// One option of the command line: what parsing and the usage text need to know about it.
struct Option
{
    // The option is a dash and this letter.
    char letter;
    // What the option asks for; Conversion for one that takes a value.
    Options::Request request;
    // What the usage text calls the value; null for an option without one.
    const char* valueName;
    // Stores the value, an argument of the process, in `options`; null for an option without one.
    void (*setValue)(Options& options, const char* value);
    // What the usage text says about the option, without a line end at the end. Not empty.
    const char* usage;
};

// All options, in the order of the usage text.
extern const std::array<Option, 7> kOptions;

// Reads the arguments after the program's name, which is the first; none is null. Reading stops at
// the first argument that asks for something other than a conversion, or that is neither an option
// nor the value of one. An argument that begins with '-' is the option of its next character, and
// the rest of it is ignored; but exactly "-1" after the option for the month is the value of that.
// An option without its value, because another option or nothing follows, is ignored. When a value
// is given twice, the later one counts.
Options parseOptions(int argumentCount, const char* const* arguments);

#endif // APP_OPTIONS_H
