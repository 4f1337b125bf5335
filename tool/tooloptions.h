#ifndef TOOL_TOOLOPTIONS_H
#define TOOL_TOOLOPTIONS_H

#include <vector>

#include <QString>
#include <QStringList>

#include "check/finding.h"
#include "check/maxmissing.h"
#include "compare/valuecompare.h"
#include "exchange/csvexport.h"
#include "exchange/importoptions.h"
#include "report/pageobserver.h"

// What the command line asks for.
struct ToolOptions
{
    enum class Request {
        Text,    // help or version, in `text`
        Invalid, // what is wrong with the arguments, in `text`
        Check,
        Diff,
        Export,
        Import,
        Explain,
        Report,
    };
    enum class Format { Text, Json, Sarif, Github, Markdown };

    Request request = Request::Invalid;
    QString text;

    // Input files; "-" is the standard input. One or more for a check, two for a comparison, else
    // one.
    QStringList files;

    // For a check, and some for a report. A path that is not given is empty.
    QString controlPath;
    int endMonth = 12; // 1 to 12
    MaxMissing maxMissing;
    Format format = Format::Text; // not Markdown
    bool hasAllFindings = false;
    FindingKinds ignored; // none is an error
    // The kinds for which the exit code is kWarnings; one for errors is kErrors all the same.
    FindingKinds failing = findingKindsFrom(Severity::Warning);
    QString countsPath;
    std::vector<double> sentinels; // finite

    // For a comparison, with the format Text or Json.
    Tolerance tolerance;

    // For an export or a report.
    QString outputPath; // "-" is the standard output
    // For a report.
    ShownSlots shownSlots;
    QString resultPath;
    // For an export.
    ExportOptions table;

    // For an import; without the name, date and path that are not options.
    ImportOptions importOptions;

    // For an explanation, with the format Text or Markdown.
    QStringList codes;
    bool isForAll = false;
};

// Parses the arguments; the first is the program's name.
ToolOptions parseToolOptions(const QStringList& arguments);

#endif // TOOL_TOOLOPTIONS_H
