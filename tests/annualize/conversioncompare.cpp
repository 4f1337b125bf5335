#include "tests/annualize/conversioncompare.h"

#include <functional>

#include <QBuffer>

#include "annualize/annualizehts.h"
#include "tests/plain/plainconversion.h"
#include "tests/support/logcollector.h"

const char kAlreadyAnnual[] = "Source HTS File already in annual timestep";
const char kNoCompleteYear[] = "Cannot create a complete year from the input HTS file";
const char kNoSlots[] = "No series slots with valid methods found in input HTS file";
const char kUnequalSizes[] = "Sizes of input value and value map vectors are mismatched";

namespace {

ConversionOutcome outcomeOf(QIODevice& source, const std::function<Status(QIODevice& result)>& run)
{
    ConversionOutcome outcome;
    QBuffer result(&outcome.written);
    result.open(QIODevice::WriteOnly);
    const LogCollector log;
    outcome.status = run(result);
    outcome.logLines = log.lines();
    outcome.logLevels = log.levels();
    outcome.position = source.pos();
    outcome.isTextMode = source.isTextModeEnabled();
    source.setTextModeEnabled(false);
    outcome.rest = source.readAll();
    return outcome;
}

QString unequal(const char* what, const QString& actual, const QString& expected)
{
    if (actual == expected)
        return {};
    return QStringLiteral("%1: \"%2\" instead of \"%3\"")
        .arg(QString::fromLatin1(what), actual, expected);
}

QString logDifference(const QStringList& actual, const QStringList& expected)
{
    for (int i = 0; i < qMax(actual.size(), expected.size()); ++i) {
        const QString what = QStringLiteral("log line %1").arg(i);
        const QString fault = unequal(qPrintable(what), actual.value(i, QStringLiteral("(none)")),
                                      expected.value(i, QStringLiteral("(none)")));
        if (!fault.isEmpty())
            return fault;
    }
    return {};
}

} // namespace

Status convertDevices(QIODevice& source, const QString& controlPath, QIODevice& result,
                      int endMonth)
{
    AnnualizeHts engine;
    if (!engine.setSourceDevice(&source).ok() || !engine.setResultDevice(&result).ok() ||
        !engine.setControlFile(controlPath).ok() || !engine.setEndMonth(endMonth).ok())
        qFatal("cannot set up the engine");
    return engine.annualize();
}

ConversionOutcome convertInOnePass(QIODevice& source, const QString& controlPath, int endMonth)
{
    return outcomeOf(source, [&](QIODevice& result) {
        return convertDevices(source, controlPath, result, endMonth);
    });
}

ConversionOutcome convertPlainly(QIODevice& source, const QString& controlPath, int endMonth)
{
    return outcomeOf(source, [&](QIODevice& result) {
        return plainconversion::convert(source, controlPath, endMonth, result);
    });
}

QString difference(const ConversionOutcome& actual, const ConversionOutcome& expected)
{
    QString fault = unequal("message", actual.status.message, expected.status.message);
    if (fault.isEmpty() && actual.status.flag != expected.status.flag)
        fault = QStringLiteral("the flag of the status");
    if (fault.isEmpty())
        fault = logDifference(actual.logLines, expected.logLines);
    if (fault.isEmpty() && actual.logLevels != expected.logLevels)
        fault = QStringLiteral("the level of a log line");
    if (fault.isEmpty())
        fault = unequal("result", QString::fromLatin1(actual.written),
                        QString::fromLatin1(expected.written));
    if (fault.isEmpty())
        fault = unequal("position", QString::number(actual.position),
                        QString::number(expected.position));
    if (fault.isEmpty())
        fault = unequal("what is left", QString::fromLatin1(actual.rest),
                        QString::fromLatin1(expected.rest));
    if (fault.isEmpty() && actual.isTextMode != expected.isTextMode)
        fault = QStringLiteral("text mode has changed");
    return fault;
}
