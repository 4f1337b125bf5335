#ifndef HTS_DATETIMETEXT_H
#define HTS_DATETIMETEXT_H

#include <QDateTime>
#include <QString>

// Date-times in an HTS file are "yyyy-M-d h:mm", and midnight is the hour 24 of the day that it
// ends: the instant 2001-01-01 00:00 is written 2000-12-31 24:00.
//
// The texts name no time zone. Inside the program every date-time is held in UTC, so that a series
// with a step in a daylight-saving gap of the host means the same on every host. They do not depend
// on the host's locale either: digits are ASCII, read and written.

// Whether `line` is a timestep line: of the shape "yyyy-M-d h:mm", month, day and hour of one or
// two digits. Digits of any script are accepted, and the date need not exist: a timestep line is
// not always one that textToDateTime can read.
bool isTimestepText(const QString& line);

// The text of `dateTime`, with midnight as 24:00 of the day before; seconds are left out. An
// invalid date-time gives an empty text.
QString dateTimeToText(const QDateTime& dateTime);

// The instant of `text`, in UTC. 2000-12-31 24:00, 2001-1-1 0:00 and 2001-1-1 00:00 are the same
// instant. A text that is not a date-time gives an invalid QDateTime.
QDateTime textToDateTime(const QString& text);

#endif // HTS_DATETIMETEXT_H
