#include "tests/check/checkedtext.h"

#include <QBuffer>
#include <QFile>

#include "annualize/annualizehts.h"
#include "tests/plain/plainreader.h"

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

CheckOptions optionsOf(const QString& controlPath, int endMonth)
{
    CheckOptions options;
    options.controlPath = controlPath;
    options.endMonth = endMonth;
    return options;
}

} // namespace

CheckReport checkedText(const QByteArray& text, const QString& controlPath, int endMonth)
{
    QBuffer device;
    device.setData(text);
    device.open(QIODevice::ReadOnly);
    return checkFile(device, optionsOf(controlPath, endMonth));
}

CheckReport checkedFile(const QString& path, const QString& controlPath, int endMonth)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered))
        qFatal("cannot read %s", qPrintable(path));
    return checkFile(file, optionsOf(controlPath, endMonth));
}

QStringList findingTexts(const FindingList& findings)
{
    QStringList texts;
    for (const Finding& finding : findings.sorted()) {
        const bool isControl = finding.file == Finding::File::Control;
        texts.append(QLatin1String(isControl ? "control " : "") + QString::number(finding.line) +
                     QLatin1String(": ") + QLatin1String(finding.code()) + QLatin1String(": ") +
                     finding.text);
    }
    return texts;
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
