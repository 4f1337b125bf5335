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

// Connects the only destination of all log lines. The level is registered for queued connections of
// its signal.
void connectLoggerToWatcher()
{
    qRegisterMetaType<QsLogging::Level>("QsLogging::Level");
    QsLogging::Logger& logger = QsLogging::Logger::instance();
    logger.setLoggingLevel(QsLogging::TraceLevel);
    logger.addDestination(
        QsLogging::DestinationFactory::MakeFunctorDestination(UtilsNS::watcherDestination));
}

// The exit code is always 0.
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
    UtilsNS::openStandardStreams(UtilsNS::MissingStream::IsEmpty);
    // Any argument selects the command-line mode. The toolkit gets none of them: it would remove
    // options such as -style or -platform, and might end the process because of one.
    const bool hasWindow = argc == 1;
    if (!hasWindow)
        prepareCommandLineMode();
    int toolkitArgc = std::min(argc, 1);
    const QApplication application(toolkitArgc, argv);
    UtilsNS::chooseTextEncoding();

    AnnualizeHts engine;
    connectLoggerToWatcher();
    return hasWindow ? runMainWindow(engine) : runCommandLine(argc, argv, engine);
}
