#include "compare/runindex.h"

#include <algorithm>
#include <map>

#include <QCryptographicHash>

#include "hts/htsreader.h"

namespace {

void addName(QCryptographicHash& names, const QString& name)
{
    names.addData(name.toUtf8().append('\0')); // which no name has
}

// The index of the run of each trace. Empty if a run has no trace, or that of another run.
std::map<int, int> runsByTrace(const std::vector<RunEntry>& runs)
{
    std::map<int, int> byTrace;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const bool isNew = byTrace.emplace(runs[i].trace, static_cast<int>(i)).second;
        if (!isNew || runs[i].trace == -1)
            return {};
    }
    return byTrace;
}

} // namespace

Status readRunIndex(QIODevice& device, std::vector<RunEntry>& runs)
{
    HtsReader reader(device);
    HtsPackage package;
    HtsWalk walk(reader, package, {TableRows::Skip, MissingTableEnd::StopAtEndOfInput});
    QCryptographicHash names(QCryptographicHash::Sha1);
    while (walk.next()) {
        if (walk.place() == HtsWalk::Place::Run) {
            runs.push_back({walk.bookmark(), walk.run().trace, {}});
            names.reset();
        } else if (walk.place() == HtsWalk::Place::Slot) {
            addName(names, walk.slot().objectName);
            addName(names, walk.slot().slotName);
        } else if (walk.place() == HtsWalk::Place::EndOfRun) {
            runs.back().slotNames = names.result();
        }
    }
    if (walk.isTableWithoutEnd())
        return failure(QStringLiteral("A table slot has no \"END_SLOT\" after it"));
    return walk.status();
}

std::vector<int> matchRuns(const Both<std::vector<RunEntry>>& runs)
{
    const std::map<int, int> first = runsByTrace(runs[0]);
    const std::map<int, int> second = runsByTrace(runs[1]);
    const bool hasTraces = !first.empty() && !second.empty();
    std::vector<int> matches;
    for (std::size_t i = 0; i < runs[0].size(); ++i) {
        const auto match = second.find(runs[0][i].trace);
        const int byTrace = match == second.end() ? -1 : match->second;
        const int byPlace = i < runs[1].size() ? static_cast<int>(i) : -1;
        matches.push_back(hasTraces ? byTrace : byPlace);
    }
    return matches;
}
