#ifndef TESTS_HTS_HTSTEXT_H
#define TESTS_HTS_HTSTEXT_H

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>

// The pieces of small HTS files as texts, made without the code under test. What tests don't vary
// stands only here. And what its reader says of those that are bad.

extern const char kBadPackagePreamble[];
extern const char kBadRunPreamble[];
extern const char kBadSlotPreamble[];
extern const char kBadColumnHeader[];

QByteArray packageText(int runs);
// The preamble and the timesteps of a run. Lines in `moreKeys` come after the usual ones.
QByteArray runHead(const QStringList& timesteps, const QByteArray& unit = "month",
                   const QByteArray& moreKeys = {});
QByteArray runText(const QStringList& timesteps, const QByteArray& unit,
                   const QByteArray& slotTexts, const QByteArray& moreKeys = {});
// The preamble of the slot "Object.Slot" of a reservoir, or of "Type/Object.Slot".
QByteArray slotPreamble(const QByteArray& name, const QByteArray& type = "SeriesSlot");
// `lines`: units, scale, method if any, and values, separated by semicolons.
QByteArray slotText(const QByteArray& name, const QByteArray& lines,
                    const QByteArray& type = "SeriesSlot");
// With two rows.
QByteArray tableText(const QByteArray& name);
// `first`, `first` + 1 ... as lines of slotText, with a semicolon before each.
QByteArray counted(int first, int count);

// The end of the given hour, 1 to 24, of a day.
QString timestepText(const QDate& day, int hour);
QStringList monthlyTimesteps(int year, int month, int count);
QStringList dailyTimesteps(const QDate& first, int count, int daysPerStep = 1);
QStringList hourlyTimesteps(const QDate& day, int firstHour, int count);

// Texts that are separated by '|'.
QStringList texts(const char* joined);

QDateTime utc(int year, int month, int day, int hour = 0, int minute = 0);

#endif // TESTS_HTS_HTSTEXT_H
