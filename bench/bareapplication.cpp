// What every program with an application object pays: it is made and destroyed, nothing else.

#include <QApplication>

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    return 0;
}
