#include "tool/tooloptions.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include <QCommandLineOption>
#include <QCommandLineParser>

#include "annualize/months.h"
#include "check/findinglist.h"
#include "check/nearwords.h"
#include "tool/terminal.h"
#include "tool/toolfiles.h"

namespace {

const QString kHelp =
    QStringLiteral("Usage: htstool COMMAND [OPTIONS] FILE...\n"
                   "Says what is in an HTS file.\n"
                   "\n"
                   "Commands:\n"
                   "  check    report what is wrong with a file, or may not be what is meant\n"
                   "  diff     report what differs between two files\n"
                   "  explain  say what the code of a finding means, and what to do\n"
                   "  export   write the values of a file as comma-separated values\n"
                   "  import   make a file of comma-separated values\n"
                   "  report   write a page that shows the annual values and what they rest on\n"
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

const QString kDiffHelp = QStringLiteral(
    "Usage: htstool diff [OPTIONS] OLD NEW\n"
    "Reports what differs between two HTS files: runs, timesteps, slots and their lines, values;\n"
    "one difference on a line, FILE:LINE: text. OLD or NEW may be - for the standard input.\n"
    "\n"
    "Options:\n"
    "  -t, --tolerance ABS,REL  Numbers are equal that differ by at most ABS, or by REL times the\n"
    "                           larger of the two; 0,0 if not given. ABS alone is ABS,0.\n"
    "  -f, --format FORMAT      text or json; text if not given.\n"
    "  -h, --help               Show this text.\n"
    "\n"
    "Exit code: 0 for files without a difference, 1 for differences, 2 for a file that cannot be\n"
    "read as an HTS file, 3 for wrong usage, or a file or report that cannot be opened, read or\n"
    "written.\n");

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

const QString kImportHelp = QStringLiteral(
    "Usage: htstool import [OPTIONS] -o OUT.hts TABLE\n"
    "Makes an HTS file of comma-separated values: of what export writes, or of another table with\n"
    "a column for each slot or a row for each value. What was understood of it is shown on the\n"
    "standard error. TABLE may be - for the standard input.\n"
    "\n"
    "Options:\n"
    "  -o, --output OUT.hts    File to write; - for the standard output.\n"
    "      --time NAME         Column of the time; given more than once, columns that make it.\n"
    "      --date-format FORM  How times are written, such as D/M/YYYY or \"YYYY-MM-DD hh:mm\".\n"
    "      --stamp WHEN        Whether times are the begin or the end of steps.\n"
    "      --step STEP         How long steps are, such as day or \"6 hour\".\n"
    "      --fill              Make missing steps missing values.\n"
    "      --missing WORD      What marks a missing value, besides NaN and nothing; may be given\n"
    "                          more than once.\n"
    "      --separator CHAR    What separates columns: a character, tab or blank.\n"
    "      --decimal SIGN      Whether numbers have a decimal point or comma.\n"
    "      --comment TEXT      What lines of comment begin with; # if not given.\n"
    "      --header LINES      What the first lines are, separated by commas: names, objects,\n"
    "                          units, skip; or none. names if not given.\n"
    "      --column NAME       Column to import, if not all; NAME=\"Object.Slot [units]\" names\n"
    "                          its slot. May be given more than once.\n"
    "      --as ROLE=NAME      Column of the run, trace, object, slot, object_type, slot_type,\n"
    "                          units, scale, method, time or value, if it has another name.\n"
    "      --object NAME       Object of the slots for which the table has none.\n"
    "      --slot NAME         Name of the slot if the table has none.\n"
    "      --units UNITS       Units of the slots for which the table has none.\n"
    "      --object-type TYPE  Type of the objects for which the table has none; Imported if not\n"
    "                          given.\n"
    "  -h, --help              Show this text.\n"
    "\n"
    "Exit code: 0 for success, 2 for a table that cannot be imported as it is, 3 for wrong usage\n"
    "or a file that cannot be opened, read or written.\n");

const QString kReportHelp = QStringLiteral(
    "Usage: htstool report [OPTIONS] -c METHODS FILE\n"
    "Writes a page in HTML that shows what a conversion makes of an HTS file: the verdict, the\n"
    "findings, the years, and for each slot a chart and a table of its annual values. It needs no\n"
    "network and no scripts. FILE may be - for the standard input.\n"
    "\n"
    "Options:\n"
    "  -c, --control METHODS     Method control file.\n"
    "  -y, --end-month MONTH     Month that each year ends with, 1 to 12; 12 if not given.\n"
    "  -o, --output REPORT.html  File to write; - for the standard output. If not given, FILE\n"
    "                            with .html in place of what follows the last dot of its name.\n"
    "      --result ANNUAL.hts   Show the values of this result, and how they differ from what a\n"
    "                            conversion gives.\n"
    "      --slots PATTERN       Show the slots whose name Object.Slot is like this: * stands for\n"
    "                            any text, ? for any character.\n"
    "      --all-slots           Show all slots; without it the first 200.\n"
    "      --max-missing MAX     How many values a year may lack before it is marked: a number, a\n"
    "                            percentage such as 5%, or wmo, as for check; none if not given.\n"
    "      --sentinel VALUE      A number that marks missing values, besides the known ones; may\n"
    "                            be given more than once.\n"
    "  -h, --help                Show this text.\n"
    "\n"
    "Exit code: 0 for nothing worse than notes, 1 for warnings, 2 for an error (a conversion\n"
    "fails or never ends; the page says why), 3 for wrong usage, or a file that cannot be\n"
    "opened, read or written.\n");

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
    options.endMonth = month == QLatin1String("-1") ? kDecember : month.trimmed().toInt();
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

QString readTolerance(const QCommandLineParser& parser, Tolerance& tolerance)
{
    if (!isSet(parser, "tolerance"))
        return {};
    const QString text = valueOf(parser, "tolerance");
    std::vector<double> numbers;
    for (const QString& part : text.split(QLatin1Char(','))) {
        bool isNumber = false;
        const double number = part.toDouble(&isNumber);
        if (isNumber && std::isfinite(number) && number >= 0)
            numbers.push_back(number);
        else
            return worded("the tolerance \"%1\" is not one or two numbers from 0 on: ABS,REL",
                          text);
    }
    if (numbers.size() > 2)
        return worded("the tolerance \"%1\" has more than two numbers: ABS,REL", text);
    numbers.resize(2);
    tolerance = {numbers[0], numbers[1]};
    return {};
}

QString readDiff(const QCommandLineParser& parser, ToolOptions& options)
{
    options.files = expandedPaths(parser.positionalArguments());
    if (options.files.size() != 2)
        return QStringLiteral("diff needs two files");
    if (options.files.count(kStandardStream) > 1)
        return QStringLiteral("only one of the files can be the standard input");
    const QString problem = readTolerance(parser, options.tolerance);
    return problem.isEmpty() ? readFormat(parser,
                                          {{"text", ToolOptions::Format::Text},
                                           {"json", ToolOptions::Format::Json}},
                                          options)
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
    options.table.run = run.trimmed().toInt();
    if (isSet(parser, "run") && options.table.run < 1)
        return worded("\"%1\" is not the number of a run", run);
    options.table.isSafe = isSet(parser, "safe");
    return readTable(parser, options.table);
}

QString readTime(const QCommandLineParser& parser, ImportOptions& options)
{
    options.timeColumns = parser.values(QStringLiteral("time"));
    const QString form = valueOf(parser, "date-format");
    if (isSet(parser, "date-format")) {
        options.timePattern = TimePattern::fromText(form);
        if (!options.timePattern)
            return worded("the date format \"%1\" is not made of YYYY, MM, DD, hh, mm and ss",
                          form);
    }
    const QString stamp = valueOf(parser, "stamp");
    if (stamp == QLatin1String("begin") || stamp == QLatin1String("end"))
        options.stamp = stamp == QLatin1String("begin") ? Stamp::Begin : Stamp::End;
    else if (isSet(parser, "stamp"))
        return worded("the stamp \"%1\" is not begin or end", stamp);
    const QString step = valueOf(parser, "step");
    if (isSet(parser, "step")) {
        const std::optional<TableStep> known = TableStep::fromText(step);
        if (!known)
            return worded("the step \"%1\" is not minute, hour, day, week, month or year, with a "
                          "number before it",
                          step);
        options.step = *known;
    }
    options.isFilled = isSet(parser, "fill");
    return {};
}

QString readSeparators(const QCommandLineParser& parser, ImportOptions& options)
{
    if (isSet(parser, "separator")) {
        const QString text = valueOf(parser, "separator");
        const QChar c = text == QLatin1String("tab")     ? QLatin1Char('\t')
                        : text == QLatin1String("blank") ? QLatin1Char(' ')
                        : text.size() == 1               ? text.at(0)
                                                         : QLatin1Char('"');
        options.separator = c.toLatin1();
        if (c.unicode() >= 0x80 || c.isLetterOrNumber() || c.isNull() ||
            QLatin1String("\"\r\n").contains(c))
            return worded("the separator \"%1\" is not a sign of ASCII, tab or blank", text);
    }
    const QString decimal = valueOf(parser, "decimal");
    if (decimal == QLatin1String("comma") || decimal == QLatin1String("point"))
        options.hasDecimalComma = decimal == QLatin1String("comma");
    else if (isSet(parser, "decimal"))
        return worded("the decimal sign \"%1\" is not point or comma", decimal);
    if (isSet(parser, "comment"))
        options.comment = valueOf(parser, "comment");
    options.missingWords = parser.values(QStringLiteral("missing"));
    return {};
}

QString readHeader(const QCommandLineParser& parser, ImportOptions& options)
{
    if (!isSet(parser, "header"))
        return {};
    options.header.clear();
    const QStringList words = listOf(parser, "header");
    if (words == QStringList{QStringLiteral("none")})
        return {};
    const QStringList kinds{QStringLiteral("names"), QStringLiteral("objects"),
                            QStringLiteral("units"), QStringLiteral("skip")};
    for (const QString& word : words) {
        if (!kinds.contains(word))
            return worded("a line of the header is \"%1\", not names, objects, units or skip",
                          word);
        options.header.append(static_cast<HeaderLine>(kinds.indexOf(word)));
    }
    return {};
}

QString readRoles(const QCommandLineParser& parser, ImportOptions& options)
{
    options.valueColumns = parser.values(QStringLiteral("column"));
    for (const QString& text : parser.values(QStringLiteral("as"))) {
        const QString word = text.section(QLatin1Char('='), 0, 0);
        bool isKnown = false;
        for (std::size_t i = 0; i < kColumnRoles; ++i) {
            const auto role = static_cast<ColumnRole>(i);
            if (word == columnName(role) && role != ColumnRole::Begin && role != ColumnRole::Year) {
                options.roleColumns[i] = text.section(QLatin1Char('='), 1);
                isKnown = !options.roleColumns[i].isEmpty();
            }
        }
        if (!isKnown)
            return worded("\"%1\" is not a role and the name of its column, such as value=Flow",
                          text);
    }
    for (const auto& [name, text] : {std::pair<const char*, QString*>{"object", &options.object},
                                     {"slot", &options.slot},
                                     {"units", &options.units},
                                     {"object-type", &options.objectType}}) {
        if (isSet(parser, name))
            *text = valueOf(parser, name).trimmed();
        if (isSet(parser, name) && text->isEmpty())
            return worded("the value of --%1 is empty", name);
        if (text->contains(QLatin1Char('\n')))
            return worded("the value of --%1 has a line end", name);
    }
    return {};
}

QString readImport(const QCommandLineParser& parser, ToolOptions& options)
{
    options.files = expandedPaths(parser.positionalArguments());
    if (options.files.size() != 1)
        return QStringLiteral("import needs one table");
    options.outputPath = valueOf(parser, "output");
    if (options.outputPath.isEmpty())
        return QStringLiteral("import needs a file to write, with -o");
    QString problem;
    for (const auto read : {readTime, readSeparators, readHeader, readRoles}) {
        problem = read(parser, options.importOptions);
        if (!problem.isEmpty())
            break;
    }
    return problem;
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

// Beside the input, so that pages of many files do not overwrite each other.
QString pagePathFor(const QString& input)
{
    const auto nameStart = input.lastIndexOf(QLatin1Char('/')) + 1;
    const auto dot = input.lastIndexOf(QLatin1Char('.'));
    return input.left(dot > nameStart ? dot : input.size()) + QLatin1String(".html");
}

QString readReport(const QCommandLineParser& parser, ToolOptions& options)
{
    options.files = expandedPaths(parser.positionalArguments());
    if (options.files.size() != 1)
        return QStringLiteral("report needs one file");
    if (!isSet(parser, "control"))
        return QStringLiteral("report needs a control file, with -c");
    QString problem = readPath(parser, "control", "of the control file", options.controlPath);
    if (problem.isEmpty())
        problem = readPath(parser, "output", "of the page", options.outputPath);
    if (problem.isEmpty())
        problem = readPath(parser, "result", "of the result", options.resultPath);
    if (problem.isEmpty() && !isSet(parser, "output")) {
        options.outputPath = pagePathFor(options.files.first());
        if (options.files.first() == QLatin1String("-"))
            problem =
                QStringLiteral("a report on the standard input needs a file to write, with -o");
    }
    if (problem.isEmpty())
        problem = readMonth(parser, options);
    if (problem.isEmpty())
        problem = readMaxMissing(parser, options);
    if (isSet(parser, "slots"))
        options.shownSlots.pattern = valueOf(parser, "slots");
    if (isSet(parser, "all-slots"))
        options.shownSlots.maxCount = ShownSlots::kAll;
    return problem.isEmpty() ? readSentinels(parser, options) : problem;
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
        {"diff",
         ToolOptions::Request::Diff,
         kDiffHelp,
         {{"t tolerance", "ABS,REL"}, {"f format", "FORMAT"}},
         readDiff},
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
        {"import",
         ToolOptions::Request::Import,
         kImportHelp,
         {{"o output", "OUT.hts"},
          {"time", "NAME"},
          {"date-format", "FORM"},
          {"stamp", "WHEN"},
          {"step", "STEP"},
          {"fill", nullptr},
          {"missing", "WORD"},
          {"separator", "CHAR"},
          {"decimal", "SIGN"},
          {"comment", "TEXT"},
          {"header", "LINES"},
          {"column", "NAME"},
          {"as", "ROLE"},
          {"object", "NAME"},
          {"slot", "NAME"},
          {"units", "UNITS"},
          {"object-type", "TYPE"}},
         readImport},
        {"report",
         ToolOptions::Request::Report,
         kReportHelp,
         {{"c control", "METHODS"},
          {"y end-month", "MONTH"},
          {"o output", "REPORT.html"},
          {"result", "ANNUAL.hts"},
          {"slots", "PATTERN"},
          {"all-slots", nullptr},
          {"max-missing", "MAX"},
          {"sentinel", "VALUE"}},
         readReport},
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
    return invalid(word.isEmpty() ? QStringLiteral("no command is given")
                                  : worded("\"%1\" is not one of the commands check, diff, "
                                           "explain, export, import and report",
                                           word));
}
