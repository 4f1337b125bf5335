#ifndef UTILS_ENVVARS_H
#define UTILS_ENVVARS_H

#include <QString>

#include "hts/status.h"

namespace UtilsNS {

// Replaces the references $NAME, $(NAME) and ${NAME} in `text`, usually a path, by the values of
// the environment variables and sets `result`. A variable that is not set, is empty, or has a value
// of more than 1023 bytes is not replaced; the message then lists the names of all such references.
// Values are decoded as Latin-1, and references in them are not replaced.
Status substituteEnvVars(const QString& text, QString& result);

} // namespace UtilsNS

#endif // UTILS_ENVVARS_H
