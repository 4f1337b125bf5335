#include "tool/tooloptions.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <QCommandLineOption>
#include <QCommandLineParser>

#include "annualize/months.h"
#include "check/findinglist.h"
#include "check/nearwords.h"
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
    "  -f, --format FORMAT     text, json, sarif (2.1.0), or github for its workflow commands;\n"
    "                          text if not given.\n"
    "  -a, --all               Report each finding, as it is found; without it ten of each code\n"
    "                          for each file, by line.\n"
    "      --ignore CODES      Leave out the findings with these codes, separated by commas.\n"
    "      --fail-on WHAT      What exit code 1 is for: note, warning or error (findings that\n"
    "                          severe or worse) or codes, separated by commas; warning if not\n"
    "                          given.\n"
    "      --max-missing MAX   How many values a year may lack: a number, a percentage such as\n"
    "                          5%, or wmo: a month that lacks 11 days, or 5 in a row, is missing,\n"
    "                          and so is its year. Years that lack more are warnings.\n"
    "      --sentinel VALUE    A number that marks missing values in the files, besides the known\n"
    "                          ones such as -999; may be given more than once.\n"
    "      --counts OUT.csv    Write what each annual value rests on: the timesteps and missing\n"
    "                          values of each year of each slot, the result and more.\n"
    "  -h, --help              Show this text.\n"
    "\n"
    "Exit code: 0 for nothing worse than notes, 1 for warnings (or see --fail-on), 2 for an error\n"
    "(a conversion fails or never ends), 3 for wrong usage, or a file or report that\n"
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
    "      --tables          Instead of the series all other slots: a row for each scalar, and "
    "for\n"
    "                        each row of a table.\n"
    "      --columns LIST    More columns, separated by commas: object_type, slot_type, scale,\n"
    "                        method, begin (of the timestep), year (that it ends in). A wide "
    "table\n"
    "                        takes begin and year.\n"
    "  -r, --run N           Only run N, counted from 1.\n"
    "      --safe            Write an apostrophe before texts that spreadsheets take for "
    "formulas.\n"
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

bool isSet(const QCommandLineParser& parser, const char* name)
{
    return parser.isSet(QString::fromLatin1(name));
}

QString valueOf(const QCommandLineParser& parser, const char* name)
{
    return parser.value(QString::fromLatin1(name));
}

// The functions below return what is wrong, or an empty text.

QString readPath(const QCommandLineParser& parser, const char* name, const char* what,
                 QString& path)
{
    path = valueOf(parser, name);
    return isSet(parser, name) && path.isEmpty() ? worded("the path %1 is empty", what) : QString();
}

struct FormatName
{
    const char* word;
    ToolOptions::Format format;
};

QString readFormat(const QCommandLineParser& parser, const std::vector<FormatName>& formats,
                   ToolOptions& options)
{
    if (!isSet(parser, "format"))
        return {};
    const QString word = valueOf(parser, "format");
    QStringList words;
    for (const FormatName& name : formats) {
        if (word == QLatin1String(name.word)) {
            options.format = name.format;
            return {};
        }
        words.append(QString::fromLatin1(name.word));
    }
    const QString last = words.takeLast();
    return worded("the format \"%1\" is not %2 or %3", word, words.join(QLatin1String(", ")), last);
}

QString unknownCode(const QString& code)
{
    const FindingKind* nearest = nearestFindingKind(code);
    return nearest == nullptr
               ? worded("\"%1\" is not a code; htstool explain --all lists them", code)
               : worded("\"%1\" is not a code; the nearest is \"%2\"", code, nearest->code);
}

QString unknownSeverityOrCode(const QString& word)
{
    std::vector<QLatin1String> severities;
    for (const Severity severity : {Severity::Note, Severity::Warning, Severity::Error})
        severities.emplace_back(severityName(severity));
    const QLatin1String nearest = nearestWord(word, severities);
    return nearest.isEmpty() ? unknownCode(word)
                             : worded("\"%1\" is not a code; the nearest is \"%2\"", word, nearest);
}

// The words of a comma-separated list, which may be given in parts.
QStringList listOf(const QCommandLineParser& parser, const char* name)
{
    QStringList list;
    for (const QString& part : parser.values(QString::fromLatin1(name))) {
        for (const QString& word : part.split(QLatin1Char(',')))
            list.append(word.trimmed());
    }
    return list;
}

QString readIgnored(const QCommandLineParser& parser, ToolOptions& options)
{
    for (const QString& code : listOf(parser, "ignore")) {
        const FindingKind* kind = findFindingKind(code);
        if (kind == nullptr)
            return unknownCode(code);
        if (kind->severity == Severity::Error)
            return worded("\"%1\" is an error, which cannot be ignored", code);
        options.ignored.insert(kind);
    }
    return {};
}

