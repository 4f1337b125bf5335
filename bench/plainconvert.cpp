// usage: plainconvert INPUT RESULT CONTROL MONTH
//
// The conversion of the program with the plain line-by-line reader in the place of its own; all the
// rest is the program's.

#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QFile>

#include "QsLog.h"
#include "annualize/annualizehts.h"
#include "bench/plainreader/plainreader.h"
#include "gui/messagewatcher.h"

namespace {

Status convert(QFile& source, QFile& result, const QString& controlFile, int endMonth)
{
    AnnualizeHts engine;
    Status status = engine.setControlFile(controlFile);
    if (status.ok())
        status = engine.setEndMonth(endMonth);
    HtsPackage input;
    if (status.ok())
        status = plainreader::read(source, input);
    HtsPackage output;
    if (status.ok())
        status = engine.annualizePackage(input, output);
    return status.ok() ? output.write(result) : status;
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    if (argc != 5) {
        std::fprintf(stderr, "usage: plainconvert INPUT RESULT CONTROL MONTH\n");
        return 1;
    }
    QsLogging::Logger::instance().setLoggingLevel(QsLogging::TraceLevel);
    QsLogging::Logger::instance().addDestination(
        QsLogging::DestinationFactory::MakeFunctorDestination(UtilsNS::watcherDestination));

    QFile source(QString::fromLocal8Bit(argv[1]));
    QFile result(QString::fromLocal8Bit(argv[2]));
    if (!source.open(QIODevice::ReadOnly | QIODevice::Text) ||
        !result.open(QIODevice::WriteOnly | QIODevice::Text)) {
        std::fprintf(stderr, "cannot open the files\n");
        return 1;
    }
    const Status status =
        convert(source, result, QString::fromLocal8Bit(argv[3]), std::atoi(argv[4]));
    if (!status.ok())
        std::fprintf(stderr, "%s\n", qPrintable(status.message));
    return status.ok() ? 0 : 1;
}
