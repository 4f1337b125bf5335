// A check of any HTS file with any control file agrees with a conversion: it has an error exactly
// where the conversion fails or never ends, and the same message. Findings name lines that the file
// has, on one line each. The counts and both forms of the export read the file too.
//
// Input: a letter for the end month, the control file, a line "====", the HTS file.

#include <QBuffer>

#include "QsLog.h"
#include "annualize/annualizehts.h"
#include "check/checkobserver.h"
#include "check/control.h"
#include "check/filecheck.h"
#include "check/yearcounts.h"
#include "exchange/csvexport.h"
#include "exchange/csvwriter.h"
#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "tests/plain/plainreader.h"

namespace {

void open(QBuffer& device, const QByteArray& text)
{
    device.setData(text);
    fuzz::require(device.open(QIODevice::ReadOnly), QStringLiteral("cannot open the buffer"));
}

QString convert(const fuzz::ConversionInput& inputs, const QString& controlPath)
{
    QBuffer source;
    open(source, inputs.hts);
    QBuffer result;
    AnnualizeHts engine;
    const bool isSet = result.open(QIODevice::WriteOnly) && engine.setSourceDevice(&source).ok() &&
                       engine.setResultDevice(&result).ok() &&
                       engine.setControlFile(controlPath).ok() &&
                       engine.setEndMonth(inputs.endMonth).ok();
    fuzz::require(isSet, QStringLiteral("cannot set up the engine"));
    return engine.annualize().message;
}

CheckReport check(const fuzz::ConversionInput& inputs, ControlCheck& control, CheckObserver* counts)
{
    QBuffer source;
    open(source, inputs.hts);
    CheckOptions options;
    options.control = &control;
    options.endMonth = inputs.endMonth;
    options.observer = counts;
    return checkFile(source, options);
}

// Returns whether an error names the message.
bool checkFindings(const FindingList& findings, const QByteArray& file, const QString& message)
{
    // One more for the end of the input after the last line end.
    const qint64 lines = file.count('\n') + 1;
    bool namesMessage = false;
    for (const Finding& finding : findings.sorted()) {
        const QString text = QStringLiteral("line %1: ").arg(finding.line) + finding.text;
        fuzz::require(finding.line >= 1 && finding.line <= lines,
                      QStringLiteral("no such line: ") + text);
        fuzz::require(!finding.text.isEmpty() && !finding.text.contains(QLatin1Char('\n')),
                      QStringLiteral("not on one line: ") + text);
        namesMessage = namesMessage ||
                       (finding.severity() == Severity::Error && finding.text.contains(message));
    }
    return namesMessage;
}

void checkExport(const fuzz::ConversionInput& inputs, const CheckReport& report, bool isWide)
{
    QBuffer source;
    open(source, inputs.hts);
    QBuffer target;
    fuzz::require(target.open(QIODevice::WriteOnly), QStringLiteral("cannot open the buffer"));
    ExportOptions options;
    if (isWide)
        options.form = ExportOptions::Form::Wide;
    const ExportOutcome outcome = exportCsv(source, target, options);
    if (report.neverEnds)
        fuzz::require(!outcome.status.ok(), QStringLiteral("exported without an end"));
    if (!isWide && outcome.status.ok()) {
        fuzz::require(target.data().endsWith("\r\n"), QStringLiteral("the table is cut"));
    }
}

} // namespace

FUZZ_TARGET(check)
{
    QsLogging::Logger::instance().setLoggingLevel(QsLogging::OffLevel);
    const fuzz::ConversionInput inputs = fuzz::conversionInputOf(input);
    static const fuzz::ScratchFile kControl;
    kControl.write(inputs.control);

    QBuffer counts;
    fuzz::require(counts.open(QIODevice::WriteOnly), QStringLiteral("cannot open the buffer"));
    CsvWriter writer(counts);
    YearCounts rows(writer, {});
    ControlCheck control(kControl.path());
    const CheckReport report = check(inputs, control, &rows);
    const FindingList controlFindings = control.findings();
    const bool isEndless = plainreader::isEndless(inputs.hts);
    fuzz::require(report.neverEnds == isEndless, QStringLiteral("other end"));
    if (!isEndless) {
        fuzz::requireEqual(QStringLiteral("message"), report.conversionMessage,
                           convert(inputs, kControl.path()));
    }
    const bool fails = isEndless || !report.conversionMessage.isEmpty();
    const qint64 errors =
        report.findings.count(Severity::Error) + controlFindings.count(Severity::Error);
    fuzz::require((errors > 0) == fails,
                  QStringLiteral("an error without a failure, or the other way round"));
    const QString& message = report.conversionMessage;
    const bool isNamed = checkFindings(report.findings, inputs.hts, message);
    const bool isNamedByControl = checkFindings(controlFindings, inputs.control, message);
    fuzz::require(message.isEmpty() || isNamed || isNamedByControl,
                  QStringLiteral("not named: ") + message);
    checkExport(inputs, report, false);
    checkExport(inputs, report, true);
}
