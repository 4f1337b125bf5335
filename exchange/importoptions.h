#ifndef EXCHANGE_IMPORTOPTIONS_H
#define EXCHANGE_IMPORTOPTIONS_H

#include <array>
#include <cstddef>
#include <optional>

#include <QDateTime>
#include <QLatin1String>
#include <QString>
#include <QStringList>
#include <QVector>

#include "exchange/tabletime.h"

// What a column of a table holds, other than the values of one slot.
enum class ColumnRole {
    Run,
    Trace,
    Object,
    Slot,
    ObjectType,
    SlotType,
    Units,
    Scale,
    Method,
    Time,
    Begin,
    Year,
    Value,
};
constexpr std::size_t kColumnRoles = 13;
// The header of the column in the tables of an export: "run", "object_type", ...
QLatin1String columnName(ColumnRole role);

// Which instant of a step its time is.
enum class Stamp { Begin, End };

// What a line at the start of a table holds.
enum class HeaderLine { Names, Objects, Units, Skip };

// What an import is told of its table. All that is not told is found in the table, or the import
// fails.
struct ImportOptions
{
    // The separator of the columns; see CsvReader. 0 to find it.
    char separator = 0;
    QString comment = QStringLiteral("#");
    // The first lines, without comments and empty ones. If they have no names, the names of columns
    // are their numbers.
    QVector<HeaderLine> header = {HeaderLine::Names};
    std::optional<bool> hasDecimalComma;
    // What is missing besides empty fields and NaN.
    QStringList missingWords;

    // The columns that make the time, joined by blanks.
    QStringList timeColumns;
    std::optional<TimePattern> timePattern;
    std::optional<Stamp> stamp;
    TableStep step;
    // Whether missing steps become missing values.
    bool isFilled = false;

    // Names of columns by role; empty for those that have the name of their role.
    std::array<QString, kColumnRoles> roleColumns;
    // Columns of values in a wide table, "NAME" or "NAME=Object.Slot [units]"; empty for all that
    // have no role.
    QStringList valueColumns;
    // Of the slots for which the table does not say it.
    QString object;
    QString slot;
    QString units;
    QString objectType = QStringLiteral("Imported");

    QString packageName;
    QDateTime createDate; // in UTC
    // A template for the name of a temporary file; see QTemporaryFile.
    QString temporaryPath;
};

#endif // EXCHANGE_IMPORTOPTIONS_H
