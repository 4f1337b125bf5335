#ifndef TOOL_TOOLFILES_H
#define TOOL_TOOLFILES_H

#include <QString>
#include <QStringList>

namespace UtilsNS {
class CheckedFile;
}
struct ToolIo;

// Opens `path`, or the standard input for "-", for reading in the same way as a conversion. Reports
// a failure to io.errors and returns false.
bool openInput(const QString& path, UtilsNS::CheckedFile& file, const ToolIo& io);

// Opens `path`, or the standard output for "-", for writing; fails if it is one of `inputs`.
// Reports a failure to io.errors and returns false.
bool openOutput(const QString& path, const QStringList& inputs, UtilsNS::CheckedFile& file,
                const ToolIo& io);

// Flushes and closes a file that was written. Reports a failure to io.errors and returns false.
bool finishOutput(const QString& path, UtilsNS::CheckedFile& file, const ToolIo& io);

// Writes "htstool: PATH: TEXT" to io.errors.
void reportProblem(const QString& path, const QString& text, const ToolIo& io);

#endif // TOOL_TOOLFILES_H
