#ifndef UTILS_MESSAGEWATCHER_H
#define UTILS_MESSAGEWATCHER_H

#include <QObject>
#include <QString>

#include "QsLogLevel.h"

namespace UtilsNS {

// Carries log lines from the logger to the user interface: after connectLoggerToWatcher() every
// line is emitted by `messageWatcher`, on the thread that logged it. A receiver with widgets needs
// a queued connection.
class MessageWatcher : public QObject
{
    Q_OBJECT

public:
    // Whether anything is connected to the signal. Callable from any thread.
    bool hasReceiver() const;

Q_SIGNALS:
    void message(QsLogging::Level level, const QString& message);
};

// The only watcher of the program; exists from before main() until exit.
extern MessageWatcher messageWatcher;

// Emits a formatted log line without its time stamp and with its level narrowed to Info, Warn or
// Error. Callable from any thread; without a receiver the line is lost.
void watcherDestination(const QString& message, QsLogging::Level level);

// Sets the logger's level to Trace and makes watcherDestination() the destination of all log lines.
// To be called once. Registers the level for queued connections of the watcher's signal.
void connectLoggerToWatcher();

} // namespace UtilsNS

#endif // UTILS_MESSAGEWATCHER_H
