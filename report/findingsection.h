#ifndef REPORT_FINDINGSECTION_H
#define REPORT_FINDINGSECTION_H

#include <QByteArray>

class FindingList;
struct CheckReport;
struct PageModel;

// The findings about a file and its control file, by topic, with what to do and a link to the slot
// that each is about. So many that the page stays small: the rest is counted.
QByteArray findingSection(const CheckReport& report, const FindingList& control,
                          const PageModel& model);

#endif // REPORT_FINDINGSECTION_H
