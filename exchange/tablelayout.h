#ifndef EXCHANGE_TABLELAYOUT_H
#define EXCHANGE_TABLELAYOUT_H

#include <array>
#include <string_view>
#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "exchange/csvreader.h"
#include "exchange/importoptions.h"
#include "exchange/tabletime.h"
#include "hts/htsslot.h"
#include "hts/status.h"

// How a table is to be read: what it was told, and what its first rows show.
struct TableLayout
{
    CsvReader::Form form;
    int headerLines = 1;
    QStringList names; // of all columns
    // A row for each value, with columns for the slot and the value.
    bool isLong = false;
    // The header is that of an export: times are ends, and rows without a time are single values.
    bool isExport = false;
    std::array<int, kColumnRoles> columns; // the column of each role, -1 for none
    std::vector<int> timeColumns;          // their fields are joined by blanks
    TimePattern pattern;
    TableStep step;
    Stamp stamp = Stamp::End;
    bool hasDecimalComma = false;
    // Of a wide table.
    struct ValueColumn
    {
        int column; // counted from 0, as all columns here
        HtsSlot slot;
    };
    std::vector<ValueColumn> valueColumns;

    int columnOf(ColumnRole role) const { return columns[static_cast<std::size_t>(role)]; }
    // The end of the step with this time; both are instants as in tabletime.h.
    qint64 endOf(qint64 instant) const;
    // What is wrong with a text that `pattern` does not read.
    QString badTimeText(std::string_view text) const;
};

// Finds the layout from the start of a table; `isWhole` is whether that is all of it. Fails if it
// cannot be known; the texts name the option that tells it.
Status findLayout(const QByteArray& start, bool isWhole, const ImportOptions& options,
                  TableLayout& layout);

// Sets `name` to a text that becomes a line of an HTS file. Fails for one that cannot, and for an
// empty one.
Status readName(std::string_view field, QString& name);

// Fails for a row that has not a field for each column; `line` is counted from 1.
Status checkSize(qint64 line, const std::vector<std::string_view>& fields,
                 const QStringList& names);

// A failure with "line 3, column 2 ("Flow"): " and the text, for the column 1 of those counted from
// 0.
Status failureAt(qint64 line, int column, const QStringList& names, const QString& text);

// The fields of the columns, joined by blanks. `buffer` is used if there are several.
std::string_view joinedFields(const std::vector<std::string_view>& fields,
                              const std::vector<int>& columns, std::string& buffer);

#endif // EXCHANGE_TABLELAYOUT_H
