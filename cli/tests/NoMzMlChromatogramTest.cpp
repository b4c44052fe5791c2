// SPDX-License-Identifier: Apache-2.0
#include "TraceList.h"

namespace zav {
namespace {

TEST(BuildWithoutMzMl, SaysSoWhenAskedForChromatogramsOfAnMzMlFile)
{
    TemporaryFiles files;
    const QString path = files.write("run.mzML", "<mzML/>");
    for (const QList<ExtractionTarget> &targets : {QList<ExtractionTarget>(), QList<ExtractionTarget>{{"t", 500}}})
        EXPECT_EQ(
            TraceList::read(files, {path, {}, targets}).error,
            "run.mzML: this zav was built without libpwizlite and reads no mzML; convert the chromatograms to TSV "
            "or JSON lines, or rebuild");
}

} // namespace
} // namespace zav
