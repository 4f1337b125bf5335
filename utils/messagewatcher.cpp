#include "utils/messagewatcher.h"

#include <QMetaMethod>
#include <QMetaType>
#include <QRegularExpression>

#include "QsLog.h"

namespace UtilsNS {

namespace {

QString withoutTimeStamp(const QString& message)
{
    static const QRegularExpression kTimeStamp(
        QStringLiteral("\\d{4}-\\d{2}-\\d{2}T\\d{2}:\\d{2}:\\d{2}\\.\\d{3}\\s+"),
        QRegularExpression::UseUnicodePropertiesOption);
    // A text with a lone surrogate, as the names of some files have them, would match nothing; and
    // the vowel separator is white space in expressions only.
    constexpr char16_t kVowelSeparator = 0x180e;
    QString searched = message;
    for (QChar& c : searched)
        c = c.isSurrogate() || c == kVowelSeparator ? QChar(QChar::ReplacementCharacter) : c;
    const QRegularExpressionMatch match = kTimeStamp.match(searched);
    QString text = message;
    if (match.hasMatch())
        text.remove(match.capturedStart(), match.capturedLength());
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

void connectLoggerToWatcher()
{
    qRegisterMetaType<QsLogging::Level>("QsLogging::Level");
    QsLogging::Logger& logger = QsLogging::Logger::instance();
    logger.setLoggingLevel(QsLogging::TraceLevel);
    logger.addDestination(
        QsLogging::DestinationFactory::MakeFunctorDestination(watcherDestination));
}

} // namespace UtilsNS
