// SPDX-License-Identifier: Apache-2.0
#include "Application.h"
#include "ChromatogramPlot.h"
#include "PictureFile.h"
#include "RetentionTimePlot.h"
#include "SpectrumPlot.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST(BuildWithoutPictures, SaysSoWhenAskedForOne)
{
    EXPECT_FALSE(canWritePictures());
    const Error error = drawSpectrum({}, QStringLiteral("a.svg"));
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ(error.message(), "a.svg: this zav was built without Qt Gui and Qt Svg and draws no pictures");
    EXPECT_EQ(drawChromatogram({}, QStringLiteral("a.svg")).message(), error.message());
    EXPECT_EQ(drawRetentionTimes({}, QStringLiteral("a.svg")).message(), error.message());
}

TEST(BuildWithoutPictures, HasAnApplicationAllTheSame)
{
    int argc = 1;
    char name[] = "zav";
    char *argv[] = {name, nullptr};
    EXPECT_NE(createApplication(argc, argv, true), nullptr);
}

} // namespace
} // namespace zav
