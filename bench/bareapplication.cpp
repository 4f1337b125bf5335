// The time that every program with an application object needs on the platform without a display:
// the object is created and destroyed, nothing else.

#include <QApplication>

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return 0;
}
