#ifndef ANNUALIZE_ANNUALIZEHTS_H
#define ANNUALIZE_ANNUALIZEHTS_H

#include <QString>
#include <QStringList>
#include <QVector>

#include "annualize/completeyears.h"
#include "hts/htspackage.h"
#include "hts/status.h"

class QIODevice;

// The engine of both front ends: converts an HTS file into one with a yearly timestep.
//
//     AnnualizeHts engine;                                   // each call returns a Status
//     engine.setSourceDevice(&source);                       // open for reading
//     engine.setControlFile(QStringLiteral("methods.txt"));
//     engine.setResultDevice(&result);                       // open for writing
//     engine.setEndMonth(9);                                 // water years
//     const Status status = engine.annualize();
//
// It opens and closes no device but the control file, keeps nothing but its settings from one
// conversion to the next, and logs what it does at Info level; failures are returned, not logged.
// Not safe to use from two threads at once.
class AnnualizeHts
{
public:
    using ValueMap = ::ValueMap; // see completeyears.h

    AnnualizeHts() = default;
    virtual ~AnnualizeHts();
    AnnualizeHts(const AnnualizeHts&) = delete;
    AnnualizeHts& operator=(const AnnualizeHts&) = delete;

    // The settings. A refused value leaves the old one unchanged. The devices are not owned and
    // must stay open while annualize() runs.
    Status setSourceDevice(QIODevice* device);
    Status setResultDevice(QIODevice* device);
    // Path of the method control file, environment references already substituted; not empty.
    Status setControlFile(const QString& path);
    // Month that each year ends with, 1 to 12.
    Status setEndMonth(int month);

    // Runs one conversion, in one pass: reads the source to the end of its last run and, when
    // nothing failed, writes the result. Blocks until it is done. Memory grows with the result, the
    // slots and timesteps of one run and the rules, not with the source. Memory that runs out is a
    // failure too.
    Status annualize();

    // Two steps of a conversion, for other users of the engine; annualize() takes the same steps,
    // but logs them only after the source has been read.

    // Finds the complete years of `inputRun`. Appends a number for each of its timesteps to
    // `valueMap`, which should be empty, and sets the timing of `annualRun` to one timestep for
    // each complete year; its `trace` and `complete` stay unchanged. Fails for an input that is
    // annual already, for a list of timesteps shorter than their number, and when there is no
    // complete year, or the start or a timestep that the search reaches is not a date-time.
    // `annualRun` is then unchanged and `valueMap` may be partly filled.
    Status calculateAnnualTimesteps(const HtsRun& inputRun, ValueMap& valueMap,
                                    HtsRun& annualRun) const;

    // Reads the control file and sets `methods` to one method word for each slot, empty for a slot
    // that no rule matches. Fails with the file's error text or the message for a bad line;
    // `methods` is then unchanged.
    Status assignMethods(const QVector<HtsSlot>& slots, QStringList& methods) const;

private:
    Status convert() const;

    QIODevice* m_source = nullptr;
    QIODevice* m_result = nullptr;
    QString m_controlFile;
    int m_endMonth = 0;
};

#endif // ANNUALIZE_ANNUALIZEHTS_H
