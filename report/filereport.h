#ifndef REPORT_FILEREPORT_H
#define REPORT_FILEREPORT_H

#include <vector>

#include <QDateTime>
#include <QString>

#include "check/filecheck.h"
#include "hts/status.h"
#include "report/page.h"
#include "report/pageobserver.h"

class QIODevice;

// What a page is made from, and how.
struct ReportRequest
{
    QString controlPath;
    int endMonth = 12; // 1 to 12
    MaxMissing maxMissing;
    std::vector<double> sentinels; // finite
    ShownSlots shown;
    QString program; // with its version
    QDateTime written;
};

// What is known of a file after the check.
struct FileReport
{
    CheckReport report;
    FindingList control; // about the control file
    PageModel model;

    // How a conversion would end, and the differences from a result.
    qint64 count(Severity severity) const;
};

// Reads the file to its end, once, as a check does.
//
//     FileReport report = checkForPage(input, request);
//     compareResult(annual, report);             // if the values of a result are to be shown
//     writePage(output, request, {inputFile}, report);
FileReport checkForPage(QIODevice& input, const ReportRequest& request);

// Takes the annual values of an annual file in place of those that a conversion gives, and notes
// where they differ. Fails if the file cannot be read, as HtsPackage::read does.
Status compareResult(QIODevice& annual, FileReport& report);

// The page; `files` are the input and, if there is one, the result.
void writePage(QIODevice& output, const ReportRequest& request, std::vector<PageFile> files,
               const FileReport& report);

#endif // REPORT_FILEREPORT_H
