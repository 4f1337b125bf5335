#include "tests/check/checkedtext.h"

#include <utility>

#include <QBuffer>
#include <QFile>

#include "annualize/annualizehts.h"
#include "tests/plain/plainreader.h"
#include "tests/support/wholefile.h"

namespace {

// The search for the end of a table can read no more lines than there are, unless it is past the
// end.
bool isEndless(const QByteArray& text)
{
    QBuffer device;
    device.setData(text);
    device.open(QIODevice::ReadOnly);
    HtsPackage package;
    plainreader::LineBudget budget{text.count('\n') + 2};
    static_cast<void>(plainreader::read(device, package, &budget));
    return budget.isExhausted;
}

CheckOptions optionsOf(int endMonth)
{
    CheckOptions options;
    options.endMonth = endMonth;
    return options;
}

CheckedText checked(QIODevice& device, const QString& controlPath, CheckOptions options)
{
    if (controlPath.isEmpty())
        return {checkFile(device, options), {}};
    ControlCheck control(controlPath);
    options.control = &control;
    CheckReport report = checkFile(device, options);
    return {std::move(report), control.findings()};
}

} // namespace

qint64 CheckedText::errorCount() const
{
    return findings.count(Severity::Error) + controlFindings.count(Severity::Error);
}

CheckedText checkedText(const QByteArray& text, const QString& controlPath, int endMonth)
{
    return checkedText(text, controlPath, optionsOf(endMonth));
}

CheckedText checkedText(const QByteArray& text, const QString& controlPath,
                        const CheckOptions& options)
{
    QBuffer device;
    device.setData(text);
    device.open(QIODevice::ReadOnly);
    return checked(device, controlPath, options);
}

CheckedText checkedFile(const QString& path, const QString& controlPath, int endMonth)
{
    return checkedFile(path, controlPath, optionsOf(endMonth));
}

CheckedText checkedFile(const QString& path, const QString& controlPath,
                        const CheckOptions& options)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered))
        qFatal("cannot read %s", qPrintable(path));
    return checked(file, controlPath, options);
}

QStringList findingTexts(const FindingList& findings)
{
    QStringList texts;
    for (const Finding& finding : findings.sorted())
        texts.append(QString::number(finding.line) + QLatin1String(": ") +
                     QLatin1String(finding.code()) + QLatin1String(": ") + finding.text);
    return texts;
}

QStringList findingTexts(const CheckedText& report)
{
    QStringList texts = findingTexts(report.findings);
    for (const QString& text : findingTexts(report.controlFindings))
        texts.append(QLatin1String("control ") + text);
    return texts;
}

QVector<TextCase> textCases(const QString& fileName)
{
    QVector<TextCase> cases;
    const QByteArray text = sourceFile(QLatin1String("tests/check/") + fileName);
    for (const QString& line : QString::fromUtf8(text).chopped(1).split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String("== ")))
            cases.append(TextCase{line.mid(3).toUtf8(), {}});
        else if (!cases.isEmpty())
            cases.last().lines.append(line);
    }
    return cases;
}

ConvertedText convertedText(const QByteArray& text, const QString& controlPath, int endMonth)
{
    if (isEndless(text))
        return {true, {}, {}};
    QBuffer source;
    source.setData(text);
    source.open(QIODevice::ReadOnly);
    QBuffer result;
    result.open(QIODevice::WriteOnly);
    AnnualizeHts engine;
    Status status = engine.setSourceDevice(&source);
    if (status.ok())
        status = engine.setResultDevice(&result);
    if (status.ok())
        status = engine.setControlFile(controlPath);
    if (status.ok())
        status = engine.setEndMonth(endMonth);
    if (status.ok())
        status = engine.annualize();
    return {false, status.message, result.data()};
}
