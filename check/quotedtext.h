#ifndef CHECK_QUOTEDTEXT_H
#define CHECK_QUOTEDTEXT_H

#include <string_view>

#include <QString>

// How reports show texts that come from files, names of files and arguments. Characters that are
// invisible, would break the line or change a terminal are shown as \t or \u0007.
QString shown(const QString& text);
// The name "Object.Slot" of a slot.
QString shownSlot(const QString& objectName, const QString& slotName);

// The same in double quotes, and cut after 60 characters.
QString quoted(const QString& text);
QString quoted(std::string_view bytes);

// The end of a finding's text that says how a conversion of the file fails: "; a conversion fails:
// "Cannot read run preamble"".
QString conversionFails(const QString& message);

#endif // CHECK_QUOTEDTEXT_H