QString readFailing(const QCommandLineParser& parser, ToolOptions& options)
{
    if (!isSet(parser, "fail-on"))
        return {};
    options.failing.clear();
    for (const QString& word : listOf(parser, "fail-on")) {
        FindingKinds kinds;
        for (const Severity severity : {Severity::Note, Severity::Warning, Severity::Error}) {
            if (word == QLatin1String(severityName(severity)))
                kinds = findingKindsFrom(severity);
        }
        if (const FindingKind* kind = findFindingKind(word))
            kinds = {kind};
        if (kinds.empty())
            return unknownSeverityOrCode(word);
        options.failing.insert(kinds.begin(), kinds.end());
    }
    return {};
}

QString readMonth(const QCommandLineParser& parser, ToolOptions& options)
{
    if (!isSet(parser, "end-month"))
        return {};
    // -1 means December, as it does for a conversion.
    constexpr int kDecember = 12;
    const QString month = valueOf(parser, "end-month");
    options.endMonth = month == QLatin1String("-1") ? kDecember : month.toInt();
    return isMonth(options.endMonth) ? QString()
                                     : worded("the month \"%1\" is not one of 1 to 12", month);
}

QString readMaxMissing(const QCommandLineParser& parser, ToolOptions& options)
{
    if (!isSet(parser, "max-missing"))
        return {};
    const QString text = valueOf(parser, "max-missing");
    const std::optional<MaxMissing> maxMissing = MaxMissing::fromText(text);
    if (!maxMissing)
        return worded("\"%1\" is not a number of values, a percentage such as 5% or wmo", text);
    options.maxMissing = *maxMissing;
    return {};
}

QString readSentinels(const QCommandLineParser& parser, ToolOptions& options)
{
    for (const QString& text : parser.values(QStringLiteral("sentinel"))) {
        bool isNumber = false;
        const double number = text.toDouble(&isNumber);
        if (!isNumber || !std::isfinite(number))
            return worded("the sentinel \"%1\" is not a number", text);
        options.sentinels.push_back(number);
    }
    return {};
}

QString readCheck(const QCommandLineParser& parser, ToolOptions& options)
{
    options.files = expandedPaths(parser.positionalArguments());
    if (options.files.isEmpty())
        return QStringLiteral("check needs a file");
    QString problem = readPath(parser, "control", "of the control file", options.controlPath);
    if (problem.isEmpty())
        problem = readMonth(parser, options);
    if (problem.isEmpty())
        problem = readFormat(parser,
                             {{"text", ToolOptions::Format::Text},
                              {"json", ToolOptions::Format::Json},
                              {"sarif", ToolOptions::Format::Sarif},
                              {"github", ToolOptions::Format::Github}},
                             options);
    if (problem.isEmpty())
        problem = readMaxMissing(parser, options);
    if (problem.isEmpty())
        problem = readSentinels(parser, options);
    options.hasAllFindings = isSet(parser, "all");
    if (problem.isEmpty())
        problem = readIgnored(parser, options);
    if (problem.isEmpty())
        problem = readFailing(parser, options);
    return problem.isEmpty() ? readPath(parser, "counts", "for the counts", options.countsPath)
                             : problem;
}

QString unknownColumn(const QString& word)
{
    QStringList words;
    for (const ExportColumnName& name : kExportColumns)
        words.append(name.word);
    return worded("\"%1\" is not one of the columns %2", word, words.join(QLatin1String(", ")));
}

QString readColumns(const QCommandLineParser& parser, ExportOptions& options)
{
    for (const QString& word : listOf(parser, "columns")) {
        const auto name =
            std::find_if(kExportColumns.begin(), kExportColumns.end(),
                         [&word](const ExportColumnName& known) { return word == known.word; });
        if (name == kExportColumns.end())
            return unknownColumn(word);
        if (std::find(options.columns.begin(), options.columns.end(), &*name) !=
            options.columns.end())
            return worded("the column \"%1\" is given twice", word);
        if (options.form == ExportOptions::Form::Wide && !name->isOfStep)
            return worded("a wide table has no column \"%1\"", word);
        options.columns.push_back(&*name);
    }
    return {};
}

QString readTable(const QCommandLineParser& parser, ExportOptions& options)
{
    if (isSet(parser, "wide"))
        options.form = ExportOptions::Form::Wide;
    if (!isSet(parser, "tables"))
        return readColumns(parser, options);
    options.form = ExportOptions::Form::Tables;
    return isSet(parser, "wide") || isSet(parser, "columns")
               ? QStringLiteral("--tables goes with neither --wide nor --columns")
               : QString();
}

QString readExport(const QCommandLineParser& parser, ToolOptions& options)
{
    options.files = expandedPaths(parser.positionalArguments());
    if (options.files.size() != 1)
        return QStringLiteral("export needs one file");
    options.outputPath = valueOf(parser, "output");
    if (options.outputPath.isEmpty())
        return QStringLiteral("export needs a file to write, with -o");
    const QString run = valueOf(parser, "run");
    options.table.run = run.toInt();
    if (isSet(parser, "run") && options.table.run < 1)
        return worded("\"%1\" is not the number of a run", run);
    options.table.isSafe = isSet(parser, "safe");
    return readTable(parser, options.table);
}

