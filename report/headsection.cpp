#include "report/headsection.h"

#include <algorithm>

#include <QFileInfo>

#include "check/filecheck.h"
#include "report/htmltext.h"
#include "report/page.h"
#include "report/pagemodel.h"

namespace {

QByteArray verdict(const CheckReport& report)
{
    if (report.neverEnds)
        return "<p class=\"verdict bad\"><span aria-hidden=\"true\">&#10008;</span> A conversion "
               "never ends</p>\n";
    if (!report.conversionMessage.isEmpty())
        return "<p class=\"verdict bad\"><span aria-hidden=\"true\">&#10008;</span> Does not "
               "convert: " +
               htmlText(report.conversionMessage) + "</p>\n";
    return "<p class=\"verdict good\"><span aria-hidden=\"true\">&#10004;</span> Converts</p>\n";
}

QByteArray fact(const char* name, const QString& value, const QString& more = {})
{
    return QByteArray("<li><span>") + name + "</span> " + htmlText(value) +
           (more.isEmpty() ? QByteArray() : " <small>" + htmlText(more) + "</small>") + "</li>\n";
}

QByteArray yearsFact(const CheckReport& report, const PageModel& model)
{
    if (report.years.count == 0 || model.years.empty())
        return fact("Years", QStringLiteral("none"));
    const QString first = QString::number(model.years.front().name);
    const QString last = QString::number(model.years.back().name);
    return fact("Years", QString::number(report.years.count),
                first == last ? first : worded("%1 to %2", first, last));
}

QByteArray findingsFact(const FindingList& findings, const FindingList& control, qint64 differences)
{
    QStringList texts;
    for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
        const qint64 count = findings.count(severity) + control.count(severity) +
                             (severity == Severity::Warning ? differences : 0);
        texts.append(worded("%1 %2%3", count, severityName(severity), count == 1 ? "" : "s"));
    }
    const QString errors = texts.takeFirst();
    return fact("Findings", errors, texts.join(QLatin1String(", ")));
}

QByteArray rowOf(const PageFile& file)
{
    const QByteArray modified =
        file.modified.isValid()
            ? file.modified.toUTC().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss 'UTC'")).toLatin1()
            : QByteArray("-");
    return "<tr><th scope=\"row\">" + htmlText(file.role) + "</th><td>" + htmlName(file.path) +
           "</td><td class=\"n\">" + QByteArray::number(file.size) + "</td><td>" + modified +
           "</td><td><code>" + file.sha256 + "</code></td></tr>\n";
}

} // namespace

QByteArray verdictSection(const PageFacts& facts, const CheckReport& report,
                          const FindingList& control, const PageModel& model)
{
    const auto converted = std::count_if(report.slotPlan.begin(), report.slotPlan.end(),
                                         [](const PlannedSlot& slot) { return slot.isConverted; });
    const qint64 leftOut = static_cast<qint64>(report.slotPlan.size()) - converted;
    const QString name = QFileInfo(facts.files.front().path).fileName();
    return "<header>\n<p class=\"kind\">Annual values of an HTS file</p>\n<h1>" + htmlName(name) +
           "</h1>\n" + verdict(report) + "<ul class=\"facts\">\n" + yearsFact(report, model) +
           fact("Slots converted", QString::number(converted), worded("%1 left out", leftOut)) +
           fact("Runs", QString::number(report.runCount)) +
           findingsFact(report.findings, control, model.differenceCount) + "</ul>\n</header>\n";
}

QByteArray factsSection(const PageFacts& facts)
{
    QByteArray html =
        "<section id=\"files\">\n<h2>Files and options</h2>\n<div class=\"wide\"><table>\n<thead>"
        "<tr><th scope=\"col\">File</th><th scope=\"col\">Path</th><th class=\"n\" "
        "scope=\"col\">Bytes</th>"
        "<th scope=\"col\">Last change</th><th scope=\"col\">SHA-256</th></tr></thead>\n<tbody>\n";
    for (const PageFile& file : facts.files)
        html += rowOf(file);
    html += "</tbody></table></div>\n<dl class=\"list\">\n";
    for (const auto& [name, value] : facts.options)
        html += "<dt>" + htmlText(name) + "</dt><dd>" + htmlText(value) + "</dd>\n";
    return html + "<dt>Written</dt><dd>" +
           facts.written.toUTC().toString(QStringLiteral("yyyy-MM-dd HH:mm 'UTC'")).toLatin1() +
           " by " + htmlText(facts.program) + "</dd>\n</dl>\n</section>\n";
}
