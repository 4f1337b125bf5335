// The entry of HtsAnnualizerWindow, the window of HtsAnnualizer on Unix, which starts it.

#include <cstdio>
#include <cstdlib>

#include "gui/mainwindow.h"
#include "utils/processsetup.h"

int main(int argc, char* argv[])
{
    UtilsNS::openStandardStreams(UtilsNS::MissingStream::IsEmpty);
    if (argc > 1) {
        std::fputs("HtsAnnualizerWindow Error: Takes no arguments; HtsAnnualizer does\n", stderr);
        return EXIT_FAILURE;
    }
    return runMainWindow(argc, argv);
}
