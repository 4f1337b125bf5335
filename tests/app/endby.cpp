// A program of the command line that ends without a catcher, in the way that its argument names.

#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>

#include <sys/resource.h>

#include <QtGlobal>

#include "app/platform.h"

namespace {

// Fails in the way that `name` says; returns if it is not such a name.
void failBy(const char* name)
{
    if (std::strcmp(name, "bad_alloc") == 0)
        throw std::bad_alloc();
    if (std::strcmp(name, "bad_array_new_length") == 0)
        throw std::bad_array_new_length();
    if (std::strcmp(name, "logic_error") == 0)
        throw std::logic_error("of another kind");
    if (std::strcmp(name, "terminate") == 0)
        std::terminate();
    if (std::strcmp(name, "qWarning") == 0)
        qWarning("of the toolkit");
    if (std::strcmp(name, "qFatal") == 0)
        qFatal("of the toolkit");
}

// The same from where nothing can be caught.
void endBy(const char* name) noexcept
{
    failBy(name);
}

void leaveNoCoreFile()
{
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

} // namespace

int main(int argc, char* argv[])
{
    leaveNoCoreFile();
    prepareCommandLineMode();
    if (argc == 2)
        endBy(argv[1]);
    return 0;
}
