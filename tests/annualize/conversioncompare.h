#ifndef TESTS_ANNUALIZE_CONVERSIONCOMPARE_H
#define TESTS_ANNUALIZE_CONVERSIONCOMPARE_H

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include "QsLogLevel.h"
#include "hts/status.h"

class QIODevice;

// What the engine says of a file that it refuses.
extern const char kAlreadyAnnual[];
extern const char kNoCompleteYear[];
extern const char kNoSlots[];
extern const char kUnequalSizes[];

// Converts what is left in `source` to `result`, both open.
Status convertDevices(QIODevice& source, const QString& controlPath, QIODevice& result,
                      int endMonth = 12);

// All that can be seen of one conversion.
struct ConversionOutcome
{
    Status status;
    QStringList logLines;
    QVector<QsLogging::Level> logLevels; // one for each line
    QByteArray written;
    // The source afterwards: where it is, in which mode, and the bytes that are left in it.
    qint64 position = 0;
    bool isTextMode = false;
    QByteArray rest;
};

// Converts what is left in `source`, an open device, with the product's engine.
ConversionOutcome convertInOnePass(QIODevice& source, const QString& controlPath, int endMonth);

// The same with the plain conversion of tests/plain/. Its reader looks eight bytes ahead, so the
// device must have that many in one piece.
ConversionOutcome convertPlainly(QIODevice& source, const QString& controlPath, int endMonth);

// Where two conversions differ first; empty when they are the same.
QString difference(const ConversionOutcome& actual, const ConversionOutcome& expected);

#endif // TESTS_ANNUALIZE_CONVERSIONCOMPARE_H
