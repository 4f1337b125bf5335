// A check and a conversion of the same file agree: where the conversion fails, the check has an
// error with the same message, and none where it succeeds. The environment variable
// HTS_AGREEMENT_CASES sets how many files are tried; a failure names the seed.

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "QsLog.h"
#include "tests/annualize/randomcase.h"
#include "tests/check/checkedtext.h"
#include "tests/hts/randomhts.h"
#include "tests/support/testmain.h"

namespace {

constexpr int kUsualCases = 300;
constexpr int kCasesOfARow = 100; // so that no row takes long, however many there are

int caseCount()
{
    const int wanted = qEnvironmentVariableIntValue("HTS_AGREEMENT_CASES");
    return wanted > 0 ? wanted : kUsualCases;
}

struct Inputs
{
    QByteArray hts;
    QByteArray control; // null for a control file that is not there
    int endMonth = 12;
};

// Clean files, and files of any kind, half of them broken.
Inputs inputsOf(quint32 seed)
{
    RandomHts random(seed);
    QRandomGenerator choice(seed);
    Inputs inputs;
    if (choice.bounded(4) == 0) {
        constexpr int kMaxSteps = 6;
        inputs = {random.file(kMaxSteps), "*.*: Sum\n", 1 + choice.bounded(12)};
    } else {
        const RandomCase clean(seed);
        inputs = {clean.fileText(), clean.controlText(), clean.endMonth};
    }
    if (choice.bounded(2) == 0)
        inputs.hts = random.broken(inputs.hts);
    // Otherwise hardly any table would lose its end.
    if (choice.bounded(8) == 0)
        inputs.hts = inputs.hts.left(inputs.hts.lastIndexOf("END_SLOT")) + "END_RUN\n";
    switch (choice.bounded(12)) {
    case 0:
        inputs.control = random.broken(inputs.control);
        break;
    case 1:
        inputs.control = QByteArray();
        break;
    case 2:
        inputs.control = "*.*: Salinity\n";
        break;
    case 3:
        inputs.control = "*.*: Average\n" + inputs.control;
        break;
    default:
        break;
    }
    return inputs;
}

bool hasErrorWith(const CheckedText& report, const QString& message)
{
    for (const FindingList* findings : {&report.findings, &report.controlFindings}) {
        for (const Finding& finding : findings->sorted()) {
            if (finding.severity() == Severity::Error && finding.text.contains(message))
                return true;
        }
    }
    return false;
}

} // namespace

class AgreementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void sameOutcomeAsAConversion_data();
    void sameOutcomeAsAConversion();

private:
    QTemporaryDir m_folder;
};

void AgreementTest::initTestCase()
{
    QsLogging::Logger::instance().setLoggingLevel(QsLogging::OffLevel);
}

void AgreementTest::sameOutcomeAsAConversion_data()
{
    QTest::addColumn<int>("first");
    for (int first = 1; first <= caseCount(); first += kCasesOfARow)
        QTest::addRow("seeds from %d on", first) << first;
}

void AgreementTest::sameOutcomeAsAConversion()
{
    QFETCH(int, first);
    const QString control = m_folder.filePath(QStringLiteral("c.txt"));
    int converted = 0;
    int endless = 0;
    for (int number = first; number < first + kCasesOfARow; ++number) {
        const auto seed = static_cast<quint32>(number);
        const Inputs inputs = inputsOf(seed);
        QFile file(control);
        file.remove();
        if (!inputs.control.isNull()) {
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(inputs.control);
            file.close();
        }
        const CheckedText report = checkedText(inputs.hts, control, inputs.endMonth);
        const ConvertedText conversion = convertedText(inputs.hts, control, inputs.endMonth);
        const QString context = QStringLiteral("seed %1: conversion \"%2\", check \"%3\"\n")
                                    .arg(seed)
                                    .arg(conversion.message, report.conversionMessage) +
                                findingTexts(report).join(QLatin1Char('\n'));
        const bool fails = conversion.neverEnds || !conversion.message.isEmpty();
        const bool hasError = report.errorCount() > 0;
        QVERIFY2(hasError == fails, qPrintable(context));
        QVERIFY2(report.neverEnds == conversion.neverEnds, qPrintable(context));
        QVERIFY2(report.conversionMessage == conversion.message, qPrintable(context));
        QVERIFY2(hasErrorWith(report, conversion.message) == fails, qPrintable(context));
        converted += fails ? 0 : 1;
        endless += conversion.neverEnds ? 1 : 0;
    }
    // Both outcomes must have been tried.
    qInfo("%d files: %d converted, %d endless", kCasesOfARow, converted, endless);
    QVERIFY(converted > 0 && converted < kCasesOfARow);
}

HTS_TEST(AgreementTest, QCoreApplication)

#include "tst_agreement.moc"
