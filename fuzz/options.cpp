// Any arguments of both programs. What HtsAnnualizer takes them for is what a plain reading of its
// rules gives. What htstool takes them for, written again in full, it takes for the same.
//
// Input: one argument on a line.

#include <algorithm>
#include <limits>
#include <utility>

#include <QList>
#include <QLocale>
#include <QStringList>
#include <QVector>

#include "app/options.h"
#include "app/platform.h"
#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "tool/tooloptions.h"

namespace {

QString described(const Options& options)
{
    return QStringList{QString::number(static_cast<int>(options.request)),
                       options.inputPath,
                       options.outputPath,
                       options.controlPath,
                       options.logPath,
                       QString::number(options.endMonth)}
        .join(QLatin1Char('|'));
}

// The number at the start of a text: 0 if there is none, the nearest one that an int holds.
int numberAtStart(const QByteArray& text)
{
    int i = 0;
    while (i < text.size() && (text.at(i) == ' ' || (text.at(i) >= '\t' && text.at(i) <= '\r')))
        ++i;
    const bool isNegative = i < text.size() && text.at(i) == '-';
    if (i < text.size() && (text.at(i) == '-' || text.at(i) == '+'))
        ++i;
    qint64 number = 0;
    for (; i < text.size() && text.at(i) >= '0' && text.at(i) <= '9'; ++i)
        number = std::min(10 * number + (text.at(i) - '0'), qint64(1) << 40);
    return static_cast<int>(std::clamp<qint64>(isNegative ? -number : number,
                                               std::numeric_limits<int>::min(),
                                               std::numeric_limits<int>::max()));
}

void setValue(Options& options, char letter, const QByteArray& value)
{
    const QString text = argumentText(value.constData());
    switch (letter) {
    case 'i':
        options.inputPath = text;
        break;
    case 'o':
        options.outputPath = text;
        break;
    case 'c':
        options.controlPath = text;
        break;
    case 'l':
        options.logPath = text;
        break;
    default:
        options.endMonth = numberAtStart(value);
    }
}

Options readPlainly(const QList<QByteArray>& arguments)
{
    Options options;
    char pending = 0;
    for (const QByteArray& argument : arguments) {
        const bool isOption = argument.startsWith('-') && !(pending == 'y' && argument == "-1");
        if (!isOption && pending != 0) {
            setValue(options, pending, argument);
            pending = 0;
            continue;
        }
        pending = isOption ? argument.mid(1, 1).append('\0').at(0) : '\0';
        if (pending != 0 && QByteArray("iocly").contains(pending))
            continue;
        options.request = pending == 'h'   ? Options::Request::Usage
                          : pending == 'v' ? Options::Request::Version
                                           : Options::Request::Invalid;
        break;
    }
    return options;
}

void checkProgram(const QList<QByteArray>& arguments)
{
    QVector<const char*> pointers{"HtsAnnualizer"};
    for (const QByteArray& argument : arguments)
        pointers.append(argument.constData());
    fuzz::requireEqual(QStringLiteral("options"),
                       described(parseOptions(pointers.size(), pointers.constData())),
                       described(readPlainly(arguments)));
}

QString formatWord(ToolOptions::Format format)
{
    switch (format) {
    case ToolOptions::Format::Json:
        return QStringLiteral("json");
    case ToolOptions::Format::Sarif:
        return QStringLiteral("sarif");
    case ToolOptions::Format::Github:
        return QStringLiteral("github");
    default:
        return QStringLiteral("text");
    }
}

QString codesOf(const FindingKinds& kinds)
{
    QStringList codes;
    for (const FindingKind* kind : kinds)
        codes.append(QString::fromLatin1(kind->code));
    return codes.join(QLatin1Char(','));
}

void addImport(const ImportOptions& options, QStringList& arguments)
{
    const auto add = [&arguments](const QString& option, const QString& value) {
        arguments += {option, value};
    };
    for (const QString& name : options.timeColumns)
        add(QStringLiteral("--time"), name);
    if (options.timePattern)
        add(QStringLiteral("--date-format"), options.timePattern->text());
    if (options.stamp)
        add(QStringLiteral("--stamp"),
            *options.stamp == Stamp::Begin ? QStringLiteral("begin") : QStringLiteral("end"));
    if (options.step.isKnown())
        add(QStringLiteral("--step"), options.step.text());
    if (options.isFilled)
        arguments.append(QStringLiteral("--fill"));
    for (const QString& word : options.missingWords)
        add(QStringLiteral("--missing"), word);
    if (options.separator != 0)
        add(QStringLiteral("--separator"), options.separator == '\t' ? QStringLiteral("tab")
                                           : options.separator == ' '
                                               ? QStringLiteral("blank")
                                               : QString(QLatin1Char(options.separator)));
    if (options.hasDecimalComma)
        add(QStringLiteral("--decimal"),
            *options.hasDecimalComma ? QStringLiteral("comma") : QStringLiteral("point"));
    add(QStringLiteral("--comment"), options.comment);
    QStringList lines;
    for (const HeaderLine line : options.header)
        lines.append(QStringList{QStringLiteral("names"), QStringLiteral("objects"),
                                 QStringLiteral("units"), QStringLiteral("skip")}
                         .at(static_cast<int>(line)));
    add(QStringLiteral("--header"),
        lines.isEmpty() ? QStringLiteral("none") : lines.join(QLatin1Char(',')));
    for (const QString& name : options.valueColumns)
        add(QStringLiteral("--column"), name);
    for (std::size_t i = 0; i < kColumnRoles; ++i) {
        if (!options.roleColumns[i].isEmpty())
            add(QStringLiteral("--as"),
                columnName(static_cast<ColumnRole>(i)) + QLatin1Char('=') + options.roleColumns[i]);
    }
    for (const auto& [option, text] :
         {std::pair<const char*, const QString&>{"--object", options.object},
          {"--slot", options.slot},
          {"--units", options.units},
          {"--object-type", options.objectType}}) {
        if (!text.isEmpty())
            add(QLatin1String(option), text);
    }
}

QString numberText(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

// Arguments that ask for what the options say. Long names, and "--" before the files, leave nothing
// to the letters that a value begins with.
QStringList argumentsFor(const ToolOptions& options)
{
    const bool isCheck = options.request == ToolOptions::Request::Check;
    QStringList arguments{QStringLiteral("htstool")};
    const auto add = [&arguments](const char* option, const QString& value) {
        if (!value.isEmpty())
            arguments += {QLatin1String(option), value};
    };
    if (isCheck) {
        arguments.append(QStringLiteral("check"));
        add("--control", options.controlPath);
        add("--end-month", QString::number(options.endMonth));
        add("--max-missing", options.maxMissing.text());
        add("--format", formatWord(options.format));
        add("--ignore", codesOf(options.ignored));
        add("--fail-on", codesOf(options.failing));
        if (options.hasAllFindings)
            arguments.append(QStringLiteral("--all"));
        add("--counts", options.countsPath);
    } else if (options.request == ToolOptions::Request::Import) {
        arguments.append(QStringLiteral("import"));
        add("--output", options.outputPath);
        addImport(options.importOptions, arguments);
    } else if (options.request == ToolOptions::Request::Report) {
        arguments.append(QStringLiteral("report"));
        add("--control", options.controlPath);
        add("--end-month", QString::number(options.endMonth));
        add("--output", options.outputPath);
        add("--result", options.resultPath);
        arguments += {QStringLiteral("--slots"), options.shownSlots.pattern};
        if (options.shownSlots.maxCount == ShownSlots::kAll)
            arguments.append(QStringLiteral("--all-slots"));
        add("--max-missing", options.maxMissing.text());
    } else if (options.request == ToolOptions::Request::Diff) {
        arguments.append(QStringLiteral("diff"));
        add("--tolerance", numberText(options.tolerance.absolute) + QLatin1Char(',') +
                               numberText(options.tolerance.relative));
        add("--format", formatWord(options.format));
    } else {
        arguments.append(QStringLiteral("export"));
        add("--output", options.outputPath);
        add("--run", options.table.run == 0 ? QString() : QString::number(options.table.run));
        if (options.table.form != ExportOptions::Form::Long)
            arguments.append(options.table.form == ExportOptions::Form::Wide
                                 ? QStringLiteral("--wide")
                                 : QStringLiteral("--tables"));
        QStringList columns;
        for (const ExportColumnName* column : options.table.columns)
            columns.append(column->word);
        add("--columns", columns.join(QLatin1Char(',')));
        if (options.table.isSafe)
            arguments.append(QStringLiteral("--safe"));
    }
    return arguments + QStringList{QStringLiteral("--")} + options.files;
}

bool asksForAFile(const ToolOptions& options)
{
    return options.request == ToolOptions::Request::Check ||
           options.request == ToolOptions::Request::Diff ||
           options.request == ToolOptions::Request::Export ||
           options.request == ToolOptions::Request::Import ||
           options.request == ToolOptions::Request::Report;
}

bool isFileCountRight(const ToolOptions& options)
{
    if (options.request == ToolOptions::Request::Check)
        return !options.files.isEmpty();
    return options.files.size() == (options.request == ToolOptions::Request::Diff ? 2 : 1);
}

void checkTool(const QList<QByteArray>& arguments)
{
    QStringList texts{QStringLiteral("htstool")};
    for (const QByteArray& argument : arguments)
        texts.append(QString::fromUtf8(argument));
    const ToolOptions options = parseToolOptions(texts);
    if (!asksForAFile(options)) {
        fuzz::require(!options.text.isEmpty(), QStringLiteral("nothing to show"));
        return;
    }
    fuzz::require(isFileCountRight(options), QStringLiteral("%1 files").arg(options.files.size()));
    fuzz::require(options.endMonth >= 1 && options.endMonth <= 12 && options.table.run >= 0,
                  QStringLiteral("month %1, run %2")
                      .arg(QString::number(options.endMonth), QString::number(options.table.run)));
    const bool hasNoOutput = options.request == ToolOptions::Request::Check ||
                             options.request == ToolOptions::Request::Diff;
    fuzz::require(hasNoOutput || !options.outputPath.isEmpty(), QStringLiteral("no output"));

    const QStringList whole = argumentsFor(options);
    const ToolOptions again = parseToolOptions(whole);
    fuzz::require(again.request == options.request,
                  QStringLiteral("refused: ") + whole.join(QLatin1Char('|')));
    fuzz::requireEqual(QStringLiteral("options of htstool"),
                       argumentsFor(again).join(QLatin1Char('|')), whole.join(QLatin1Char('|')));
}

} // namespace

FUZZ_TARGET(options)
{
    QByteArray text = input;
    text.replace('\0', ""); // no argument has one
    const QList<QByteArray> arguments = text.split('\n');
    checkProgram(arguments);
    checkTool(arguments);
}
