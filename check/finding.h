#ifndef CHECK_FINDING_H
#define CHECK_FINDING_H

#include <cstddef>

#include <QString>
#include <QtGlobal>

// What a check can find, and how bad it is.

enum class Severity {
    Note,    // worth knowing
    Warning, // the result of a conversion is probably not what is wanted
    Error,   // a conversion fails, or never ends
};

// The word for a severity in reports: "note", "warning", "error".
const char* severityName(Severity severity);

// The kinds of findings, in the order of kCodes.
enum class Code {
    PackagePreamble,
    RunPreamble,
    TimestepLine,
    SlotPreamble,
    ColumnHeader,
    TableWithoutEnd,
    NoRuns,
    FewerRuns,
    MoreRuns,
    TextAfterLastRun,
    NoObjectType,
    NoObjectName,
    NoSlotName,
    UnknownUnit,
    NearSlotType,
    UnknownSlotType,
    NearKey,
    MisplacedLine,
    IgnoredLine,
    RepeatedKey,
    EndColumn,
    EndSlot,
    EndRun,
    TooFewValues,
    TooManyValues,
    BlankValue,
    MethodLine,
    MethodKey,
    TableRows,
    TableOverrun,
    BadInteger,
    BadDate,
    BadScale,
    OddCharacter,
    NulByte,
    TextValue,
    InfiniteValue,
    Sentinel,
    MissingValues,
    AlreadyAnnual,
    NoCompleteYear,
    StepMissing,
    StepRepeated,
    StepBackwards,
    StepIrregular,
    StartDiffers,
    EarlyStart,
    EndDiffers,
    ShortYear,
    RunTiming,
    RunSteps,
    RunSlots,
    RunSlotCount,
    RunValues,
    RunUnits,
    ControlUnreadable,
    ControlLine,
    RuleEncoding,
    NothingToConvert,
    RuleUnmatched,
    RuleShadowed,
    RuleIdle,
    RuleOnOtherSlot,
    SlotWithoutRule,
    Salinity,
    DottedObject,
};

// One kind of finding. docs/htstool.md has the same table, and a test compares them.
struct CodeInfo
{
    Code code;
    Severity severity;
    // Used in reports and by scripts, so its meaning never changes.
    const char* name;
    const char* meaning;
    const char* advice;
};

constexpr std::size_t kCodeCount = static_cast<std::size_t>(Code::DottedObject) + 1;

extern const CodeInfo kCodes[kCodeCount];

inline const CodeInfo& infoOf(Code code)
{
    return kCodes[static_cast<std::size_t>(code)];
}

// One thing that was found.
struct Finding
{
    // The file to which `line` belongs.
    enum class File { Hts, Control };

    Code code;
    File file;
    qint64 line; // counted from 1
    QString text;

    Severity severity() const { return infoOf(code).severity; }
};

#endif // CHECK_FINDING_H
