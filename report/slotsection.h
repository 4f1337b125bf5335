#ifndef REPORT_SLOTSECTION_H
#define REPORT_SLOTSECTION_H

#include <QByteArray>

class QIODevice;
struct CheckReport;
struct PageModel;
struct PageSlot;

// The list of slots: those that are shown, with links, and those that are not.
QByteArray slotList(const CheckReport& report, const PageModel& model);

// One slot: what it is, its chart and the table of its years. `number` is counted from 1.
QByteArray slotSection(const PageModel& model, const PageSlot& slot, int number);

#endif // REPORT_SLOTSECTION_H
