// usage: convert CONVERSION LOG INPUT RESULT CONTROL MONTH
//
// The program's work with one part replaced: CONVERSION is "plain" for the plain conversion, with a
// text for every line and the whole file in memory, or "own"; LOG is "off" for a logger that drops
// all lines, or "on".

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <QCoreApplication>
#include <QFile>

#include "QsLog.h"
#include "annualize/annualizehts.h"
#include "tests/plain/plainconversion.h"
#include "utils/messagewatcher.h"

namespace {

Status convert(QFile& source, QFile& result, const QString& controlFile, int endMonth)
{
    AnnualizeHts engine;
    Status status = engine.setSourceDevice(&source);
    if (status.ok())
        status = engine.setResultDevice(&result);
    if (status.ok())
        status = engine.setControlFile(controlFile);
    if (status.ok())
        status = engine.setEndMonth(endMonth);
    return status.ok() ? engine.annualize() : status;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 7) {
        std::fprintf(stderr, "usage: convert CONVERSION LOG INPUT RESULT CONTROL MONTH\n");
        return 1;
    }
    const bool isPlain = std::strcmp(argv[1], "plain") == 0;
    const bool isLogged = std::strcmp(argv[2], "on") == 0;
    QsLogging::Logger::instance().setLoggingLevel(isLogged ? QsLogging::TraceLevel
                                                           : QsLogging::OffLevel);
    QsLogging::Logger::instance().addDestination(
        QsLogging::DestinationFactory::MakeFunctorDestination(UtilsNS::watcherDestination));

    QFile source(QString::fromLocal8Bit(argv[3]));
    QFile result(QString::fromLocal8Bit(argv[4]));
    if (!source.open(QIODevice::ReadOnly | QIODevice::Text) ||
        !result.open(QIODevice::WriteOnly | QIODevice::Text)) {
        std::fprintf(stderr, "cannot open the files\n");
        return 1;
    }
    const QString controlFile = QString::fromLocal8Bit(argv[5]);
    const int endMonth = std::atoi(argv[6]);
    const Status status = isPlain ? plainconversion::convert(source, controlFile, endMonth, result)
                                  : convert(source, result, controlFile, endMonth);
    if (!status.ok())
        std::fprintf(stderr, "%s\n", qPrintable(status.message));
    return status.ok() ? 0 : 1;
}
