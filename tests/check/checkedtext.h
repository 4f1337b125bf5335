#ifndef TESTS_CHECK_CHECKEDTEXT_H
#define TESTS_CHECK_CHECKEDTEXT_H

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include "check/control.h"
#include "check/filecheck.h"

// The report on one file, and the findings about its control file.
struct CheckedText : CheckReport
{
    FindingList controlFindings;

    // Of both.
    qint64 errorCount() const;
};

// Checks a text as a file; the month is December unless given.
CheckedText checkedText(const QByteArray& text, const QString& controlPath = {}, int endMonth = 12);

// With other options; their control file is that of the path, if there is one.
CheckedText checkedText(const QByteArray& text, const QString& controlPath,
                        const CheckOptions& options);

// Checks a file, opened as the program opens it: only there is an empty Windows line before
// "END_RUN" what it is in a conversion.
CheckedText checkedFile(const QString& path, const QString& controlPath = {}, int endMonth = 12);
CheckedText checkedFile(const QString& path, const QString& controlPath,
                        const CheckOptions& options);

// The findings as "12: code: text"; of a report those of the file, then those of the control file
// as "control 3: code: text".
QStringList findingTexts(const FindingList& findings);
QStringList findingTexts(const CheckedText& report);

// A case of a file of tests/check: the lines after "== name", up to the next.
struct TextCase
{
    QByteArray name;
    QStringList lines;
};
QVector<TextCase> textCases(const QString& fileName);

// The outcome of a conversion of a text.
struct ConvertedText
{
    bool neverEnds = false; // the rest is then empty
    QString message;        // empty after a success
    QByteArray result;
};

ConvertedText convertedText(const QByteArray& text, const QString& controlPath, int endMonth);

#endif // TESTS_CHECK_CHECKEDTEXT_H
