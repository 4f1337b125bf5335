#ifndef REPORT_HEADSECTION_H
#define REPORT_HEADSECTION_H

#include <QByteArray>

class FindingList;
struct CheckReport;
struct PageFacts;
struct PageModel;

// The top of a page: the verdict, and how many years, slots and findings there are.
QByteArray verdictSection(const PageFacts& facts, const CheckReport& report,
                          const FindingList& control, const PageModel& model);

// The files, the program and its options.
QByteArray factsSection(const PageFacts& facts);

#endif // REPORT_HEADSECTION_H
