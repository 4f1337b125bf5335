#ifndef HTS_TABLEREADING_H
#define HTS_TABLEREADING_H

// How an HtsReader takes tables.

// Whether the rows of a table are stored in the slot, or dropped.
enum class TableRows { Keep, Skip };

// What happens where the input ends in the search for the end of a table.
enum class MissingTableEnd { SearchForever, StopAtEndOfInput };

#endif // HTS_TABLEREADING_H
