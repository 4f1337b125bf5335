#include "tool/toolfiles.h"

#include <cstdio>

#include <QStringList>

#include "tool/toolio.h"
#include "utils/checkedfile.h"
#include "utils/fileroles.h"
#include "utils/processsetup.h"

namespace {

const QLatin1String kStandardStream("-");

bool isSameFile(const QString& output, const QString& input)
{
    if (input.isEmpty() || (output == kStandardStream && input == kStandardStream))
        return false;
    if (output == kStandardStream)
        return UtilsNS::isSameFile(input, stdout);
    return input == kStandardStream ? UtilsNS::isSameFile(output, stdin)
                                    : UtilsNS::isSameFile(output, input);
}

} // namespace

void reportProblem(const QString& path, const QString& text, const ToolIo& io)
{
    io.errors.write(QStringLiteral("htstool: %1: %2\n").arg(path, text).toUtf8());
}

bool openInput(const QString& path, UtilsNS::CheckedFile& file, const ToolIo& io)
{
    constexpr auto kMode = QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered;
    file.setFileName(path);
    if (path == kStandardStream)
        UtilsNS::useBinaryMode(stdin);
    const bool isOpen = path == kStandardStream ? file.open(stdin, kMode) : file.open(kMode);
    if (!isOpen)
        reportProblem(path, file.errorString(), io);
    return isOpen;
}

bool openOutput(const QString& path, const QStringList& inputs, UtilsNS::CheckedFile& file,
                const ToolIo& io)
{
    for (const QString& input : inputs) {
        if (isSameFile(path, input)) {
            reportProblem(path, QStringLiteral("this is an input: it is not overwritten"), io);
            return false;
        }
    }
    file.setFileName(path);
    if (path == kStandardStream)
        UtilsNS::useBinaryMode(stdout);
    const bool isOpen = path == kStandardStream ? file.open(stdout, QIODevice::WriteOnly)
                                                : file.open(QIODevice::WriteOnly);
    if (!isOpen)
        reportProblem(path, file.errorString(), io);
    return isOpen;
}

bool finishOutput(const QString& path, UtilsNS::CheckedFile& file, const ToolIo& io)
{
    const Status status = file.finish();
    if (!status.ok())
        reportProblem(path, status.message, io);
    return status.ok();
}
