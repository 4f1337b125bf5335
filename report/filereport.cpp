#include "report/filereport.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include "annualize/months.h"
#include "check/control.h"
#include "hts/htsreader.h"
#include "hts/htswalk.h"
#include "report/hashedfile.h"
#include "report/resultcompare.h"

namespace {

// A file that others have read. What is left of a pipe would not be its content.
PageFile pageFile(const char* role, const QString& path)
{
    PageFile facts{QString::fromLatin1(role), path, 0, {}, {}};
    HashedFile<QFile> file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return facts;
    file.readToEnd();
    facts.size = file.byteCount();
    facts.sha256 = file.takeSha256();
    facts.modified = QFileInfo(path).lastModified();
    return facts;
}

} // namespace

qint64 FileReport::count(Severity severity) const
{
    const qint64 differences = severity == Severity::Warning ? model.differenceCount : 0;
    return report.findings.count(severity) + control.count(severity) + differences;
}

FileReport checkForPage(QIODevice& input, const ReportRequest& request)
{
    ControlCheck control(request.controlPath);
    PageObserver observer(request.shown);
    CheckOptions options;
    options.control = &control;
    options.endMonth = request.endMonth;
    options.maxMissing = request.maxMissing;
    options.sentinels = request.sentinels;
    options.observer = &observer;
    CheckReport report = checkFile(input, options);
    return {std::move(report), control.findings(), observer.takeModel()};
}

Status compareResult(QIODevice& annual, FileReport& report)
{
    HtsReader reader(annual);
    HtsPackage preamble;
    HtsWalk walk(reader, preamble, {TableRows::Skip, MissingTableEnd::StopAtEndOfInput});
    ResultCompare compare(report.model);
    while (walk.next()) {
        if (walk.place() == HtsWalk::Place::Run)
            compare.takeRun(walk.run());
        else if (walk.place() == HtsWalk::Place::Slot)
            compare.takeSlot(walk.slot(), walk.values());
    }
    if (walk.status().ok())
        compare.finish();
    return walk.status();
}

void writePage(QIODevice& output, const ReportRequest& request, std::vector<PageFile> files,
               const FileReport& report)
{
    PageFacts facts;
    facts.program = request.program;
    facts.written = request.written;
    facts.endMonth = request.endMonth;
    facts.files = std::move(files);
    facts.files.insert(facts.files.begin() + 1, pageFile("Methods", request.controlPath));
    const auto add = [&facts](const char* name, const QString& value) {
        facts.options.emplace_back(QString::fromLatin1(name), value);
    };
    add("Years end with", kMonthNames.at(static_cast<std::size_t>(request.endMonth - 1)));
    if (request.maxMissing.isSet())
        add("A year may lack", request.maxMissing.text());
    QStringList sentinels;
    for (const double sentinel : request.sentinels)
        sentinels.append(QString::number(sentinel, 'g', QLocale::FloatingPointShortest));
    if (!sentinels.isEmpty())
        add("Mark missing values", sentinels.join(QLatin1String(", ")));
    if (request.shown.pattern != QLatin1String("*"))
        add("Slots shown", request.shown.pattern);
    writePage(output, facts, report.report, report.control, report.model);
}
