// SPDX-License-Identifier: Apache-2.0
#include "ObservedTimes.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

struct ObservedTimesReading : testing::Test
{
    TemporaryFiles files;

    Result<ObservedTimes> read(const QByteArray &text) { return readObservedTimes(files.write("observed.tsv", text)); }

    std::string refusal(const QByteArray &text)
    {
        const Result<ObservedTimes> observed = read(text);
        EXPECT_TRUE(observed.hasError());
        return files.withoutFolder(observed.error().message());
    }
};

TEST_F(ObservedTimesReading, FindsItsColumnsByName)
{
    const auto observed = read("# a run\nscan\tRT\tPeptide\n7\t12.5\tACK\n\n8\t-3e1\tM[Oxidation]CK\textra\n");
    ASSERT_FALSE(observed.hasError()) << observed.error().message().toStdString();
    ASSERT_EQ(observed.value().pairs.size(), 2);
    EXPECT_EQ(observed.value().pairs[0].peptidoform.toProForma(), "AC[Carbamidomethyl]K");
    EXPECT_EQ(observed.value().pairs[0].time, 12.5);
    EXPECT_EQ(observed.value().pairs[1].peptidoform.toProForma(), "M[Oxidation]CK");
    EXPECT_EQ(observed.value().pairs[1].time, -30);
    EXPECT_TRUE(observed.value().problems.isEmpty());
}

TEST_F(ObservedTimesReading, GoesOnPastAPeptideThatCannotBeRead)
{
    const auto observed = read("peptide\trt\nPEPTIDE\t1\nPEPTIDe\t2\nPEPTIDEK\t3\n");
    ASSERT_FALSE(observed.hasError());
    EXPECT_EQ(observed.value().pairs.size(), 2);
    ASSERT_EQ(observed.value().problems.size(), 1);
    EXPECT_TRUE(files.withoutFolder(observed.value().problems[0]).rfind("observed.tsv:3: PEPTIDe: ", 0) == 0)
        << observed.value().problems[0].toStdString();
}

TEST_F(ObservedTimesReading, NamesTheLineOfATimeThatIsNoNumber)
{
    EXPECT_EQ(refusal("peptide\trt\nPEPTIDE\tlate\n").find("observed.tsv, line 2: "), 0);
    EXPECT_EQ(refusal("peptide\trt\nPEPTIDE\tnan\n").find("observed.tsv, line 2: "), 0);
    EXPECT_EQ(refusal("peptide\trt\nPEPTIDE\n").find("observed.tsv, line 2: "), 0);
}

TEST_F(ObservedTimesReading, NeedsItsColumns)
{
    EXPECT_NE(refusal("peptide\ttime\nPEPTIDE\t1\n").find("the heading has no column 'rt'"), std::string::npos);
    EXPECT_NE(refusal("SAMPLER\t1\n").find("the heading has no column 'peptide'"), std::string::npos);
    EXPECT_NE(refusal("peptide\trt\trt\n").find("the heading has two columns 'rt'"), std::string::npos);
    EXPECT_NE(refusal("").find("observed.tsv"), std::string::npos);
    EXPECT_TRUE(readObservedTimes(files.path("nowhere.tsv")).hasError());
}

} // namespace
} // namespace zav
