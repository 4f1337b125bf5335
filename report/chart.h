#ifndef REPORT_CHART_H
#define REPORT_CHART_H

#include <vector>

#include <QByteArray>

#include "report/yearband.h"

struct PageModel;
struct PageSlot;

// All charts have the same width, and their plots the same place in it, so that years are above
// each other on the page. In units of SVG.
struct ChartFrame
{
    static constexpr int kLeft = 70; // of the plot
    static constexpr int kWidth = 790;
};

// The labels of years along a chart, as text elements at that height.
QByteArray yearLabels(const PageModel& model, int y);

// The chart of a slot as an SVG element: its values as a line, the annual values as steps over it,
// those of other runs as a band, and marks for what is missing or doubtful.
QByteArray slotChart(const PageModel& model, const PageSlot& slot,
                     const std::vector<YearBand>& bands);

#endif // REPORT_CHART_H
