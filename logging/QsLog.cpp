#include "QsLog.h"

#include <QDateTime>
#include <QLocale>
#include <QMutexLocker>

#include <algorithm>
#include <array>
#include <type_traits>

namespace QsLogging {

namespace {

QLatin1String paddedName(Level level)
{
    static const char* const kNames[] = {"TRACE", "DEBUG", "INFO ", "WARN ", "ERROR", "FATAL"};
    Q_ASSERT(level >= TraceLevel && level < OffLevel);
    return QLatin1String(kNames[level]);
}

// The local time of a second since the epoch as yyyy-MM-ddThh:mm:ss and a point. Computed once a
// second in each thread: each conversion to local time asks the operating system.
QLatin1String secondText(qint64 second)
{
    thread_local qint64 lastSecond = -1;
    thread_local std::array<char, 20> text;
    // With mingw-w64 a thread frees its variables before their destructors run.
    static_assert(std::is_trivially_destructible_v<decltype(text)>);
    if (second != lastSecond) {
        // QDateTime::toString would write the digits of the host's locale.
        const QString stamp = QLocale::c().toString(QDateTime::fromMSecsSinceEpoch(second * 1000),
                                                    QStringLiteral("yyyy-MM-ddThh:mm:ss."));
        Q_ASSERT(static_cast<std::size_t>(stamp.size()) == text.size());
        std::transform(text.begin(), text.end(), stamp.begin(), text.begin(),
                       [](char /*old*/, QChar c) { return c.toLatin1(); });
        lastSecond = second;
    }
    return QLatin1String(text.data(), static_cast<int>(text.size()));
}

QString formattedLine(Level level, const QString& text)
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const auto milliseconds = static_cast<int>(now % 1000);
    const char digits[] = {static_cast<char>('0' + milliseconds / 100),
                           static_cast<char>('0' + milliseconds / 10 % 10),
                           static_cast<char>('0' + milliseconds % 10)};
    return paddedName(level) + QLatin1Char(' ') + secondText(now / 1000) +
           QLatin1String(digits, 3) + QLatin1Char(' ') + text;
}

} // namespace

Logger& Logger::instance()
{
    static Logger logger;
    return logger;
}

void Logger::addDestination(const DestinationPtr& destination)
{
    const QMutexLocker locker(&m_mutex);
    m_destinations.append(destination);
}

void Logger::setLoggingLevel(Level level)
{
    m_level = level;
}

Level Logger::loggingLevel() const
{
    return m_level;
}

void Logger::write(const QString& line, Level level)
{
    const QMutexLocker locker(&m_mutex);
    for (const DestinationPtr& destination : qAsConst(m_destinations))
        destination->write(line, level);
}

Logger::Helper::Helper(Level level) : m_level(level), m_stream(&m_text) {}

Logger::Helper::~Helper()
{
    Logger::instance().write(formattedLine(m_level, m_text), m_level);
}

} // namespace QsLogging
