// The time that every program with an application object needs: the object is created and
// destroyed, nothing else.

#include <QCoreApplication>

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return 0;
}
