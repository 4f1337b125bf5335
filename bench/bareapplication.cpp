// What every program with an application object pays on the platform without a display: it is made
// and destroyed, nothing else.

#include <QApplication>

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return 0;
}
