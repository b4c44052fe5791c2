// SPDX-License-Identifier: Apache-2.0
#include "ObservedSpectrum.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST(BuildWithoutMzMl, SaysSoWhenAskedForAnMzMlFile)
{
    const auto spectrum = readObservedSpectrum(QStringLiteral("run.mzML"), {});
    EXPECT_TRUE(spectrum.error().equals(Failure));
    EXPECT_EQ(spectrum.error().message(), "run.mzML: this zav was built without libpwizlite and reads no mzML; "
                                          "convert the spectrum to MGF, or rebuild");
}

} // namespace
} // namespace zav
