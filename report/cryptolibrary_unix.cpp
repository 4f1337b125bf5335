#include <QLibrary>

#include "report/sha256.h"
#include "utils/resolve_unix.h"

const CryptoLibrary* cryptoLibrary()
{
    using UtilsNS::resolve;
    static CryptoLibrary functions;
    static const bool kIsLoaded = [] {
        QLibrary library(QStringLiteral("crypto"), 3); // stays loaded
        return resolve(library, "EVP_MD_CTX_new", functions.newContext) &&
               resolve(library, "EVP_MD_CTX_free", functions.freeContext) &&
               resolve(library, "EVP_sha256", functions.sha256) &&
               resolve(library, "EVP_DigestInit_ex", functions.init) &&
               resolve(library, "EVP_DigestUpdate", functions.update) &&
               resolve(library, "EVP_DigestFinal_ex", functions.finish);
    }();
    return kIsLoaded ? &functions : nullptr;
}
