#ifndef TOOL_INPUTFILE_H
#define TOOL_INPUTFILE_H

#include <QString>
#include <QStringList>

namespace UtilsNS {
class CheckedFile;
}
struct ToolIo;

// Opens `path` for reading as a conversion does, or the standard input for "-". Reports a failure
// to `io` and returns false.
bool openInput(const QString& path, UtilsNS::CheckedFile& file, const ToolIo& io);

// Opens `path` for writing, unless it is one of `inputs`, or the standard output for "-". Reports a
// failure to `io` and returns false.
bool openOutput(const QString& path, const QStringList& inputs, UtilsNS::CheckedFile& file,
                const ToolIo& io);

// Finishes a file that was written. Reports a failure to `io` and returns false.
bool finishOutput(const QString& path, UtilsNS::CheckedFile& file, const ToolIo& io);

// Writes "htstool: PATH: TEXT" to the errors.
void reportProblem(const QString& path, const QString& text, const ToolIo& io);

#endif // TOOL_INPUTFILE_H
