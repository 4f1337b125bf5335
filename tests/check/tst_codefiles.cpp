// The smallest files: files/CODE.hts, with files/CODE.txt for a control file, has the defect of the
// code, and no other: `missing-values` says no more than that a value is missing.
// files/expected.txt has what is found, one line for each file.

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "check/topic.h"
#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

QByteArray contentOf(const QString& name)
{
    return sourceFile(QStringLiteral(SOURCE_DIR "/tests/check/files/") + name);
}

QStringList expectedLines()
{
    // The file has the text of Unix for a file that is not there.
    QFile missing(QStringLiteral(SOURCE_DIR "/tests/check/files/control-unreadable.txt"));
    const QString systemText =
        missing.open(QIODevice::ReadOnly) ? QString() : missing.errorString();
    return QString::fromUtf8(contentOf(QStringLiteral("expected.txt")))
        .replace(QLatin1String("No such file or directory"), systemText)
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// As the program writes it.
QString lineOf(const Finding& finding, const char* ending)
{
    const QLatin1String name(finding.code());
    return QStringLiteral("%1%2:%3: %4: ")
               .arg(name, QLatin1String(ending), QString::number(finding.line),
                    QLatin1String(severityName(finding.severity()))) +
           finding.text + QStringLiteral(" [%1]").arg(name);
}

// Without those that a value is missing, unless the file is for them.
QStringList linesOf(const CheckedText& report, const QString& code)
{
    const QString missing = QStringLiteral("missing-values");
    QStringList lines;
    const auto append = [&](const FindingList& findings, const char* ending) {
        for (const Finding& finding : findings.sorted()) {
            if (code == missing || missing != QLatin1String(finding.code()))
                lines.append(lineOf(finding, ending));
        }
    };
    append(report.findings, ".hts");
    append(report.controlFindings, ".txt");
    return lines;
}

// Codes about methods need a control file, and one is about a control file that is not there.
QString controlOf(const QString& code)
{
    const QString path = QStringLiteral(SOURCE_DIR "/tests/check/files/%1.txt").arg(code);
    return QFile::exists(path) || code == QLatin1String("control-unreadable") ? path : QString();
}

// Two codes are about an option.
QString maxMissingOf(const QString& code)
{
    return code == QLatin1String("too-many-missing") ? QStringLiteral("0")
           : code == QLatin1String("wmo-steps")      ? QStringLiteral("wmo")
                                                     : QString();
}

CheckedText checkedCodeFile(const QString& path, const QString& code)
{
    CheckOptions options;
    options.maxMissing = MaxMissing::fromText(maxMissingOf(code)).value_or(MaxMissing());
    return checkedFile(path, controlOf(code), options);
}

} // namespace

class CodeFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCodeHasAFile();
    void hasOnlyTheDefect_data();
    void hasOnlyTheDefect();
    void windowsLineEndsMakeNoDifference_data();
    void windowsLineEndsMakeNoDifference();
};

void CodeFilesTest::everyCodeHasAFile()
{
    QStringList codes;
    for (const Topic* topic : findingTopics()) {
        for (const FindingKind* kind : topic->kinds)
            codes.append(QLatin1String(kind->code));
    }
    QCOMPARE(QSet<QString>(codes.begin(), codes.end()).size(), codes.size());
    QStringList files;
    for (const QString& name :
         QDir(QStringLiteral(SOURCE_DIR "/tests/check/files")).entryList({QStringLiteral("*.hts")}))
        files.append(name.chopped(4));
    codes.sort();
    QCOMPARE(files, codes);
    QCOMPARE(expectedLines().size(), codes.size());
}

void CodeFilesTest::hasOnlyTheDefect_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("line");
    for (const QString& line : expectedLines()) {
        const QString code = line.section(QLatin1Char('.'), 0, 0);
        QTest::newRow(qPrintable(code)) << code << line;
    }
}

void CodeFilesTest::hasOnlyTheDefect()
{
    QFETCH(QString, code);
    QFETCH(QString, line);
    const QString path = QStringLiteral(SOURCE_DIR "/tests/check/files/%1.hts").arg(code);
    QCOMPARE(linesOf(checkedCodeFile(path, code), code), QStringList{line});
}

void CodeFilesTest::windowsLineEndsMakeNoDifference_data()
{
    hasOnlyTheDefect_data();
}

void CodeFilesTest::windowsLineEndsMakeNoDifference()
{
    QFETCH(QString, code);
    QFETCH(QString, line);
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("a.hts")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(contentOf(code + QStringLiteral(".hts")).replace("\n", "\r\n"));
    file.close();
    QCOMPARE(linesOf(checkedCodeFile(file.fileName(), code), code), QStringList{line});
}

HTS_TEST(CodeFilesTest, QCoreApplication)

#include "tst_codefiles.moc"