QString readExplain(const QCommandLineParser& parser, ToolOptions& options)
{
    options.codes = parser.positionalArguments();
    options.isForAll = isSet(parser, "all");
    if (options.isForAll != options.codes.isEmpty())
        return QStringLiteral("explain needs either codes or --all");
    for (const QString& code : qAsConst(options.codes)) {
        if (findFindingKind(code) == nullptr)
            return unknownCode(code);
    }
    return readFormat(
        parser, {{"text", ToolOptions::Format::Text}, {"markdown", ToolOptions::Format::Markdown}},
        options);
}

// An option: its names, separated by blanks, and the name of its value in error texts; null for
// none.
struct OptionNames
{
    const char* names;
    const char* value;
};

struct Command
{
    const char* name;
    ToolOptions::Request request;
    const QString& help;
    std::vector<OptionNames> options;
    QString (*read)(const QCommandLineParser& parser, ToolOptions& options);
};

const std::vector<Command>& commands()
{
    static const std::vector<Command> kCommands = {
        {"check",
         ToolOptions::Request::Check,
         kCheckHelp,
         {{"c control", "METHODS"},
          {"y end-month", "MONTH"},
          {"f format", "FORMAT"},
          {"a all", nullptr},
          {"ignore", "CODES"},
          {"fail-on", "WHAT"},
          {"max-missing", "MAX"},
          {"sentinel", "VALUE"},
          {"counts", "OUT.csv"}},
         readCheck},
        {"explain",
         ToolOptions::Request::Explain,
         kExplainHelp,
         {{"a all", nullptr}, {"f format", "FORMAT"}},
         readExplain},
        {"export",
         ToolOptions::Request::Export,
         kExportHelp,
         {{"o output", "OUT.csv"},
          {"w wide", nullptr},
          {"tables", nullptr},
          {"columns", "LIST"},
          {"r run", "N"},
          {"safe", nullptr}},
         readExport},
    };
    return kCommands;
}

bool takesValue(const std::vector<OptionNames>& options, const QString& name)
{
    return std::any_of(options.begin(), options.end(), [&name](const OptionNames& option) {
        return option.value != nullptr &&
               QString::fromLatin1(option.names).split(QLatin1Char(' ')).contains(name);
    });
}

// The first argument that has a month attached to -y, which a conversion would ignore; empty if
// none has. The values of options, which may look like it, are skipped as the parser takes them.
QString attachedMonth(const std::vector<OptionNames>& options, const QStringList& arguments)
{
    for (int i = 1; i < arguments.size() && arguments.at(i) != QLatin1String("--"); ++i) {
        const QString& argument = arguments.at(i);
        int letter = 1;
        while (letter < argument.size() && !takesValue(options, argument.mid(letter, 1)))
            ++letter;
        const bool isLong = argument.startsWith(QLatin1String("--"));
        const bool isShort = !isLong && argument.startsWith(QLatin1Char('-'));
        if (isShort && letter < argument.size() - 1 && argument.at(letter) == QLatin1Char('y'))
            return argument;
        const bool isValueNext = isLong ? takesValue(options, argument.mid(2))
                                        : isShort && letter == argument.size() - 1;
        i += isValueNext ? 1 : 0;
    }
    return {};
}

// The parser ignores the first argument, which should be the program's name: here the command.
ToolOptions parse(const Command& command, const QStringList& arguments)
{
    QCommandLineParser parser;
    std::vector<OptionNames> all = command.options;
    all.insert(all.end(), {{"h help", nullptr}, {"v version", nullptr}});
    for (const OptionNames& option : all)
        parser.addOption(
            QCommandLineOption(QString::fromLatin1(option.names).split(QLatin1Char(' ')), QString(),
                               QString::fromLatin1(option.value)));
    const bool isValid = parser.parse(arguments);
    if (isSet(parser, "help"))
        return showing(command.help);
    if (isSet(parser, "version"))
        return showing(kVersion);
    if (!isValid)
        return invalid(parser.errorText());
    const QString attached = attachedMonth(command.options, arguments);
    if (!attached.isEmpty())
        return invalid(
            worded("\"%1\": HtsAnnualizer ignores a month that is attached to its option; "
                   "write it as the next argument",
                   attached));
    ToolOptions options;
    options.request = command.request;
    const QString problem = command.read(parser, options);
    return problem.isEmpty() ? options : invalid(problem);
}

} // namespace

ToolOptions parseToolOptions(const QStringList& arguments)
{
    const QString word = arguments.value(1);
    if (word == QLatin1String("-h") || word == QLatin1String("--help"))
        return showing(kHelp);
    if (word == QLatin1String("-v") || word == QLatin1String("--version"))
        return showing(kVersion);
    for (const Command& command : commands()) {
        if (word == QLatin1String(command.name))
            return parse(command, arguments.mid(1));
    }
    return invalid(
        word.isEmpty()
            ? QStringLiteral("no command is given")
            : worded("\"%1\" is not one of the commands check, explain and export", word));
}
