// The entry of HtsAnnualizer: starts one of its two front ends.

#include <algorithm>

#include <QCoreApplication>

#include "annualize/annualizehts.h"
#include "app/commandline.h"
#include "app/openwindow.h"
#include "app/platform.h"
#include "utils/messagewatcher.h"
#include "utils/processsetup.h"

int main(int argc, char* argv[])
{
    UtilsNS::openStandardStreams(UtilsNS::MissingStream::IsEmpty);
    // Any argument selects the command-line mode.
    if (argc == 1)
        return openWindow(argv);
    prepareCommandLineMode();
    // The toolkit gets none of the arguments: it would remove those that it knows.
    int toolkitArgc = std::min(argc, 1);
    const QCoreApplication application(toolkitArgc, argv);
    UtilsNS::chooseTextEncoding();

    AnnualizeHts engine;
    UtilsNS::connectLoggerToWatcher();
    return runCommandLine(argc, argv, engine);
}
