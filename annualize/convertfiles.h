#ifndef ANNUALIZE_CONVERTFILES_H
#define ANNUALIZE_CONVERTFILES_H

#include "hts/status.h"

class AnnualizeHts;

namespace UtilsNS {
class CheckedFile;
}

// One conversion from file to file, as both front ends run it once they have opened the files and
// given the engine its control file and end month.
//
// Both files are open, `input` for reading and `output` for writing, in text mode; the engine is
// left with pointers to them. Succeeds only when all of the input was read and all of the result
// was written; `output` is closed then. If the input couldn't be read, that is the failure, even if
// the engine found another.
Status convertFiles(AnnualizeHts& engine, UtilsNS::CheckedFile& input,
                    UtilsNS::CheckedFile& output);

// Fails if the input couldn't be read to its end: what was found in it is then about only a part.
Status checkInputWasRead(const UtilsNS::CheckedFile& input);

#endif // ANNUALIZE_CONVERTFILES_H
