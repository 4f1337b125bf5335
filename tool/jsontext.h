#ifndef TOOL_JSONTEXT_H
#define TOOL_JSONTEXT_H

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QString>

// Parts of JSON documents that are written piece by piece, each as a line.

inline QString jsonKey(const char* name)
{
    return QString::fromLatin1(name);
}

// The value as JSON on one line.
inline QByteArray jsonText(const QJsonValue& value)
{
    return QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact).mid(1).chopped(1);
}

// "NAME":VALUE
inline QByteArray jsonMember(const char* name, const QJsonValue& value)
{
    return '"' + QByteArray(name) + "\":" + jsonText(value);
}

#endif // TOOL_JSONTEXT_H
