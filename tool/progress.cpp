#include "tool/progress.h"

#include <algorithm>
#include <utility>

#include <QElapsedTimer>
#include <QFileInfo>

#include "check/findinglist.h"
#include "hts/quotedtext.h"
#include "tool/toolfiles.h"

namespace {

constexpr qint64 kFirstMs = 1000;
constexpr qint64 kIntervalMs = 200;

// The columns that the text takes at most: letters of many scripts take two.
int columnsOf(const QString& text)
{
    int columns = 0;
    for (const QChar character : text)
        columns += character.unicode() < 0x80 ? 1 : 2;
    return columns;
}

// The text with as much of the name's end as fits; a longer line would not be wiped whole.
QString fitted(const QString& text, const QString& name, int columns)
{
    QString end = name;
    QLatin1String mark(", ");
    while (!end.isEmpty() && columnsOf(text + mark + end) > columns) {
        mark = QLatin1String(", ...");
        end.remove(0, 1);
    }
    while (!end.isEmpty() && end.at(0).isLowSurrogate())
        end.remove(0, 1);
    return end.isEmpty() ? text.left(columns) : text + mark + end;
}

} // namespace

Progress::Progress(std::unique_ptr<StatusLine> line, Clock clock)
    : m_line(std::move(line)), m_clock(std::move(clock))
{
}

Progress::~Progress()
{
    wipe();
}

Progress::Clock Progress::steadyClock()
{
    QElapsedTimer timer;
    timer.start();
    return [timer] { return timer.elapsed(); };
}

void Progress::begin(const QStringList& files, int passes)
{
    m_files = files;
    m_passes = passes;
    m_isStopped = m_line == nullptr;
    m_nextTime = m_clock() + kFirstMs;
}

void Progress::beginFile(const QIODevice& device)
{
    m_readBefore += std::exchange(m_read, 0);
    ++m_file;
    if (m_files.value(m_file) == kStandardStream && device.isOpen() && !device.isSequential())
        m_streamSize = device.size();
    m_totalSize = -1;
}

void Progress::addBytes(qint64 count)
{
    m_read += count;
    if (m_isStopped)
        return;
    const qint64 now = m_clock();
    if (now < m_nextTime)
        return;
    m_nextTime = now + kIntervalMs;
    show();
}

// Not before it is needed: a file can be on a slow network.
void Progress::addUpSizes()
{
    m_totalSize = 0;
    for (int i = 0; i < m_files.size(); ++i) {
        const qint64 size = sizeOf(m_files.at(i));
        if (i == m_file)
            m_sizeBefore = m_totalSize;
        if (size < 0) {
            m_totalSize = 0;
            return;
        }
        m_totalSize += size * m_passes;
    }
}

// -1 if it is not known, as that of a pipe.
qint64 Progress::sizeOf(const QString& path) const
{
    if (path == kStandardStream)
        return m_streamSize;
    const QFileInfo file(path);
    if (file.isFile())
        return file.size();
    const bool isRead = file.exists() && !file.isDir();
    return isRead ? -1 : 0;
}

QString Progress::amount() const
{
    constexpr qint64 kMiB = qint64(1024) * 1024;
    constexpr qint64 kAll = 100;
    if (m_totalSize == 0)
        return worded("htstool: %1 MiB", (m_readBefore + m_read) / kMiB);
    // A file may grow while it is read.
    return worded("htstool: %1 %", std::min(kAll * (m_sizeBefore + m_read) / m_totalSize, kAll));
}

void Progress::show()
{
    if (m_totalSize < 0)
        addUpSizes();
    const QString name = m_files.size() > 1 ? shown(m_files.value(m_file)) : QString();
    m_line->show(fitted(amount(), name, m_line->columns() - 1));
    m_isShown = true;
}

void Progress::wipe()
{
    if (std::exchange(m_isShown, false))
        m_line->wipe();
}

void Progress::stop()
{
    wipe();
    m_isStopped = true;
}

WipingDevice::WipingDevice(QIODevice& device, Progress& progress)
    : m_device(device), m_progress(progress)
{
    open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

qint64 WipingDevice::readData(char* /*data*/, qint64 /*maxSize*/)
{
    return -1;
}

qint64 WipingDevice::writeData(const char* data, qint64 size)
{
    m_progress.wipe();
    return m_device.write(data, size);
}
