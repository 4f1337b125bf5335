#include "gui/mainwindow.h"

#include <algorithm>

#include <QApplication>

#include "annualize/annualizehts.h"
#include "gui/annualizehtsdlg.h"
#include "utils/messagewatcher.h"
#include "utils/processsetup.h"

int runMainWindow(int argc, char* argv[])
{
    int toolkitArgc = std::min(argc, 1);
    const QApplication application(toolkitArgc, argv);
    UtilsNS::chooseTextEncoding();

    AnnualizeHts engine;
    UtilsNS::connectLoggerToWatcher();
    AnnualizeHtsDlg window(&engine, nullptr);
    window.show();
    QApplication::exec();
    return 0;
}
