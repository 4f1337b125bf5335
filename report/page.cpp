#include "report/page.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QIODevice>

#include "check/filecheck.h"
#include "report/findingsection.h"
#include "report/headsection.h"
#include "report/htmltext.h"
#include "report/pagemodel.h"
#include "report/pagestyle.h"
#include "report/slotsection.h"
#include "report/yearsection.h"

namespace {

// Nothing is loaded, and nothing but the style sheet is applied: names of a file cannot change it.
QByteArray head(const QString& title)
{
    const QByteArray style = kPageStyle;
    const QByteArray hash = QCryptographicHash::hash(style, QCryptographicHash::Sha256).toBase64();
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
           "'sha256-" +
           hash +
           "'; base-uri 'none'; form-action 'none'\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<meta name=\"color-scheme\" content=\"light dark\">\n<title>" +
           htmlText(title) + "</title>\n<style>" + style + "</style>\n</head>\n<body>\n";
}

// The hatching that all charts use.
const char* const kPattern =
    "<svg class=\"defs\" aria-hidden=\"true\" width=\"0\" height=\"0\"><defs><pattern id=\"hatch\" "
    "width=\"6\" height=\"6\" patternUnits=\"userSpaceOnUse\" patternTransform=\"rotate(45)\">"
    "<path class=\"hatch\" d=\"M0 0v6\"/></pattern></defs></svg>\n";

const char* const kLegend =
    "<p class=\"legend\"><span class=\"k input\">values: from the smallest to the largest of each "
    "column</span> <span class=\"k annual\">annual values</span> <span class=\"k band\">other "
    "runs: "
    "smallest, median, largest</span> <span class=\"k doubtful\">year that lacks values</span> "
    "<span class=\"k missing\">missing</span> <span class=\"k sentinel\">number that may mark a "
    "missing value</span></p>\n";

} // namespace

void writePage(QIODevice& device, const PageFacts& facts, const CheckReport& report,
               const FindingList& control, const PageModel& model)
{
    Q_ASSERT(!facts.files.empty());
    device.write(head(QFileInfo(facts.files.front().path).fileName()));
    device.write(kPattern);
    device.write(verdictSection(facts, report, control, model));
    device.write("<main>\n");
    device.write(factsSection(facts));
    device.write(findingSection(report, control, model));
    device.write(yearSection(report, model, facts.endMonth));
    device.write(slotList(report, model));
    if (!model.slots.empty())
        device.write(kLegend);
    int number = 0;
    for (const PageSlot& slot : model.slots)
        device.write(slotSection(model, slot, ++number));
    device.write("</main>\n</body>\n</html>\n");
}
