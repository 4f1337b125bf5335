// openhelp URL: opens the URL and runs on until its standard input ends. Prints what is not as
// expected: a result that is not a success, and zombie processes.

#include <cerrno>
#include <cstdio>

#include <QString>

#include <sys/wait.h>

#include "utils/helpurl.h"

int main(int argc, char* argv[])
{
    if (argc != 2)
        return 2;
    const Status status = UtilsNS::openHelpUrl(QString::fromLocal8Bit(argv[1]));
    if (!status.ok() || status.flag)
        std::printf("failed: %s\n", status.message.toLocal8Bit().constData());
    if (::waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD)
        std::printf("has a child\n");
    while (std::getchar() != EOF) {
    }
    return 0;
}
