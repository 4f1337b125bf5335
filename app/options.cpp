#include "app/options.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// atoi, but a number that no int can hold is the nearest one instead of an accident.
int toMonth(const char* text)
{
    constexpr long kMin = std::numeric_limits<int>::min();
    constexpr long kMax = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::strtol(text, nullptr, 10), kMin, kMax));
}

// Where the value of a path option goes, or null for any other option.
QString* pathFor(char option, Options& options)
{
    switch (option) {
    case 'c':
        return &options.controlPath;
    case 'i':
        return &options.inputPath;
    case 'l':
        return &options.logPath;
    case 'o':
        return &options.outputPath;
    default:
        return nullptr;
    }
}

Options::Request requestOf(char option)
{
    switch (option) {
    case 'c':
    case 'i':
    case 'l':
    case 'o':
    case 'y':
        return Options::Request::Conversion;
    case 'h':
        return Options::Request::Usage;
    case 'v':
        return Options::Request::Version;
    default:
        return Options::Request::Invalid;
    }
}

} // namespace

Options parseOptions(int argumentCount, const char* const* arguments)
{
    Options options;
    char pending = 0; // option that waits for its value
    for (int i = 1; i < argumentCount && options.request == Options::Request::Conversion; ++i) {
        const char* argument = arguments[i];
        // "-y -1" gives a month.
        const bool isNegativeMonth = pending == 'y' && argument[0] == '-' && isDigit(argument[1]);
        if (argument[0] == '-' && !isNegativeMonth) {
            pending = argument[1];
            options.request = requestOf(pending);
            continue;
        }
        if (QString* path = pathFor(pending, options))
            *path = QString::fromUtf8(argument);
        else if (pending == 'y')
            options.endMonth = toMonth(argument);
        else
            options.request = Options::Request::Invalid; // a value without an option
        pending = 0;
    }
    return options;
}
