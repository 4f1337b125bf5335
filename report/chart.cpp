#include "report/chart.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "annualize/aggmethods.h"
#include "check/findinglist.h"
#include "report/axis.h"
#include "report/envelope.h"
#include "report/htmltext.h"
#include "report/numberfield.h"
#include "report/pagemodel.h"
#include "report/svgpath.h"

namespace {

constexpr int kTop = 34; // of the plot
constexpr int kPlotHeight = 180;
constexpr int kScale = 4; // paths have so many units for one of the chart, vertically
constexpr int kHeight = 256;
constexpr int kRight = ChartFrame::kLeft + kChartColumns;

int xOf(double place)
{
    return static_cast<int>(std::lround(place * (kChartColumns - 1)));
}

// The lines of one slot's chart.
class SlotChart
{
public:
    SlotChart(const PageModel& model, const PageSlot& slot, const std::vector<YearBand>& bands);

    QByteArray element() const;

private:
    const Axis& annualAxis() const { return m_hasOwnAxis ? m_annual : m_input; }
    static int yOf(const Axis& axis, double value);

    QByteArray texts() const;
    QByteArray axes() const;
    QByteArray paths() const;
    SvgPath line() const;
    SvgPath steps() const;
    SvgPath doubtfulYears() const;
    SvgPath bandBoxes() const;
    SvgPath bandMedians() const;
    SvgPath missingMarks() const;
    SvgPath sentinelMarks() const;

