// usage: convert READER LOG INPUT RESULT CONTROL MONTH
//
// The program's conversion with one thing exchanged: READER is "plain" for the plain line-by-line
// reader, or "own"; LOG is "off" for a logger that lets nothing through, or "on".

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <QApplication>
#include <QFile>

#include "QsLog.h"
#include "annualize/annualizehts.h"
#include "bench/plainreader/plainreader.h"
#include "gui/messagewatcher.h"

namespace {

Status convert(bool isPlain, QFile& source, QFile& result, const QString& controlFile, int endMonth)
{
    AnnualizeHts engine;
    Status status = engine.setControlFile(controlFile);
    if (status.ok())
        status = engine.setEndMonth(endMonth);
    HtsPackage input;
    if (status.ok())
        status = isPlain ? plainreader::read(source, input) : input.read(source);
    HtsPackage output;
    if (status.ok())
        status = engine.annualizePackage(input, output);
    return status.ok() ? output.write(result) : status;
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "minimal;offscreen"); // as the program chooses
    const QApplication application(argc, argv);
    if (argc != 7) {
        std::fprintf(stderr, "usage: convert READER LOG INPUT RESULT CONTROL MONTH\n");
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
    const Status status =
        convert(isPlain, source, result, QString::fromLocal8Bit(argv[5]), std::atoi(argv[6]));
    if (!status.ok())
        std::fprintf(stderr, "%s\n", qPrintable(status.message));
    return status.ok() ? 0 : 1;
}
