#include "tests/support/logcollector.h"

#include <QVector>

#include "QsLog.h"

namespace {

// The length of "INFO  2015-06-30T14:05:09.123 ", which is before every text.
constexpr int kPrefixLength = 6 + 23 + 1;

struct Collected
{
    bool isCollecting = false;
    QStringList lines;
    QVector<QsLogging::Level> levels;
};

Collected& collected()
{
    static Collected instance;
    return instance;
}

void collect(const QString& message, QsLogging::Level level)
{
    if (!collected().isCollecting)
        return;
    collected().lines.append(message.mid(kPrefixLength));
    collected().levels.append(level);
}

} // namespace

LogCollector::LogCollector()
{
    static const bool kIsAdded = [] {
        QsLogging::Logger::instance().addDestination(
            QsLogging::DestinationFactory::MakeFunctorDestination(collect));
        return true;
    }();
    Q_UNUSED(kIsAdded)
    QsLogging::Logger::instance().setLoggingLevel(QsLogging::TraceLevel);
    collected() = Collected();
    collected().isCollecting = true;
}

LogCollector::~LogCollector()
{
    collected() = Collected();
}

QStringList LogCollector::lines() const
{
    return collected().lines;
}

QVector<QsLogging::Level> LogCollector::levels() const
{
    return collected().levels;
}
