#include "tool/toolfiles.h"

#include <cstdio>

#include "hts/quotedtext.h"
#include "tool/progress.h"
#include "tool/toolio.h"
#include "utils/processsetup.h"

namespace {

bool openFile(const QString& path, InputFile& file)
{
    constexpr auto kMode = QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered;
    file.setFileName(path);
    file.limitLines();
    if (path == kStandardStream)
        UtilsNS::useBinaryMode(stdin);
    return path == kStandardStream ? file.openStream(stdin, kMode) : file.open(kMode);
}

bool reportUnlessOpen(bool isOpen, const QString& path, const InputFile& file, const ToolIo& io)
{
    if (!isOpen)
        reportProblem(path, file.errorString(), io);
    return isOpen;
}

} // namespace

void reportProblem(const QString& path, const QString& text, const ToolIo& io)
{
    io.errors.write(QStringLiteral("htstool: %1: %2\n").arg(shown(path), shown(text)).toUtf8());
}

QDateTime timeOfWriting()
{
    bool isSet = false;
    const qint64 seconds = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&isSet);
    return isSet ? QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC)
                 : QDateTime::currentDateTimeUtc();
}

qint64 InputFile::readData(char* data, qint64 maxSize)
{
    const qint64 count = CheckedFile::readData(data, maxSize);
    if (m_io.progress != nullptr && count > 0)
        m_io.progress->addBytes(count);
    return count;
}

bool openInput(const QString& path, InputFile& file, const ToolIo& io)
{
    const bool isOpen = openFile(path, file);
    if (io.progress != nullptr)
        io.progress->beginFile(file);
    return reportUnlessOpen(isOpen, path, file, io);
}

bool openInputTogether(const QString& path, InputFile& file, const ToolIo& io)
{
    return reportUnlessOpen(openFile(path, file), path, file, io);
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
