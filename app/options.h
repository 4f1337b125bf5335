#ifndef APP_OPTIONS_H
#define APP_OPTIONS_H

#include <initializer_list>

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
    // What the usage text calls the value, which is the next argument; null for a flag, an option
    // without a value.
    const char* valueName;
    // Sets in `options` what the option asks for. `value` is an argument of the process in
    // UTF-8, null for a flag.
    void (*apply)(Options& options, const char* value);
    // What the usage text says about the option, without a line end at the end. Not empty.
    const char* usage;

    bool isFlag() const { return valueName == nullptr; }
};

using OptionTable = std::initializer_list<Option>;

// All options, in the order of the usage text.
extern const OptionTable kOptions;

// Reads the arguments after the program's name, which is the first; none is null. Reading stops at
// the first argument that asks for something other than a conversion, or that is neither an option
// nor the value of one. An argument that begins with '-' is the option of its next character, and
// the rest of it is ignored; but exactly "-1" after the option for the month is the value of that.
// An option without its value, because another option or nothing follows, is ignored. When a value
// is given twice, the later one counts.
Options parseOptions(int argumentCount, const char* const* arguments, OptionTable table = kOptions);

#endif // APP_OPTIONS_H
