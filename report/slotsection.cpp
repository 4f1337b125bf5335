#include "report/slotsection.h"

#include <algorithm>
#include <cmath>

#include <QLocale>

#include "annualize/aggmethods.h"
#include "check/filecheck.h"
#include "hts/htsslot.h"
#include "report/chart.h"
#include "report/htmltext.h"
#include "report/numberfield.h"
#include "report/pagemodel.h"
#include "report/pagetext.h"

namespace {

// The start of a cell with a number; of one that is to be looked at.
const char* numberCell(bool isFlagged)
{
    return isFlagged ? "<td class=\"n f\">" : "<td class=\"n\">";
}

QByteArray link(int number, const QString& name)
{
    return "<a href=\"#s" + QByteArray::number(number) + "\">" + htmlName(name) + "</a>";
}

QByteArray flaggedNumber(qint64 count)
{
    return numberCell(count > 0) + QByteArray::number(count) + "</td>";
}

QByteArray listRow(const PageSlot& slot, int number)
{
    const auto doubtful = std::count_if(slot.years.begin(), slot.years.end(),
                                        [](const PageYear& year) { return year.isDoubtful; });
    return "<tr><th scope=\"row\">" + link(number, slot.name) + "</th><td>" +
           htmlText(slot.method->word) + "</td>" + flaggedNumber(doubtful) +
           flaggedNumber(slot.envelope.missingCount()) + flaggedNumber(slot.sentinelCount) +
           "</tr>\n";
}

QByteArray leftOutSlots(const CheckReport& report)
{
    constexpr int kMaxListed = 40;
    QByteArray items;
    int count = 0;
    for (const PlannedSlot& slot : report.slotPlan) {
        if (slot.isConverted || count++ >= kMaxListed)
            continue;
        const char* reason = !slot.isSeries           ? "not a series"
                             : slot.method == nullptr ? "no rule"
                                                      : "its method is not supported";
        items += "<li>" + htmlName(fullSlotName(slot.objectName, slot.slotName)) + ": " + reason +
                 "</li>\n";
    }
    if (count > kMaxListed)
        items += "<li>" + QByteArray::number(count - kMaxListed) + " more</li>\n";
    return items.isEmpty() ? items : "<h3>Left out</h3>\n<ul>\n" + items + "</ul>\n";
}

QByteArray notShown(qint64 count, const char* why)
{
    return count == 0
               ? QByteArray()
               : "<p class=\"rest\">" + QByteArray::number(count) +
                     (count == 1 ? " slot that is converted is" : " slots that are converted are") +
                     " not shown: " + why + "</p>\n";
}

QByteArray about(const PageSlot& slot)
{
    constexpr int kMaxUnits = 40;
    QByteArray html = "<p class=\"about\"><b>" + htmlText(slot.method->word) + "</b>, by line " +
                      QByteArray::number(slot.ruleLine) + " of the methods; " +
                      htmlText(slot.units, kMaxUnits);
    if (slot.annualUnits != slot.units)
        html += " to " + htmlText(slot.annualUnits, 2 * kMaxUnits);
    html += ", scale " + QByteArray::number(slot.scale, 'g', QLocale::FloatingPointShortest) +
            "; lines " + QByteArray::number(slot.firstLine) + " to " +
            QByteArray::number(slot.lastLine);
    if (!slot.objectType.isEmpty())
        html += "; of type " + htmlText(slot.objectType, kMaxUnits);
    html += "</p>\n";
    if (slot.envelope.missingCount() > 0)
        html += "<p class=\"note\">" + QByteArray::number(slot.envelope.missingCount()) +
                " values are missing.</p>\n";
    if (!slot.sentinels.isEmpty())
        html +=
            "<p class=\"note\">" + QByteArray::number(slot.sentinelCount) +
            " values may mark missing ones: " + htmlText(slot.sentinels.join(QLatin1String(", "))) +
            "</p>\n";
    return html;
}

QLatin1String textOfStep(const PageModel& model, qint32 step)
{
    return step < 0 ? QLatin1String("") : model.stepTexts.at(step);
}

void addYear(PageText& html, const PageModel& model, const RunYear& ofRun, const PageYear& year)
{
    html.add("<tr><th scope=\"row\">", ofRun.name, "</th>",
             numberCell(!std::isfinite(year.value) || year.hasSentinels), numberField(year.value),
             "</td>", numberCell(year.isDoubtful), year.present, " of ", ofRun.expected, "</td>",
             numberCell(year.isDoubtful && year.longestGap > 0), year.longestGap, "</td><td>",
             textOfStep(model, year.maximum), "</td><td>", textOfStep(model, year.minimum),
             "</td>");
}

void addYearTable(PageText& html, const PageModel& model, const PageSlot& slot,
                  const std::vector<YearBand>& bands)
{
    if (slot.years.empty()) {
        html.add("<p>No annual values.</p>\n");
        return;
    }
    html.add("<div class=\"wide\"><table>\n<thead><tr><th scope=\"col\">Year</th><th class=\"n\" "
             "scope=\"col\">",
             htmlText(slot.method->word),
             "</th><th class=\"n\" scope=\"col\">Values</th><th class=\"n\" scope=\"col\">Longest "
             "gap</th><th scope=\"col\">Maximum at</th><th scope=\"col\">Minimum at</th>");
    if (!bands.empty())
        html.add("<th class=\"n\" scope=\"col\">Other runs: smallest</th><th class=\"n\" "
                 "scope=\"col\">median</th><th class=\"n\" scope=\"col\">largest</th>");
    html.add("</tr></thead>\n<tbody>\n");
    for (std::size_t i = 0; i < slot.years.size(); ++i) {
        addYear(html, model, model.years[i], slot.years[i]);
        if (!bands.empty()) {
            for (const double value : {bands[i].minimum, bands[i].median, bands[i].maximum})
                html.add(numberCell(false), numberField(value), "</td>");
        }
        html.add("</tr>\n");
    }
    html.add("</tbody></table></div>\n");
}

} // namespace

QByteArray slotList(const CheckReport& report, const PageModel& model)
{
    QByteArray html = "<section id=\"slots\">\n<h2>Slots</h2>\n";
    if (!model.slots.empty()) {
        html +=
            "<div class=\"wide\"><table>\n<thead><tr><th scope=\"col\">Slot</th><th "
            "scope=\"col\">Method</th><th class=\"n\" scope=\"col\">Years that lack values</th><th "
            "class=\"n\" scope=\"col\">Missing values</th><th class=\"n\" scope=\"col\">Perhaps "
            "missing</th></tr>"
            "</thead>\n<tbody>\n";
        int number = 0;
        for (const PageSlot& slot : model.slots)
            html += listRow(slot, ++number);
        html += "</tbody></table></div>\n";
    }
    html += notShown(model.slotsBeyondLimit,
                     "<code>--all-slots</code> shows all, <code>--slots</code> those of a name.");
    html += notShown(model.slotsNotAskedFor, "<code>--slots</code> asks for others.");
    return html + leftOutSlots(report) + "</section>\n";
}

QByteArray slotSection(const PageModel& model, const PageSlot& slot, int number)
{
    const std::vector<YearBand> bands = bandOf(slot);
    PageText html;
    html.add("<section class=\"slot\" id=\"s", number, "\">\n<h2>", htmlName(slot.name), "</h2>\n",
             about(slot), "<figure>", slotChart(model, slot, bands), "</figure>\n");
    addYearTable(html, model, slot, bands);
    html.add("</section>\n");
    return html.bytes();
}
