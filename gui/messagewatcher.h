#ifndef GUI_MESSAGEWATCHER_H
#define GUI_MESSAGEWATCHER_H

#include <QObject>
#include <QString>

#include "QsLogLevel.h"

namespace UtilsNS {

// Carries log lines from the logger to the user interface.
//
//     QsLogging::Logger::instance().addDestination(
//         QsLogging::DestinationFactory::MakeFunctorDestination(UtilsNS::watcherDestination));
//
// From then on every line is emitted by `messageWatcher`, on the thread that logged it. A receiver
// with widgets needs a queued connection, for which QsLogging::Level must be registered as a meta
// type under that name before the first line.
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

} // namespace UtilsNS

#endif // GUI_MESSAGEWATCHER_H
