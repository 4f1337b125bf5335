#include "app/openwindow.h"
#include "gui/mainwindow.h"

int openWindow(char* argv[])
{
    return runMainWindow(1, argv);
}
