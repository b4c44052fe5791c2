// SPDX-License-Identifier: Apache-2.0
//
// Stands in for MzMlChromatograms.cpp and MzMlExtraction.cpp in a build without ProteoWizard.
#include "MzMlChromatograms.h"
#include "MzMlExtraction.h"

namespace zav {

Result<std::unique_ptr<ChromatogramSource>> openMzMlChromatograms(std::unique_ptr<ByteStream> bytes)
{
    return Error(Failure,
                 bytes->name() + QStringLiteral(": this zav was built without libpwizlite and reads no mzML; convert "
                                                "the chromatograms to TSV or JSON lines, or rebuild"));
}

Result<std::unique_ptr<ChromatogramSource>> openMzMlExtraction(std::unique_ptr<ByteStream> bytes,
                                                               const QList<ExtractionTarget> &)
{
    return openMzMlChromatograms(std::move(bytes));
}

} // namespace zav
