#include "gui/messagewatcher.h"

#include <QMetaMethod>
#include <QRegExp>

#include "QsLogLevel.h"

namespace UtilsNS {

namespace {

QString withoutTimeStamp(const QString& message)
{
    // Not static: a QRegExp keeps the state of its last match, and lines may come from several
    // threads at once.
    const QRegExp timeStamp(
        QStringLiteral("\\d{4}-\\d{2}-\\d{2}T\\d{2}:\\d{2}:\\d{2}\\.\\d{3}\\s+"));
    QString text = message;
    const int position = timeStamp.indexIn(text);
    if (position >= 0)
        text.remove(position, timeStamp.matchedLength());
    return text;
}

// Deliberate: the viewer knows only three levels.
QsLogging::Level narrowed(QsLogging::Level level)
{
    switch (level) {
    case QsLogging::TraceLevel:
    case QsLogging::DebugLevel:
        return QsLogging::InfoLevel;
    case QsLogging::FatalLevel:
        return QsLogging::ErrorLevel;
    default:
        return level;
    }
}

} // namespace

MessageWatcher messageWatcher;

bool MessageWatcher::hasReceiver() const
{
    static const QMetaMethod kSignal = QMetaMethod::fromSignal(&MessageWatcher::message);
    return isSignalConnected(kSignal);
}

void watcherDestination(const QString& message, QsLogging::Level level)
{
    // On the command line nothing is connected, and the engine logs lines for every slot.
    if (messageWatcher.hasReceiver())
        Q_EMIT messageWatcher.message(narrowed(level), withoutTimeStamp(message));
}

} // namespace UtilsNS