    const PageModel& m_model;
    const PageSlot& m_slot;
    const std::vector<YearBand>& m_bands;
    // Totals over a year are of another size than what they are totals of.
    const bool m_hasOwnAxis;
    Axis m_input;
    Axis m_annual;
};

SlotChart::SlotChart(const PageModel& model, const PageSlot& slot,
                     const std::vector<YearBand>& bands)
    : m_model(model), m_slot(slot), m_bands(bands),
      m_hasOwnAxis(slot.method != nullptr && slot.method->isTotal)
{
    m_input.include(static_cast<double>(slot.envelope.low()));
    m_input.include(static_cast<double>(slot.envelope.high()));
    Axis& annual = m_hasOwnAxis ? m_annual : m_input;
    for (const PageYear& year : slot.years)
        annual.include(year.value);
    for (const YearBand& band : bands) {
        annual.include(band.minimum);
        annual.include(band.maximum);
    }
    if (m_hasOwnAxis)
        annual.include(0.0);
    for (Axis* axis : {&m_input, &m_annual}) {
        if (!axis->isEmpty())
            axis->round();
    }
}

int SlotChart::yOf(const Axis& axis, double value)
{
    constexpr int kUnits = kPlotHeight * kScale;
    return kUnits - qRound(axis.placeOf(value) * kUnits); // not by a call, as std::lround
}

// What the chart shows, for who does not see it.
QByteArray SlotChart::texts() const
{
    Axis range;
    for (const PageYear& year : m_slot.years)
        range.include(year.value);
    QString text = worded("%1 to %2 as a line", m_model.timesteps.value(0),
                          m_model.timesteps.isEmpty() ? QString() : m_model.timesteps.constLast());
    if (!range.isEmpty())
        text += worded(", with %1 annual values from %2 to %3 as steps", m_slot.years.size(),
                       QString::number(range.low()), QString::number(range.high()));
    text += worded("; %1 values are missing, and %2 may mark missing ones",
                   m_slot.envelope.missingCount(), m_slot.sentinelCount);
    return "<title>" + htmlText(m_slot.name, 100) + "</title><desc>" + htmlText(text) + "</desc>\n";
}

QByteArray SlotChart::axes() const
{
    SvgPath grid;
    QByteArray labels;
    const auto addTicks = [&](const Axis& axis, const char* style, int x) {
        for (const Axis::Tick& tick : axis.ticks()) {
            const int y = kTop + yOf(axis, tick.value) / kScale;
            labels += QByteArray("<text class=\"") + style + "\" x=\"" + QByteArray::number(x) +
                      "\" y=\"" + QByteArray::number(y + 4) + "\">" + tick.label + "</text>";
            if (&axis == &m_input || m_input.isEmpty()) {
                grid.moveTo(ChartFrame::kLeft, y);
                grid.lineTo(kRight, y);
            }
        }
    };
    if (!m_input.isEmpty())
        addTicks(m_input, "e", ChartFrame::kLeft - 6);
    if (!m_annual.isEmpty())
        addTicks(m_annual, "a", kRight + 6);
    constexpr int kMaxUnits = 40;
    labels += "<text x=\"0\" y=\"13\">" + htmlText(m_slot.units, kMaxUnits) + "</text>";
    if (m_hasOwnAxis)
        labels += "<text class=\"a e\" x=\"" + QByteArray::number(ChartFrame::kWidth) +
                  "\" y=\"13\">" + htmlText(m_slot.annualUnits, kMaxUnits) + "</text>";
    return grid.element("g") + labels + '\n';
}

// Each column is drawn from the end that is nearer to where the line is.
SvgPath SlotChart::line() const
{
    SvgPath path;
    int points = 0; // of the stretch at hand
    for (const Envelope::Column& column : m_slot.envelope.columns()) {
        const int at = column.x;
        if (column.isEmpty()) {
            if (column.hasMissing && points == 1)
                path.addDot();
            points = column.hasMissing ? 0 : points;
            continue;
        }
        int next = yOf(m_input, static_cast<double>(column.high));
        int other = yOf(m_input, static_cast<double>(column.low));
        if (points == 0) {
            path.moveTo(at, next);
        } else {
            if (std::abs(other - path.y()) < std::abs(next - path.y()))
                std::swap(next, other);
            path.lineTo(at, next);
        }
        ++points;
        if (other != next) {
            path.lineTo(at, other);
            ++points;
        }
    }
    if (points == 1)
        path.addDot();
    return path;
}

SvgPath SlotChart::steps() const
{
    SvgPath path;
    bool isDrawing = false;
    for (std::size_t i = 0; i < m_slot.years.size() && i < m_model.yearPlaces.size(); ++i) {
        const double value = m_slot.years[i].value;
        const int from = xOf(m_model.yearPlaces[i].from);
        if (!std::isfinite(value)) {
            isDrawing = false;
            continue;
        }
        const int y = yOf(annualAxis(), value);
        if (!isDrawing || from != path.x())
            path.moveTo(from, y);
        else if (y != path.y())
            path.lineTo(from, y);
        path.lineTo(xOf(m_model.yearPlaces[i].to), y);
        isDrawing = true;
    }
    return path;
}

SvgPath SlotChart::doubtfulYears() const
{
    SvgPath path;
    for (std::size_t i = 0; i < m_slot.years.size() && i < m_model.yearPlaces.size(); ++i) {
        const ChartRange& place = m_model.yearPlaces[i];
        if (m_slot.years[i].isDoubtful)
            path.addBox(ChartFrame::kLeft + xOf(place.from), kTop,
                        ChartFrame::kLeft + xOf(place.to), kTop + kPlotHeight);
    }
    return path;
}

SvgPath SlotChart::bandBoxes() const
{
    SvgPath path;
    for (std::size_t i = 0; i < m_bands.size() && i < m_model.yearPlaces.size(); ++i) {
        const ChartRange& place = m_model.yearPlaces[i];
        if (std::isfinite(m_bands[i].median))
            path.addBox(xOf(place.from), yOf(annualAxis(), m_bands[i].maximum), xOf(place.to),
                        yOf(annualAxis(), m_bands[i].minimum));
    }
    return path;
}

SvgPath SlotChart::bandMedians() const
{
    SvgPath path;
    for (std::size_t i = 0; i < m_bands.size() && i < m_model.yearPlaces.size(); ++i) {
        if (!std::isfinite(m_bands[i].median))
            continue;
        const int y = yOf(annualAxis(), m_bands[i].median);
        path.moveTo(xOf(m_model.yearPlaces[i].from), y);
        path.lineTo(xOf(m_model.yearPlaces[i].to), y);
    }
    return path;
}

// Below the plot, as the sentinels are.
SvgPath SlotChart::missingMarks() const
{
    constexpr int kY = kTop + kPlotHeight + 6;
    constexpr int kLeastWidth = 3; // to be seen
    SvgPath path;
    int first = -1; // of the mark at hand, and after its last column
    int end = -1;
    const auto draw = [&] {
        if (end < 0)
            return;
        path.moveTo(ChartFrame::kLeft + first, kY);
        path.lineTo(ChartFrame::kLeft + std::max(end, first + kLeastWidth), kY);
    };
    for (const Envelope::Column& column : m_slot.envelope.columns()) {
        if (!column.hasMissing)
            continue;
        if (column.x != end) {
            draw();
            first = column.x;
        }
        end = column.x + 1;
    }
    draw();
    return path;
}

SvgPath SlotChart::sentinelMarks() const
{
    constexpr int kY = kTop + kPlotHeight + 15;
    constexpr int kHalf = 4;
    SvgPath path;
    int last = -kChartColumns;
    for (const Envelope::Column& column : m_slot.envelope.columns()) {
        const int at = ChartFrame::kLeft + column.x;
        if (!column.hasSentinel || at - last < 2 * kHalf)
            continue;
        last = at;
        path.moveTo(at - kHalf, kY);
        path.lineTo(at, kY - kHalf);
        path.lineTo(at + kHalf, kY);
        path.lineTo(at, kY + kHalf);
    }
    return path;
}

QByteArray SlotChart::paths() const
{
    QByteArray marks = missingMarks().element("missing") + sentinelMarks().element("sentinel");
    return doubtfulYears().element("doubtful") + "<g transform=\"translate(" +
           QByteArray::number(ChartFrame::kLeft) + ' ' + QByteArray::number(kTop) + ") scale(1 ." +
           QByteArray::number(100 / kScale) + ")\">\n" + line().element("input") +
           bandBoxes().element("band") + bandMedians().element("median") +
           steps().element("annual") + "</g>\n" + marks;
}

QByteArray SlotChart::element() const
{
    return "<svg role=\"img\" viewBox=\"0 0 " + QByteArray::number(ChartFrame::kWidth) + ' ' +
           QByteArray::number(kHeight) + "\">\n" + texts() + axes() + paths() +
           yearLabels(m_model, kHeight - 8) + "</svg>\n";
}

} // namespace

QByteArray yearLabels(const PageModel& model, int y)
{
    constexpr int kMaxLabels = 11;
    constexpr int kRoom = 54; // for a label
    const auto count = static_cast<int>(model.labelPlaces.size());
    const int step = labelStep(count, kMaxLabels);
    QByteArray labels;
    int last = -kRoom;
    for (int i = 0; i < count; ++i) {
        const ChartRange& place = model.labelPlaces[static_cast<std::size_t>(i)];
        const int x = xOf((place.from + place.to) / 2.0);
        const int year = model.firstYear + i;
        if (year % step != 0 || x - last < kRoom)
            continue;
        last = x;
        labels += "<text class=\"y\" x=\"" + QByteArray::number(ChartFrame::kLeft + x) + "\" y=\"" +
                  QByteArray::number(y) + "\">" + QByteArray::number(year) + "</text>";
    }
    return labels + '\n';
}

QByteArray slotChart(const PageModel& model, const PageSlot& slot,
                     const std::vector<YearBand>& bands)
{
    return SlotChart(model, slot, bands).element();
}
