#ifndef EXCHANGE_CSVIMPORT_H
#define EXCHANGE_CSVIMPORT_H

#include <memory>

#include <QStringList>

#include "exchange/importoptions.h"
#include "hts/status.h"

class QIODevice;

// Makes an HTS file of a table of separated values: the inverse of exportCsv(), for tables of
// others, too. See docs/import.md for what tables may be like.
//
//     CsvImport import(options);
//     Status status = import.read(source);
//     if (status.ok())
//         status = import.write(target);
//
// The table is read once and may be a pipe. Memory grows with the runs and slots, not with their
// values: those that are many are in a temporary file.
class CsvImport
{
public:
    explicit CsvImport(const ImportOptions& options);
    ~CsvImport();
    CsvImport(const CsvImport&) = delete;
    CsvImport& operator=(const CsvImport&) = delete;

    // Reads the whole table. Fails for what is no table, or where something is not known that only
    // options can say, and for the first value, time or name that is wrong: "line 3, column 2
    // ("Flow"): ...". Fails at the end if steps are missing; see missingSteps().
    Status read(QIODevice& source);
    // What was understood of the table, a line each; as far as read() came.
    QStringList summary() const;
    // The first places where steps are missing and were not filled.
    QStringList missingSteps() const;
    // Whether a failure is one of the temporary file, and not of the table.
    bool hasFileFailed() const;
    // Writes the HTS file, after read() succeeded. Fails if the temporary file cannot be read.
    // Whoever opened the target checks its error afterwards.
    Status write(QIODevice& target);

private:
    class Private;
    const std::unique_ptr<Private> m_data;
};

#endif // EXCHANGE_CSVIMPORT_H
