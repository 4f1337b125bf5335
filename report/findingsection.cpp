#include "report/findingsection.h"

#include <algorithm>

#include "check/filecheck.h"
#include "check/topic.h"
#include "report/htmltext.h"
#include "report/pagemodel.h"

namespace {

// A text of the program that has code in backticks.
QByteArray withCode(const char* text)
{
    QByteArray html = htmlText(QString::fromUtf8(text));
    bool isCode = false;
    for (auto at = html.indexOf('`'); at >= 0; at = html.indexOf('`', at)) {
        isCode = !isCode;
        html.replace(at, 1, isCode ? "<code>" : "</code>");
    }
    Q_ASSERT(!isCode);
    return html;
}

class FindingSection
{
public:
    FindingSection(const CheckReport& report, const FindingList& control, const PageModel& model);

    QByteArray html();

private:
    struct Entry
    {
        PageFinding finding;
        bool isOfControl;
    };

    qint64 countOf(const FindingKind& kind) const
    {
        return m_report.findings.count(kind) + m_control.count(kind);
    }
    QByteArray differences() const;
    QByteArray topic(const Topic& topic);
    QByteArray kind(const FindingKind& kind);
    QByteArray item(const Entry& entry) const;

    const CheckReport& m_report;
    const FindingList& m_control;
    const PageModel& m_model;
    std::vector<Entry> m_entries;
    qint64 m_bytes = 0; // of the findings so far
};

FindingSection::FindingSection(const CheckReport& report, const FindingList& control,
                               const PageModel& model)
    : m_report(report), m_control(control), m_model(model)
{
    for (const PageFinding& finding : model.findings)
        m_entries.push_back({finding, false});
    for (const Finding& finding : control.sorted()) {
        const auto ofLine = [&finding](const PageSlot& slot) {
            return slot.ruleLine == finding.line;
        };
        const auto slot = std::find_if(model.slots.begin(), model.slots.end(), ofLine);
        const int index =
            slot == model.slots.end() ? -1 : static_cast<int>(slot - model.slots.begin());
        m_entries.push_back({{finding, index}, true});
    }
}

QByteArray FindingSection::html()
{
    QByteArray topics = differences();
    for (const Topic* each : findingTopics())
        topics += topic(*each);
    if (topics.isEmpty())
        topics = "<p>None.</p>\n";
    return "<section id=\"findings\">\n<h2>Findings</h2>\n" + topics + "</section>\n";
}

// Against the result that is shown.
QByteArray FindingSection::differences() const
{
    if (m_model.differenceCount == 0)
        return {};
    QByteArray html = "<h3>Result</h3>\n<div class=\"finding\"><p><b class=\"warning\">warning</b> "
                      "The annual file is not what a conversion gives; its values are shown.</p>\n"
                      "<ul>\n";
    for (const QString& text : m_model.differences)
        html += "<li>" + htmlText(text) + "</li>\n";
    const qint64 more = m_model.differenceCount - m_model.differences.size();
    if (more > 0)
        html += "<li>" + QByteArray::number(more) + " more</li>\n";
    return html + "</ul>\n<p class=\"advice\">What to do: Convert the input again, with these "
                  "methods and this month, or find out which of them the file is from.</p></div>\n";
}

QByteArray FindingSection::topic(const Topic& topic)
{
    QByteArray kinds;
    for (const FindingKind* each : topic.kinds) {
        if (countOf(*each) > 0)
            kinds += kind(*each);
    }
    return kinds.isEmpty()
               ? kinds
               : "<h3>" + htmlText(QString::fromLatin1(topic.title)) + "</h3>\n" + kinds;
}

QByteArray FindingSection::kind(const FindingKind& kind)
{
    constexpr int kMaxBytes = 14000;
    const QByteArray severity = severityName(kind.severity);
    const QByteArray code = kind.code;
    const qint64 count = countOf(kind);
    // Also without its items a kind is on the page.
    if (m_bytes > kMaxBytes)
        return "<p><b class=\"" + severity + "\">" + severity + "</b> <code>" + code +
               "</code>: " + QByteArray::number(count) + "</p>\n";
    QByteArray html = "<div class=\"finding\"><p><b class=\"" + severity + "\">" + severity +
                      "</b> <code>" + code + "</code> " + withCode(kind.meaning) + "</p>\n<ul>\n";
    qint64 shownCount = 0;
    for (const Entry& entry : m_entries) {
        if (entry.finding.finding.kind != &kind || m_bytes + html.size() > kMaxBytes)
            continue;
        html += item(entry);
        ++shownCount;
    }
    if (count > shownCount)
        html += "<li>" + QByteArray::number(count - shownCount) +
                " more, which <code>htstool check --all</code> lists</li>\n";
    html += "</ul>\n<p class=\"advice\">What to do: " + withCode(kind.advice) + "</p></div>\n";
    m_bytes += html.size();
    return html;
}

QByteArray FindingSection::item(const Entry& entry) const
{
    const Finding& finding = entry.finding.finding;
    const int slot = entry.finding.slot;
    QByteArray text = htmlText(finding.text);
    if (slot >= 0) {
        const QString& name = m_model.slots[static_cast<std::size_t>(slot)].name;
        const QByteArray start = "<a href=\"#s" + QByteArray::number(slot + 1) + "\">";
        const QByteArray named = htmlText(name);
        const auto at = text.indexOf(named);
        if (at >= 0)
            text.replace(at, named.size(), QByteArray(start + named + "</a>"));
        else
            text += ' ' + start + htmlName(name) + "</a>";
    }
    return QByteArray("<li>") + (entry.isOfControl ? "methods, line " : "line ") +
           QByteArray::number(finding.line) + ": " + text + "</li>\n";
}

} // namespace

QByteArray findingSection(const CheckReport& report, const FindingList& control,
                          const PageModel& model)
{
    return FindingSection(report, control, model).html();
}
