#ifndef CHECK_FINDING_H
#define CHECK_FINDING_H

#include <set>

#include <QString>
#include <QtGlobal>

enum class Severity {
    Note,    // worth knowing
    Warning, // the result of a conversion is probably not what is wanted
    Error,   // a conversion fails, or never ends
};

// The word for a severity in reports: "note", "warning", "error".
const char* severityName(Severity severity);

// What a check can find. Each kind is a constant in the file of its topic, beside the function that
// finds it; the texts for people stand there, and nowhere else.
struct FindingKind
{
    Severity severity;
    // Used in reports and by scripts, so its meaning never changes.
    const char* code;
    const char* meaning;
    const char* advice;
};

using FindingKinds = std::set<const FindingKind*>;

// The kind with that code, or null.
const FindingKind* findFindingKind(const QString& code);
// The kind whose code is the most like the text, or null if it has little in common with any.
const FindingKind* nearestFindingKind(const QString& code);
// All kinds that are that severe or worse.
FindingKinds findingKindsFrom(Severity severity);

// One thing that was found.
struct Finding
{
    const FindingKind* kind;
    qint64 line; // of the file that the list is about, counted from 1
    QString text;

    Severity severity() const { return kind->severity; }
    const char* code() const { return kind->code; }
};

#endif // CHECK_FINDING_H
