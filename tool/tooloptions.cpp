#include "tool/tooloptions.h"

#include <QCommandLineOption>
#include <QCommandLineParser>

#include "annualize/months.h"
#include "check/finding.h"
#include "tool/terminal.h"

namespace {

const QString kHelp =
    QStringLiteral("Usage: htstool COMMAND [OPTIONS] FILE...\n"
                   "Says what is in an HTS file.\n"
                   "\n"
                   "Commands:\n"
                   "  check    report what is wrong with a file, or may not be what is meant\n"
                   "  explain  say what the code of a finding means, and what to do\n"
                   "  export   write the values of a file as comma-separated values\n"
                   "\n"
                   "Options:\n"
                   "  -h, --help     Show this text; after a command, its options.\n"
                   "  -v, --version  Show the version.\n");

const QString kCheckHelp = QStringLiteral(
    "Usage: htstool check [OPTIONS] FILE...\n"
    "Reports what is wrong with HTS files, or may not be what is meant, one finding on a line:\n"
    "FILE:LINE: severity: text [code]. FILE may be - for the standard input.\n"
    "\n"
    "Options:\n"
    "  -c, --control METHODS   Method control file; without it methods are not judged.\n"
    "  -y, --end-month MONTH   Month that each year ends with, 1 to 12; 12 if not given.\n"
    "  -f, --format FORMAT     text, or json for one JSON document; text if not given.\n"
    "      --counts OUT.csv    Write the timesteps and missing values of each year of each slot.\n"
    "  -h, --help              Show this text.\n"
    "\n"
    "Exit code: 0 for nothing worse than notes, 1 for warnings, 2 for an error (a conversion\n"
    "fails or never ends), 3 for wrong usage, or a file or report that\n"
    "cannot be opened, read or written.\n");

const QString kExplainHelp = QStringLiteral(
    "Usage: htstool explain CODE...\n"
    "       htstool explain --all\n"
    "Says what the codes of findings mean, and what to do.\n"
    "\n"
    "Options:\n"
    "  -a, --all            Explain all codes, by topic.\n"
    "  -f, --format FORMAT  text, or markdown for a table; text if not given.\n"
    "  -h, --help           Show this text.\n"
    "\n"
    "Exit code: 0 for success, 3 for wrong usage or output that cannot be written.\n");

const QString kExportHelp = QStringLiteral(
    "Usage: htstool export [OPTIONS] -o OUT.csv FILE\n"
    "Writes the values of an HTS file as comma-separated values, one on a row: run, trace,\n"
    "object, slot, units, time, value. The time is the instant that ends the timestep, without\n"
    "a zone. Missing values are empty. FILE may be - for the standard input.\n"
    "\n"
    "Options:\n"
    "  -o, --output OUT.csv  File to write; - for the standard output.\n"
    "  -w, --wide            One column for each series slot, one row for each timestep.\n"
    "  -r, --run N           Only run N, counted from 1.\n"
    "  -h, --help            Show this text.\n"
    "\n"
    "Exit code: 0 for success, 1 when text was exported as the 0 that it counts as, 2 for a\n"
    "file that cannot be read as an HTS file, 3 for wrong usage or a file that cannot be\n"
    "opened or written.\n");

const QString kVersion = QStringLiteral("htstool " TOOL_VERSION "\n");

ToolOptions invalid(const QString& text)
{
    ToolOptions options;
    options.request = ToolOptions::Request::Invalid;
    options.text = text;
    return options;
}

ToolOptions showing(const QString& text)
{
    ToolOptions options;
    options.request = ToolOptions::Request::Text;
    options.text = text;
    return options;
}

// The parser of one command, with the options that all commands have.
struct Command
{
    Command()
    {
        for (const QCommandLineOption& option : {help, version})
            parser.addOption(option);
    }

    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}};
    QCommandLineOption version{{QStringLiteral("v"), QStringLiteral("version")}};
    QCommandLineParser parser;
};

// `names` are separated by blanks. `value` names the option's value in error texts; null for none.
QCommandLineOption option(const char* names, const char* value = nullptr)
{
    return QCommandLineOption(QString::fromLatin1(names).split(QLatin1Char(' ')), QString(),
                              QString::fromLatin1(value));
}

// Returns false for a word that is not a format of the command.
bool setFormat(const QString& word, ToolOptions::Format otherFormat, const char* otherWord,
               ToolOptions& options)
{
    const bool isOther = word == QLatin1String(otherWord);
    if (isOther)
        options.format = otherFormat;
    return isOther || word == QLatin1String("text");
}

// The argument that has a month attached to -y, which a conversion would ignore; empty if none has.
QString attachedMonth(const QStringList& arguments)
{
    const QStringList options = arguments.mid(0, arguments.indexOf(QStringLiteral("--")));
    for (const QString& argument : options) {
        if (argument.startsWith(QLatin1String("-y")) && argument != QLatin1String("-y"))
            return argument;
    }
    return {};
}

