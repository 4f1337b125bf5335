// Prints a logged line without its time stamp, and fails unless the library was built from the
// folder that holds QsLogMarker.h.

#include <cstdio>

#include "QsLog.h"
#include "QsLogMarker.h"

namespace {

void print(const QString& message, QsLogging::Level level)
{
    std::printf("%d|%s|%s\n", int(level), qUtf8Printable(message.left(6)),
                qUtf8Printable(message.mid(30)));
}

} // namespace

int main()
{
    QsLogging::Logger::instance().addDestination(
        QsLogging::DestinationFactory::MakeFunctorDestination(print));
    QLOG_DEBUG() << "below the threshold";
    QLOG_WARN() << "from" << qsLogMarker();
    return 0;
}
