#include "gui/sourcecheck.h"

#include <new>
#include <optional>

#include "QsLogLevel.h"
#include "annualize/convertfiles.h"
#include "check/control.h"
#include "check/filecheck.h"
#include "check/reportlines.h"
#include "gui/messageviewer.h"
#include "utils/checkedfile.h"

namespace UtilsNS {

namespace {

QsLogging::Level levelOf(Severity severity)
{
    switch (severity) {
    case Severity::Note:
        return QsLogging::InfoLevel;
    case Severity::Warning:
        return QsLogging::WarnLevel;
    case Severity::Error:
        break;
    }
    return QsLogging::ErrorLevel;
}

Severity worstOf(const FindingList& findings, const FindingList& ofControl)
{
    for (const Severity severity : {Severity::Error, Severity::Warning}) {
        if (findings.count(severity) + ofControl.count(severity) > 0)
            return severity;
    }
    return Severity::Note;
}

void showFindings(const FindingList& findings, const QString& file, MessageViewer& viewer)
{
    const QLatin1String separator(": ");
    for (const ReportLine& line : findingLines(findings, file)) {
        const QLatin1String severity(severityName(line.severity));
        viewer.messageHandler(levelOf(line.severity),
                              line.place + separator + severity + separator + line.text);
    }
}

void showReport(const CheckReport& report, const FindingList& ofControl, const ReportNames& names,
                MessageViewer& viewer)
{
    showFindings(report.findings, names.file, viewer);
    showFindings(ofControl, names.control, viewer);
    for (const QString& line : planLines(report, names))
        viewer.messageHandler(QsLogging::InfoLevel, line);
    viewer.messageHandler(levelOf(worstOf(report.findings, ofControl)),
                          summaryLine(report, ofControl, names));
}

} // namespace

Status checkSource(CheckedFile& file, const ReportNames& names, int endMonth, MessageViewer& viewer)
{
    file.limitLines();
    try {
        std::optional<ControlCheck> control;
        if (!names.control.isEmpty())
            control.emplace(names.control);
        CheckOptions options;
        options.control = control ? &*control : nullptr;
        options.endMonth = endMonth;
        const CheckReport report = checkFile(file, options);
        Status status = checkInputWasRead(file);
        if (status.ok())
            showReport(report, control ? control->findings() : FindingList(), names, viewer);
        return status;
    } catch (const std::bad_alloc&) {
        return failure(QLatin1String("Not enough memory"));
    }
}

} // namespace UtilsNS
