// SPDX-License-Identifier: Apache-2.0
//
// A program of its own: it runs as on a machine that has no font.
#include "PictureApplication.h"
#include "SpectrumPlot.h"
#include "TemporaryFiles.h"

namespace zav {
namespace {

class FontlessApplication : public PictureApplication
{
public:
    void SetUp() override
    {
        qputenv("FONTCONFIG_FILE", ZAV_TEST_DATA_DIR "/no-fonts.conf");
        PictureApplication::SetUp();
    }
};

const auto *const APPLICATION = testing::AddGlobalTestEnvironment(new FontlessApplication);

TEST(MachineWithoutFonts, GetsAnErrorRatherThanAPictureOfBoxes)
{
    const TemporaryFiles files;
    SpectrumPlotData data;
    data.peptidoform = Peptidoform(QStringLiteral("PEPTIDEK"));
    data.charge = 2;
    const Error error = drawSpectrum(data, files.path("a.png"));
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ(error.message(), "a picture needs a font and this machine has none; install one, for example the package "
                               "fonts-dejavu-core");
    EXPECT_FALSE(QFile::exists(files.path("a.png")));
}

} // namespace
} // namespace zav
