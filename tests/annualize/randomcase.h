#ifndef TESTS_ANNUALIZE_RANDOMCASE_H
#define TESTS_ANNUALIZE_RANDOMCASE_H

#include <vector>

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QtGlobal>

// Random conversions, the same one for the same seed on every machine: an input file whose instants
// and numbers are known without reading it, a control file and an end month.
//
// Instants are minutes since the start of the year 1880. They come from a separate calendar, so
// that nothing of the code under test, nor of the toolkit, is on both sides of a comparison.

// Midnight before the given day; `month` may be 13, the January of the next year.
qint64 instantOf(int year, int month, int day);
// The calendar year that an instant lies in; midnight belongs to the day that it starts.
int yearOf(qint64 instant);
// The text in an HTS file.
QByteArray textOf(qint64 instant);

constexpr qint64 kMinutesPerDay = 24 * 60;

struct RandomSlot
{
    QByteArray objectName;
    QByteArray slotName;
    QByteArray kind;   // the slot type; empty counts as series, too
    QByteArray method; // empty when no rule names the slot
    QByteArray units;
    // texts[run][row] are the value lines, numbers[run][row] what they mean.
    std::vector<QByteArrayList> texts;
    std::vector<std::vector<double>> numbers;

    bool isSeries() const { return kind.isEmpty() || kind == "SeriesSlot"; }
    bool isAnnualized() const { return isSeries() && !method.isEmpty(); }
};

// The timesteps of a run, and the month that its years end with.
struct RandomTiming
{
    explicit RandomTiming(quint32 seed);

    // The description in the message of a failure.
    QString description() const;

    quint32 seed;
    QByteArray unit; // "month", "week", "day", "hour"
    int endMonth = 0;
    std::vector<qint64> instants; // of the timesteps
    QByteArrayList stepTexts;     // their texts in the file
};

struct RandomCase : RandomTiming
{
    explicit RandomCase(quint32 seed);

    QByteArray controlText() const;
    // The input file with the given runs and slots, by index, in that order.
    QByteArray fileText(const std::vector<int>& runs, const std::vector<int>& slotOrder) const;
    // The whole input file.
    QByteArray fileText() const;
    // The indexes of all runs, and of all slots.
    std::vector<int> allRuns() const;
    std::vector<int> allSlots() const;

    int runCount = 0;
    std::vector<RandomSlot> series; // and other slots among them
    // The numbers from 0 on in any order, one for each slot.
    std::vector<int> shuffledSlots;
};

#endif // TESTS_ANNUALIZE_RANDOMCASE_H