ToolOptions parseCheck(const QStringList& arguments)
{
    Command command;
    QCommandLineParser& parser = command.parser;
    const QCommandLineOption control = option("c control", "METHODS");
    const QCommandLineOption month = option("y end-month", "MONTH");
    const QCommandLineOption format = option("f format", "FORMAT");
    const QCommandLineOption counts = option("counts", "OUT.csv");
    parser.addOptions({control, month, format, counts});
    const bool isValid = parser.parse(arguments);
    if (parser.isSet(command.help))
        return showing(kCheckHelp);
    if (parser.isSet(command.version))
        return showing(kVersion);
    if (!isValid)
        return invalid(parser.errorText());

    ToolOptions options;
    options.request = ToolOptions::Request::Check;
    options.files = expandedPaths(parser.positionalArguments());
    if (options.files.isEmpty())
        return invalid(QStringLiteral("check needs a file"));
    options.controlPath = parser.value(control);
    if (parser.isSet(control) && options.controlPath.isEmpty())
        return invalid(QStringLiteral("the path of the control file is empty"));
    if (const QString argument = attachedMonth(arguments); !argument.isEmpty())
        return invalid(
            QStringLiteral("\"%1\": HtsAnnualizer ignores a month that is attached to its option; "
                           "write it as the next argument")
                .arg(argument));
    if (parser.isSet(month)) {
        // -1 means December, as it does for a conversion.
        constexpr int kDecember = 12;
        options.endMonth =
            parser.value(month) == QLatin1String("-1") ? kDecember : parser.value(month).toInt();
        if (!isMonth(options.endMonth))
            return invalid(
                QStringLiteral("the month \"%1\" is not one of 1 to 12").arg(parser.value(month)));
    }
    if (parser.isSet(format) &&
        !setFormat(parser.value(format), ToolOptions::Format::Json, "json", options))
        return invalid(
            QStringLiteral("the format \"%1\" is not text or json").arg(parser.value(format)));
    options.countsPath = parser.value(counts);
    if (parser.isSet(counts) && options.countsPath.isEmpty())
        return invalid(QStringLiteral("the path for the counts is empty"));
    return options;
}

ToolOptions parseExport(const QStringList& arguments)
{
    Command command;
    QCommandLineParser& parser = command.parser;
    const QCommandLineOption output = option("o output", "OUT.csv");
    const QCommandLineOption wide = option("w wide");
    const QCommandLineOption run = option("r run", "N");
    parser.addOptions({output, wide, run});
    const bool isValid = parser.parse(arguments);
    if (parser.isSet(command.help))
        return showing(kExportHelp);
    if (parser.isSet(command.version))
        return showing(kVersion);
    if (!isValid)
        return invalid(parser.errorText());

    ToolOptions options;
    options.request = ToolOptions::Request::Export;
    options.files = expandedPaths(parser.positionalArguments());
    if (options.files.size() != 1)
        return invalid(QStringLiteral("export needs one file"));
    options.outputPath = parser.value(output);
    if (options.outputPath.isEmpty())
        return invalid(QStringLiteral("export needs a file to write, with -o"));
    options.isWide = parser.isSet(wide);
    if (parser.isSet(run)) {
        options.run = parser.value(run).toInt();
        if (options.run < 1)
            return invalid(
                QStringLiteral("\"%1\" is not the number of a run").arg(parser.value(run)));
    }
    return options;
}

ToolOptions parseExplain(const QStringList& arguments)
{
    Command command;
    QCommandLineParser& parser = command.parser;
    const QCommandLineOption all = option("a all");
    const QCommandLineOption format = option("f format", "FORMAT");
    parser.addOptions({all, format});
    const bool isValid = parser.parse(arguments);
    if (parser.isSet(command.help))
        return showing(kExplainHelp);
    if (parser.isSet(command.version))
        return showing(kVersion);
    if (!isValid)
        return invalid(parser.errorText());

    ToolOptions options;
    options.request = ToolOptions::Request::Explain;
    options.codes = parser.positionalArguments();
    options.isForAll = parser.isSet(all);
    if (options.isForAll != options.codes.isEmpty())
        return invalid(QStringLiteral("explain needs either codes or --all"));
    for (const QString& code : qAsConst(options.codes)) {
        if (findFindingKind(code) == nullptr)
            return invalid(
                QStringLiteral("\"%1\" is not a code; htstool explain --all lists them").arg(code));
    }
    if (parser.isSet(format) &&
        !setFormat(parser.value(format), ToolOptions::Format::Markdown, "markdown", options))
        return invalid(
            QStringLiteral("the format \"%1\" is not text or markdown").arg(parser.value(format)));
    return options;
}

struct ToolCommand
{
    const char* name;
    ToolOptions (*parse)(const QStringList& arguments);
};

const ToolCommand kCommands[] = {
    {"check", parseCheck}, {"explain", parseExplain}, {"export", parseExport}};

} // namespace

ToolOptions parseToolOptions(const QStringList& arguments)
{
    const QString command = arguments.value(1);
    if (command == QLatin1String("-h") || command == QLatin1String("--help"))
        return showing(kHelp);
    if (command == QLatin1String("-v") || command == QLatin1String("--version"))
        return showing(kVersion);
    // The parser ignores the first argument, which should be the program's name: here the command.
    for (const ToolCommand& known : kCommands) {
        if (command == QLatin1String(known.name))
            return known.parse(arguments.mid(1));
    }
    return invalid(
        command.isEmpty()
            ? QStringLiteral("no command is given")
            : QStringLiteral("\"%1\" is not one of the commands check, explain and export")
                  .arg(command));
}
