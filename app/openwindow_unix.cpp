#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include <unistd.h>

#include "app/openwindow.h"

namespace {

namespace fs = std::filesystem;

// The reason why the process did not become that program.
std::error_code becomeWindow(char* argv[])
{
    std::error_code error;
    // Without the links that a program is started by, and whatever its name in argv[0] is.
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error)
        return error;
    const fs::path window = program.parent_path() / "HtsAnnualizerWindow";
    ::execv(window.c_str(),
            argv); // with the name of this program, by which desktops know the window
    return {errno, std::generic_category()};
}

void show(const std::string& line)
{
    std::fprintf(stderr, "%s\n", line.c_str());
}

} // namespace

int openWindow(char* argv[])
{
    const std::error_code error = becomeWindow(argv);
    if (error == std::errc::no_such_file_or_directory)
        show("HtsAnnualizer Error: The window is not installed: install htsannualizer-gui");
    else
        show("HtsAnnualizer Error: The window could not be started: " + error.message());
    return EXIT_FAILURE;
}
