#ifndef TOOL_TOOLOPTIONS_H
#define TOOL_TOOLOPTIONS_H

#include <vector>

#include <QString>
#include <QStringList>

#include "check/maxmissing.h"

// What the command line asks for.
struct ToolOptions
{
    enum class Request {
        Text,    // help or version, in `text`
        Invalid, // what is wrong with the arguments, in `text`
        Check,
        Export,
        Explain,
    };
    enum class Format { Text, Json, Markdown };

    Request request = Request::Invalid;
    QString text;

    // Input files; "-" is the standard input. One for an export, one or more for a check.
    QStringList files;

    // For a check. A path that is not given is empty.
    QString controlPath;
    int endMonth = 12; // 1 to 12
    MaxMissing maxMissing;
    Format format = Format::Text;
    QString countsPath;
    std::vector<double> sentinels; // finite

    // For an export.
    QString outputPath; // "-" is the standard output
    bool isWide = false;
    int run = 0; // counted from 1; 0 for all

    // For an explanation.
    QStringList codes;
    bool isForAll = false;
};

// Parses the arguments; the first is the program's name.
ToolOptions parseToolOptions(const QStringList& arguments);

#endif // TOOL_TOOLOPTIONS_H
