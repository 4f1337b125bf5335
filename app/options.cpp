#include "app/options.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "app/platform.h"

namespace {

using Request = Options::Request;

template<Request request>
void setRequest(Options& options, const char* /*value*/)
{
    options.request = request;
}

template<QString Options::*path>
void setPath(Options& options, const char* value)
{
    options.*path = argumentText(value);
}

// Like atoi, but a number that does not fit an int gives the nearest int instead of undefined
// behaviour.
void setEndMonth(Options& options, const char* value)
{
    constexpr long kMin = std::numeric_limits<int>::min();
    constexpr long kMax = std::numeric_limits<int>::max();
    options.endMonth = static_cast<int>(std::clamp(std::strtol(value, nullptr, 10), kMin, kMax));
}

// Null if no option has the letter.
const Option* findOption(OptionTable table, char letter)
{
    const auto* option = std::find_if(table.begin(), table.end(),
                                      [letter](const Option& o) { return o.letter == letter; });
    return option == table.end() ? nullptr : option;
}

// The only value that may begin with a dash. It means that no month is given.
bool isNoMonth(const Option* pending, const char* argument)
{
    return pending != nullptr && pending->apply == setEndMonth && std::strcmp(argument, "-1") == 0;
}

} // namespace

const OptionTable kOptions = {
    {'i', "file", setPath<&Options::inputPath>, "This specifies the input hts file (required)."},
    {'o', "file", setPath<&Options::outputPath>,
     "This specifies the output annual hts file (required)."},
    {'c', "file", setPath<&Options::controlPath>,
     "This specifies the method control file (required)."},
    {'l', "file", setPath<&Options::logPath>,
     "This specifies the log file for messages.\n"
     "    (will default to the output hts file name plus a .log file extension)"},
    {'y', "number", setEndMonth,
     "This integer number specifies the month that \n"
     "    you want the year to end with (1 to 12).\n"
     "    (will default to 12 for December)"},
    {'h', nullptr, setRequest<Request::Usage>, "This will print help information."},
    {'v', nullptr, setRequest<Request::Version>, "This will print the version number."},
};

Options parseOptions(int argumentCount, const char* const* arguments, OptionTable table)
{
    Options options;
    const Option* pending = nullptr; // the option whose value comes next
    for (int i = 1; i < argumentCount && options.request == Request::Conversion; ++i) {
        const char* argument = arguments[i];
        Q_ASSERT(argument != nullptr);
        if (argument[0] == '-' && !isNoMonth(pending, argument)) {
            const Option* option = findOption(table, argument[1]);
            if (option == nullptr)
                options.request = Request::Invalid;
            else if (option->isFlag())
                option->apply(options, nullptr);
            pending = option == nullptr || option->isFlag() ? nullptr : option;
        } else if (pending != nullptr) {
            pending->apply(options, argument);
            pending = nullptr;
        } else {
            options.request = Request::Invalid;
        }
    }
    return options;
}
