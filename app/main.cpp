// The program's entry: sets up what both front ends need and starts one of them.

#include <algorithm>

#include <QApplication>
#include <QMetaType>

#include "QsLog.h"
#include "annualize/annualizehts.h"
#include "app/commandline.h"
#include "app/platform.h"
#include "gui/annualizehtsdlg.h"
#include "gui/messagewatcher.h"
#include "utils/processsetup.h"

namespace {

// The one destination of all log lines. Its signal carries the level through queued connections.
void connectLoggerToWatcher()
{
    qRegisterMetaType<QsLogging::Level>("QsLogging::Level");
    QsLogging::Logger& logger = QsLogging::Logger::instance();
    logger.setLoggingLevel(QsLogging::TraceLevel);
    logger.addDestination(
        QsLogging::DestinationFactory::MakeFunctorDestination(UtilsNS::watcherDestination));
}

// However the window is closed, the exit code is 0.
int runMainWindow(AnnualizeHts& engine)
{
    AnnualizeHtsDlg window(&engine, nullptr);
    window.show();
    QApplication::exec();
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    UtilsNS::openStandardStreams();
    // Any argument asks for the command line. All of them are the program's own: the toolkit would
    // take out options such as -style or -platform, and might end the process over one.
    const bool hasWindow = argc == 1;
    if (!hasWindow)
        prepareForNoWindow();
    int toolkitArgc = std::min(argc, 1);
    const QApplication application(toolkitArgc, argv);
    UtilsNS::chooseTextEncoding();

    AnnualizeHts engine;
    connectLoggerToWatcher();
    return hasWindow ? runMainWindow(engine) : runCommandLine(argc, argv, engine);
}
