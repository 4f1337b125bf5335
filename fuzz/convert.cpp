// A whole conversion of any HTS file with any control file: it fails with a known message and
// writes nothing, or its result can be read back and has the right content. The plain conversion
// gives the same message, log lines and result, and so does the same file with Windows line ends.
//
// Input: a letter for the end month, the control file, a line "====", the HTS file.

#include <cmath>
#include <limits>

#include <QBuffer>

#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "hts/datetimetext.h"
#include "tests/annualize/conversioncompare.h"
#include "tests/hts/packagecompare.h"
#include "tests/plain/plainconversion.h"
#include "tests/plain/plainreader.h"
#include "utils/checkedfile.h"

namespace {

const char* const kMessages[] = {
    "",
    "Cannot read package preamble",
    "Cannot read run preamble",
    "Cannot read slot preamble",
    "Cannot read HTS file: Missing units or scale",
    "Source HTS File already in annual timestep",
    "Cannot create a complete year from the input HTS file",
    "No series slots with valid methods found in input HTS file",
    "Sizes of input value and value map vectors are mismatched",
};

QByteArray withWindowsLineEnds(QByteArray text)
{
    return text.replace("\n", "\r\n");
}

// The conversion of files, opened as the program opens them.
ConversionOutcome convertFiles(const fuzz::ConversionInput& inputs)
{
    static const fuzz::ScratchFile kControl;
    static const fuzz::ScratchFile kHts;
    kControl.write(inputs.control);
    kHts.write(inputs.hts);
    UtilsNS::CheckedFile source(kHts.path());
    fuzz::require(source.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered),
                  QStringLiteral("cannot open the file"));
    ConversionOutcome outcome = convertInOnePass(source, kControl.path(), inputs.endMonth);
    fuzz::requireEqual(QStringLiteral("fault of the file"), source.problem(), QString());
    return outcome;
}

// The same with the plain conversion.
ConversionOutcome convertBuffer(fuzz::ConversionInput inputs)
{
    static const fuzz::ScratchFile kControl;
    kControl.write(inputs.control);
    QBuffer source(&inputs.hts);
    fuzz::require(source.open(QIODevice::ReadOnly | QIODevice::Text),
                  QStringLiteral("cannot open the buffer"));
    return convertPlainly(source, kControl.path(), inputs.endMonth);
}

void requireSame(const char* what, const ConversionOutcome& actual,
                 const ConversionOutcome& expected)
{
    const QString fault = difference(actual, expected);
    fuzz::require(fault.isEmpty(), QString::fromLatin1(what) + QStringLiteral(": ") + fault);
}

// What a value is after it has been written and read.
double asReadBack(double value)
{
    return std::isfinite(value) ? QString::number(value, 'f', 12).toDouble()
                                : std::numeric_limits<double>::quiet_NaN();
}

QDateTime asReadBack(const QDateTime& dateTime)
{
    return textToDateTime(dateTimeToText(dateTime));
}

void makeAsReadBack(HtsSlot& slot)
{
    slot.preambleRead = true;
    slot.rows = 0; // only of tables, like the next
    slot.cols = 0;
    for (double& scale : slot.scales)
        scale = QStringLiteral("%1").arg(scale).toDouble();
}

void makeAsReadBack(HtsPackage& package)
{
    package.createDate = asReadBack(package.createDate);
    for (HtsRun& run : package.runs) {
        run.complete = true;
        run.start = asReadBack(run.start);
        run.end = asReadBack(run.end);
    }
    for (HtsSlot& slot : package.slots)
        makeAsReadBack(slot);
    for (auto& runValues : package.values) {
        for (auto& columns : runValues) {
            for (double& value : columns.front())
                value = asReadBack(value);
        }
    }
}

HtsPackage packageOf(const QByteArray& text, const QString& what)
{
    QBuffer device;
    device.setData(text);
    fuzz::require(device.open(QIODevice::ReadOnly), QStringLiteral("cannot open the buffer"));
    HtsPackage package;
    fuzz::requireEqual(what + QStringLiteral(", message"), package.read(device).message, QString());
    fuzz::require(what != QLatin1String("result") || device.atEnd(),
                  QStringLiteral("the result has more than its package"));
    return package;
}

// Every run has the same number of years, and every column as many values.
void checkYears(const HtsPackage& annual)
{
    const int years = annual.run(0).timeStepCount;
    fuzz::require(years > 0, QStringLiteral("a result without a year"));
    for (int r = 0; r < annual.runs.size(); ++r) {
        const HtsRun& run = annual.run(r);
        fuzz::requireEqual(QStringLiteral("unit"), run.timeStepUnit, QStringLiteral("year"));
        fuzz::require(run.timeStepCount == years && run.timesteps.size() == years,
                      QStringLiteral("run %1 has %2 years and %3 timesteps instead of %4")
                          .arg(QString::number(r), QString::number(run.timeStepCount),
                               QString::number(run.timesteps.size()), QString::number(years)));
        for (const auto& columns : annual.values.at(static_cast<std::size_t>(r))) {
            fuzz::require(columns.size() == 1 &&
                              columns.front().size() == static_cast<std::size_t>(years),
                          QStringLiteral("a column of run %1 lacks values").arg(r));
        }
    }
}

void checkResult(const fuzz::ConversionInput& inputs, const QByteArray& written)
{
    static const fuzz::ScratchFile kControl;
    kControl.write(inputs.control);
    HtsPackage annual;
    const Status status = plainconversion::annualizePackage(
        packageOf(inputs.hts, QStringLiteral("input")), kControl.path(), inputs.endMonth, annual);
    fuzz::requireEqual(QStringLiteral("message in memory"), status.message, QString());
    checkYears(annual);
    // A NUL byte ends a text, and may leave it with a blank at its end or empty; neither can be
    // read back.
    if (inputs.hts.contains('\0'))
        return;
    makeAsReadBack(annual);
    const QString fault = difference(packageOf(written, QStringLiteral("result")), annual);
    fuzz::require(fault.isEmpty(), QStringLiteral("read back: ") + fault);
}

bool isKnown(const QString& message)
{
    for (const char* known : kMessages) {
        if (message == QLatin1String(known))
            return true;
    }
    return false;
}

} // namespace

FUZZ_TARGET(convert)
{
    // The line ends are only line feeds; the copy with Windows line ends is made from them.
    const fuzz::ConversionInput inputs =
        fuzz::conversionInputOf(QByteArray(input).replace("\r", ""));
    if (plainreader::isEndless(inputs.hts))
        return;
    const ConversionOutcome outcome = convertFiles(inputs);
    const QString message = outcome.status.message;
    fuzz::require(isKnown(message), QStringLiteral("unknown message: ") + message);
    requireSame("against the plain conversion", outcome, convertBuffer(inputs));

    ConversionOutcome twin = convertFiles(
        {inputs.endMonth, withWindowsLineEnds(inputs.control), withWindowsLineEnds(inputs.hts)});
    twin.position = outcome.position;
    twin.rest.replace("\r", "");
    requireSame("with Windows line ends", twin, outcome);

    if (message.isEmpty())
        checkResult(inputs, outcome.written);
    else
        fuzz::require(outcome.written.isEmpty(), QStringLiteral("written in spite of: ") + message);
}
