#include "tool/toolfiles.h"

#include <cstdio>

#include "hts/quotedtext.h"
#include "tool/toolio.h"
#include "utils/checkedfile.h"
#include "utils/processsetup.h"

void reportProblem(const QString& path, const QString& text, const ToolIo& io)
{
    io.errors.write(QStringLiteral("htstool: %1: %2\n").arg(shown(path), shown(text)).toUtf8());
}

bool openInput(const QString& path, UtilsNS::CheckedFile& file, const ToolIo& io)
{
    constexpr auto kMode = QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered;
    file.setFileName(path);
    file.limitLines();
    if (path == kStandardStream)
        UtilsNS::useBinaryMode(stdin);
    const bool isOpen = path == kStandardStream ? file.openStream(stdin, kMode) : file.open(kMode);
    if (!isOpen)
        reportProblem(path, file.errorString(), io);
    return isOpen;
}

int exitCodeOf(const UtilsNS::CheckedFile& file)
{
    return file.hasLongLine() ? ExitCode::kErrors : ExitCode::kUnusable;
}

bool finishOutput(const QString& path, UtilsNS::CheckedFile& file, const ToolIo& io)
{
    const Status status = file.finish();
    if (!status.ok())
        reportProblem(path, status.message, io);
    return status.ok();
}
