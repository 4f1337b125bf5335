// Measures the overhead of the message viewer: the time from the first of 100,000 lines until the
// event loop has nothing left to do, divided by the time that a bare QTreeWidget takes to append
// the same rows. Prints a table row with the ratio of the medians of alternating runs for each
// case, with a hidden and a shown window.
//
// usage: bench_viewer [RUNS [LINES]]

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include <QApplication>
#include <QElapsedTimer>
#include <QMetaType>
#include <QStringList>
#include <QTreeWidget>
#include <QVector>

#include "QsLogLevel.h"
#include "gui/messageviewer.h"
#include "utils/messagewatcher.h"

namespace {

int lineCount = 100'000;
int runCount = 7;

QStringList makeLines(const QString& objectType)
{
    QStringList lines;
    lines.reserve(lineCount);
    for (int i = 0; i < lineCount; ++i) {
        lines.append(QStringLiteral("INFO  Slot %1 %2.Outflow is aggregated with Average ")
                         .arg(objectType, QString::number(i)));
    }
    return lines;
}

// Level of line `i`, so that all colours occur.
QsLogging::Level levelOf(int i)
{
    return static_cast<QsLogging::Level>(QsLogging::InfoLevel + i % 3);
}

// Until no event is left, timers that are due included.
void drainEvents()
{
    for (int i = 0; i < 10; ++i)
        QApplication::processEvents();
}

double elapsedMs(const std::function<void()>& action)
{
    QElapsedTimer timer;
    timer.start();
    action();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

// How lines reach a list: appends all of `lines` through `append`.
using Feed = std::function<void(const std::function<void(int)>& append)>;

void feedAtOnce(const std::function<void(int)>& append)
{
    for (int i = 0; i < lineCount; ++i)
        append(i);
}

// The event loop runs now and then, as in a program that keeps its window responsive.
void feedInPieces(const std::function<void(int)>& append)
{
    for (int i = 0; i < lineCount; ++i) {
        append(i);
        if (i % 1000 == 0)
            QApplication::processEvents();
    }
}

double bareMs(const Feed& feed, const QStringList& lines, bool isShown)
{
    static const QBrush kBrushes[] = {QBrush(Qt::black), QBrush(Qt::darkYellow),
                                      QBrush(Qt::darkRed)};
    QTreeWidget tree;
    tree.setColumnCount(1);
    tree.resize(600, 300);
    tree.setVisible(isShown);
    drainEvents();
    return elapsedMs([&] {
        feed([&](int i) {
            auto* item = new QTreeWidgetItem;
            item->setText(0, lines.at(i));
            item->setForeground(0, kBrushes[i % 3]);
            tree.addTopLevelItem(item);
        });
        drainEvents();
    });
}

enum class Way { Slot, QueuedSignal };

double viewerMs(Way way, const Feed& feed, const QStringList& lines, bool isShown)
{
    UtilsNS::MessageViewer viewer({QStringLiteral("Diagnostic Messages")}, nullptr);
    viewer.connectWatcher();
    viewer.setVisible(isShown);
    drainEvents();
    return elapsedMs([&] {
        feed([&](int i) {
            if (way == Way::Slot)
                viewer.messageHandler(levelOf(i), lines.at(i));
            else
                Q_EMIT UtilsNS::messageWatcher.message(levelOf(i), lines.at(i));
        });
        drainEvents();
    });
}

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

struct Case
{
    const char* name;
    const char* objectType; // UTF-8, in all lines
    Way way;
    Feed feed;
};

void report(const Case& measured, bool isShown)
{
    const QStringList lines = makeLines(QString::fromUtf8(measured.objectType));
    QVector<double> bare;
    QVector<double> viewer;
    for (int run = 0; run < runCount; ++run) {
        bare.append(bareMs(measured.feed, lines, isShown));
        viewer.append(viewerMs(measured.way, measured.feed, lines, isShown));
    }
    const double bareMedian = median(bare);
    const double viewerMedian = median(viewer);
    std::printf(
        "| diagnostics, %d lines by %s, %s: viewer / bare tree | %.2f | <= 3 | viewer %.0f ms |\n",
        lineCount, measured.name, isShown ? "shown" : "hidden", viewerMedian / bareMedian,
        viewerMedian);
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    if (argc > 1)
        runCount = std::max(std::atoi(argv[1]), 1);
    if (argc > 2)
        lineCount = std::max(std::atoi(argv[2]), 1);
    qRegisterMetaType<QsLogging::Level>("QsLogging::Level");
    const char* const latin = "Reservoir";
    const Case cases[] = {{"slot", latin, Way::Slot, feedAtOnce},
                          {"slot, Cyrillic", "Водохранилище", Way::Slot, feedAtOnce},
                          {"slot, Arabic", "\u062e\u0632\u0627\u0646", Way::Slot, feedAtOnce},
                          {"slot in pieces", latin, Way::Slot, feedInPieces},
                          {"signal", latin, Way::QueuedSignal, feedAtOnce},
                          {"signal in pieces", latin, Way::QueuedSignal, feedInPieces}};
    for (const bool isShown : {false, true}) {
        for (const Case& measured : cases)
            report(measured, isShown);
    }
    return 0;
}
