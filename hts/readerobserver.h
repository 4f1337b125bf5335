#ifndef HTS_READEROBSERVER_H
#define HTS_READEROBSERVER_H

#include <string_view>

#include <QLatin1String>

#include "hts/linereader.h"

struct HtsKeyword;
struct HtsSlot;

// Sees the lines of a file and what the format tolerates silently, for programs that report it.
// It is not called for value lines that are plain numbers and for timestep lines, which it
// therefore does not slow down. Lines come without white space at both ends; during a call,
// HtsReader::lineNumber() is the number of the line.
class ReaderObserver : public LineReader::OddLineObserver
{
public:
    // A section that is read by one function.
    enum class Section { PackagePreamble, Run, Slot };

    // The form of a timestep line.
    static inline const QLatin1String kTimestepFormat{"yyyy-M-d h:mm"};

    // Before the first line of a section is read; lineNumber() is the one before it.
    virtual void sectionBegins(Section) {}
    // A line of a preamble that begins with none of its keys.
    virtual void ignoredLine(std::string_view) {}
    // A keyword line of a preamble or a column header; the value is the rest of the line.
    virtual void keywordLine(const HtsKeyword&, std::string_view) {}
    // The preamble of a slot was read, its end line included.
    virtual void slotPreambleRead(const HtsSlot&) {}
    // A line in the place of `expected`: of an end line, a key of a column header, or
    // kTimestepFormat. Reading then fails, unless `expected` is "method: " or "END_RUN": a
    // method line need only begin with the letter m, and an empty line before "END_RUN" ends
    // the run.
    virtual void unexpectedLine(QLatin1String, std::string_view) {}
    // A line with a NUL byte, which ends its text: the bytes from there on are lost. Comes
    // before the call for what is left of the line.
    virtual void cutLine(std::string_view) {}
    // A line in the place of "END_COLUMN", and the next in the place of "END_SLOT"; neither is
    // checked.
    virtual void endLine(QLatin1String, std::string_view) {}
    // A row of a table, counted from 0; then the lines after the rows, before "END_SLOT".
    virtual void tableRow(const HtsSlot&, int, std::string_view) {}
    virtual void lineAfterTable(const HtsSlot&, std::string_view) {}
    void oddValueLine(std::size_t, qint64, std::string_view) override {}
};

#endif // HTS_READEROBSERVER_H
