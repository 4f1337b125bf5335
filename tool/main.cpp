// The entry of htstool: standard streams, colour, progress, and the exit code.

#include <cstdio>

#include <QCoreApplication>
#include <QString>

#include "tool/progress.h"
#include "tool/terminal.h"
#include "tool/tool.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
#include "utils/checkedfile.h"
#include "utils/processsetup.h"

namespace {

void showNoMemory()
{
    wipeTerminalLine();
    std::fputs("htstool: not enough memory\n", stderr);
}

} // namespace

int main(int argc, char* argv[])
{
    UtilsNS::openStandardStreams(UtilsNS::MissingStream::Fails);
    UtilsNS::endWhenMemoryRunsOut(showNoMemory, ExitCode::kUnusable);
    const QCoreApplication application(argc, argv);
    UtilsNS::chooseTextEncoding();
    UtilsNS::CheckedFile output;
    UtilsNS::CheckedFile errors;
    if (!output.openStream(stdout, QIODevice::WriteOnly) ||
        !errors.openStream(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered))
        return ExitCode::kUnusable;
    const OutputColour colour;
    Progress progress(terminalLine());
    WipingDevice shownOutput(output, progress);
    WipingDevice shownErrors(errors, progress);
    const ToolIo io{shownOutput, shownErrors, colour.isWanted(), &progress};
    const int exitCode = runTool(processArguments(argc, argv), io);
    progress.wipe();
    // An incomplete report must not look like a good one.
    const bool isWhole = finishOutput(QStringLiteral("standard output"), output, io);
    return isWhole && errors.finish().ok() ? exitCode : ExitCode::kUnusable;
}
