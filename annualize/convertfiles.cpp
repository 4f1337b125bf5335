#include "annualize/convertfiles.h"

#include "annualize/annualizehts.h"
#include "utils/checkedfile.h"

Status convertFiles(AnnualizeHts& engine, UtilsNS::CheckedFile& input, UtilsNS::CheckedFile& output)
{
    Q_ASSERT(input.isReadable() && output.isWritable());
    Status status = engine.setSourceDevice(&input);
    if (status.ok())
        status = engine.setResultDevice(&output);
    if (status.ok())
        status = engine.annualize();
    Status readStatus = checkInputWasRead(input);
    if (!readStatus.ok())
        return readStatus;
    return status.ok() ? output.finish() : status;
}

Status checkInputWasRead(const UtilsNS::CheckedFile& input)
{
    if (input.problem().isEmpty())
        return {};
    return failure(QStringLiteral("Problem reading the input hts file: %1").arg(input.problem()));
}
