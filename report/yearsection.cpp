#include "report/yearsection.h"

#include <algorithm>
#include <cmath>

#include "annualize/months.h"
#include "check/filecheck.h"
#include "report/chart.h"
#include "report/htmltext.h"
#include "report/pagemodel.h"
#include "report/svgpath.h"

namespace {

constexpr int kBarTop = 8;
constexpr int kBarHeight = 26;
constexpr int kHeight = 64;

int xOf(double place)
{
    return ChartFrame::kLeft + static_cast<int>(std::lround(place * kChartColumns));
}

bool isShort(const RunYear& year)
{
    return static_cast<qint64>(year.end - year.first) < year.expected;
}

QByteArray strip(const PageModel& model)
{
    constexpr int kBottom = kBarTop + kBarHeight;
    SvgPath leftOut;
    leftOut.addBox(xOf(0.0), kBarTop, xOf(1.0), kBottom);
    SvgPath complete;
    SvgPath shortYears;
    for (std::size_t i = 0; i < model.yearPlaces.size(); ++i) {
        const ChartRange& place = model.yearPlaces[i];
        SvgPath& path = isShort(model.years[i]) ? shortYears : complete;
        path.addBox(xOf(place.from), kBarTop, xOf(place.to), kBottom);
    }
    SvgPath gaps;
    for (const PageGap& gap : model.gaps)
        gaps.addBox(xOf(gap.place.from), kBottom + 3,
                    std::max(xOf(gap.place.to), xOf(gap.place.from) + 2), kBottom + 7);
    return "<svg role=\"img\" viewBox=\"0 0 " + QByteArray::number(ChartFrame::kWidth) + ' ' +
           QByteArray::number(kHeight) +
           "\">\n<title>The complete years, and what is left out at both ends</title>\n" +
           leftOut.element("leftout") + complete.element("complete") +
           shortYears.element("complete short") + shortYears.element("doubtful") +
           gaps.element("gap") + yearLabels(model, kHeight - 6) + "</svg>\n";
}

QByteArray item(const QString& text)
{
    return "<li>" + htmlText(text) + "</li>\n";
}

QString timesteps(qint64 count)
{
    return worded(count == 1 ? "%1 timestep" : "%1 timesteps", count);
}

QByteArray leftOut(const CheckReport& report, const PageModel& model)
{
    QByteArray html;
    const QStringList& steps = model.timesteps;
    const qint64 atStart = report.years.leftOutAtStart;
    const qint64 atEnd = report.years.leftOutAtEnd;
    if (atStart > 0)
        html += item(worded("Left out at the start: %1, from %2 to %3, because the file does not "
                            "have their year from its beginning.",
                            timesteps(atStart), steps.first(),
                            steps.value(static_cast<int>(atStart) - 1)));
    if (atEnd > 0)
        html += item(worded("Left out at the end: %1, from %2 to %3, because the file ends before "
                            "their year does.",
                            timesteps(atEnd), steps.value(steps.size() - static_cast<int>(atEnd)),
                            steps.last()));
    return html;
}

QByteArray gapsAndShortYears(const PageModel& model)
{
    constexpr qint64 kMaxListed = 20;
    QByteArray html;
    qint64 listed = 0;
    for (const PageGap& gap : model.gaps) {
        if (listed++ < kMaxListed)
            html += item(worded("Gap: %1 missing after %2.", timesteps(gap.missing), gap.after));
    }
    if (model.gapCount > kMaxListed)
        html += item(worded("%1 more gaps.", model.gapCount - kMaxListed));
    listed = 0;
    for (const RunYear& year : model.years) {
        if (isShort(year) && listed++ < kMaxListed)
            html += item(worded("The year %1 counts as complete with %2 of %3 timesteps.",
                                year.name, year.end - year.first, year.expected));
    }
    if (listed > kMaxListed)
        html += item(worded("%1 more such years.", listed - kMaxListed));
    return html;
}

} // namespace

QByteArray yearSection(const CheckReport& report, const PageModel& model, int endMonth)
{
    QByteArray html = "<section id=\"years\">\n<h2>Years</h2>\n";
    const QLatin1String month = kMonthNames.at(static_cast<std::size_t>(endMonth - 1));
    if (report.years.count == 0)
        html += "<p>No complete year that ends with " + htmlText(month) + ".</p>\n";
    else
        html += "<p>" +
                htmlText(worded("%1 complete %2, each ending with %3 and named by the calendar "
                                "year in which it ends: from %4 to %5.",
                                report.years.count, report.years.count == 1 ? "year" : "years",
                                month, model.years.front().name, model.years.back().name)) +
                "</p>\n";
    html += "<figure>" + strip(model) +
            "<figcaption class=\"legend\"><span class=\"k complete\">complete year</span> <span "
            "class=\"k leftout\">left out</span> <span class=\"k doubtful\">lacks timesteps</span> "
            "<span class=\"k gap\">gap</span></figcaption></figure>\n";
    const QByteArray items = leftOut(report, model) + gapsAndShortYears(model);
    if (!items.isEmpty())
        html += "<ul>\n" + items + "</ul>\n";
    return html + "</section>\n";
}
