#ifndef LOGGING_QSLOGDEST_H
#define LOGGING_QSLOGDEST_H

#include <QSharedPointer>
#include <QString>

#include "QsLogLevel.h"

namespace QsLogging {

// Where log lines go. The logger calls write() from the thread that logs, one call at a time.
class Destination
{
public:
    // Takes a whole formatted line and the level that it was logged at.
    using LogFunction = void (*)(const QString& message, Level level);

    virtual ~Destination();
    // Must not log: the logger is locked until it returns.
    virtual void write(const QString& message, Level level) = 0;
    virtual bool isValid() = 0;
};

using DestinationPtr = QSharedPointer<Destination>;

class DestinationFactory
{
public:
    // A destination that calls `function` for each line. `function` is not null.
    static DestinationPtr MakeFunctorDestination(Destination::LogFunction function);
};

} // namespace QsLogging

#endif // LOGGING_QSLOGDEST_H
