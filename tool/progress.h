#ifndef TOOL_PROGRESS_H
#define TOOL_PROGRESS_H

#include <functional>
#include <memory>

#include <QIODevice>
#include <QString>
#include <QStringList>

#include "tool/terminal.h"

// Shows on a terminal, after a second, how far a command is with its files: the percentage of all
// bytes, or how many MiB it has read where there is a file without a size; and the name of the file
// if there are several.
class Progress
{
public:
    // Milliseconds from any fixed instant.
    using Clock = std::function<qint64()>;

    // Shows nothing if `line` is null.
    explicit Progress(std::unique_ptr<StatusLine> line, Clock clock = steadyClock());
    ~Progress();
    Q_DISABLE_COPY(Progress)

    static Clock steadyClock();

    // The command begins, with these files, one after another; or, without a call of beginFile(),
    // with all of them at the same time, each of which is read `passes` times.
    void begin(const QStringList& files, int passes = 1);
    // The next file is open, or could not be opened.
    void beginFile(const QIODevice& device);
    // So many bytes more of the file at hand. Reads the clock: call it for large blocks.
    void addBytes(qint64 count);
    // To be called before anything else is written to a terminal.
    void wipe();
    // Nothing is shown from now on, because something else writes to a terminal by itself.
    void stop();

private:
    void show();
    void addUpSizes();
    qint64 sizeOf(const QString& path) const;
    QString amount() const;

    const std::unique_ptr<StatusLine> m_line;
    const Clock m_clock;
    QStringList m_files;
    int m_passes = 1;
    int m_file = -1;          // the index of the one at hand
    qint64 m_streamSize = -1; // of the standard input; -1 while it is not known
    qint64 m_totalSize = -1;  // of all passes, 0 if it is not known; -1 before it is added up
    qint64 m_sizeBefore = 0;  // of the files before the one at hand
    qint64 m_readBefore = 0;  // bytes of the files before
    qint64 m_read = 0;        // bytes of the file at hand
    qint64 m_nextTime = 0;    // when it is shown again
    bool m_isShown = false;
    bool m_isStopped = true;
};

// Passes on what is written, after it has wiped the progress.
class WipingDevice : public QIODevice
{
public:
    WipingDevice(QIODevice& device, Progress& progress);

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    QIODevice& m_device;
    Progress& m_progress;
};

#endif // TOOL_PROGRESS_H
