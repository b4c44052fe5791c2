// SPDX-License-Identifier: Apache-2.0
//
// Stands in for MzMlFile.cpp in a build without ProteoWizard.
#include "MzMlFile.h"

namespace zav {

Result<std::unique_ptr<SpectrumFile>> openMzMlFile(const QString &path)
{
    return Error(Failure, path + QStringLiteral(": this zav was built without libpwizlite and reads no mzML; "
                                                "convert the spectrum to MGF, or rebuild"));
}

} // namespace zav
