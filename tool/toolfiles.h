#ifndef TOOL_TOOLFILES_H
#define TOOL_TOOLFILES_H

#include <QDateTime>
#include <QLatin1String>
#include <QString>

#include "utils/checkedfile.h"

struct ToolIo;

// The path that stands for the standard input or output.
inline const QLatin1String kStandardStream("-");

// An input of a command, whose progress counts what is read.
class InputFile : public UtilsNS::CheckedFile
{
public:
    explicit InputFile(const ToolIo& io) : m_io(io) {}

protected:
    qint64 readData(char* data, qint64 maxSize) override;

private:
    const ToolIo& m_io;
};

// Opens `path`, or the standard input for "-", for reading in the same way as a conversion, but for
// a limit of the lines. Reports a failure to io.errors and returns false.
bool openInput(const QString& path, InputFile& file, const ToolIo& io);
// The same for one of several files that are read at the same time: the progress is that of all.
bool openInputTogether(const QString& path, InputFile& file, const ToolIo& io);

// Flushes and closes a file that was written. Reports a failure to io.errors and returns false.
bool finishOutput(const QString& path, UtilsNS::CheckedFile& file, const ToolIo& io);

// The exit code for a file with a problem().
int exitCodeOf(const UtilsNS::CheckedFile& file);

// The current time in UTC, or that of the variable SOURCE_DATE_EPOCH: outputs that are to be the
// same again must not depend on it.
QDateTime timeOfWriting();

// Writes "htstool: PATH: TEXT" to io.errors.
void reportProblem(const QString& path, const QString& text, const ToolIo& io);

#endif // TOOL_TOOLFILES_H
