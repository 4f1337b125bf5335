#ifndef REPORT_PAGE_H
#define REPORT_PAGE_H

#include <utility>
#include <vector>

#include <QByteArray>
#include <QDateTime>
#include <QString>

class QIODevice;
class FindingList;
struct CheckReport;
struct PageModel;

// A file that a page is about.
struct PageFile
{
    QString role; // "Input"
    QString path;
    qint64 size = 0;
    QByteArray sha256;  // in hexadecimal
    QDateTime modified; // null if it is not known, as that of a pipe
};

// What a page says of itself: what it was made from and how.
struct PageFacts
{
    QString program; // with its version
    QDateTime written;
    std::vector<PageFile> files; // the input is the first
    int endMonth = 12;           // 1 to 12
    // Names and values of the others, in the order of the page.
    std::vector<std::pair<QString, QString>> options;
};

// Writes a page in HTML that shows what a conversion of a file makes of it, and what is doubtful:
// one document without scripts, which loads nothing. `control` are the findings about the control
// file. Whoever opened the device checks its error afterwards.
void writePage(QIODevice& device, const PageFacts& facts, const CheckReport& report,
               const FindingList& control, const PageModel& model);

#endif // REPORT_PAGE_H
