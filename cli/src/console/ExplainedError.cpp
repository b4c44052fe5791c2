// SPDX-License-Identifier: Apache-2.0
#include "ExplainedError.h"

namespace zav {

Error explainedError(const Error &error, const QString &message)
{
    Error explained(error.code(), message);
    for (const CaughtAt &place : error.trail())
        explained.ecatch(qUtf8Printable(place.functionSignature), qUtf8Printable(place.sourceFile), place.line);
    explained.addWarnings(error.warnings());
    return explained;
}

} // namespace zav
