// SPDX-License-Identifier: Apache-2.0
#include "CommandLine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace zav {
namespace {

CommandLine parse(std::vector<const char *> arguments)
{
    arguments.insert(arguments.begin(), "zav");
    return parseCommandLine(int(arguments.size()), arguments.data());
}

SpectrumOptions spectrumOptions(const std::vector<const char *> &arguments)
{
    const CommandLine parsed = parse(arguments);
    EXPECT_TRUE(std::holds_alternative<SpectrumOptions>(parsed));
    const auto *options = std::get_if<SpectrumOptions>(&parsed);
    return options ? *options : SpectrumOptions();
}

/// The first line on standard error of arguments that are refused.
std::string refusal(const std::vector<const char *> &arguments)
{
    const CommandLine parsed = parse(arguments);
    const auto *exit = std::get_if<EarlyExit>(&parsed);
    if (!exit)
        return "accepted";
    EXPECT_EQ(exit->code, 2);
    EXPECT_EQ(exit->standardOutput.toStdString(), "");
    return exit->standardError.section(QLatin1Char('\n'), 0, 0).toStdString();
}

TEST(CommandLine, PeptideAndChargeHaveDefaultsForEverythingElse)
{
    const SpectrumOptions options = spectrumOptions({"spectrum", "PEPTIDE", "2"});
    EXPECT_EQ(options.peptide.toStdString(), "PEPTIDE");
    EXPECT_EQ(options.charge, 2);
    EXPECT_EQ(options.cysteineMass, 57.02146);
    EXPECT_TRUE(options.isotopes);
    EXPECT_FALSE(options.annotate);
    EXPECT_FALSE(options.verbose);
    EXPECT_FALSE(options.format.has_value());
    EXPECT_EQ(options.tolerance.value, 20);
    EXPECT_EQ(options.tolerance.unit, MassTolerance::Ppm);
}

TEST(CommandLine, OptionsMayStandAnywhere)
{
    const SpectrumOptions options =
        spectrumOptions({"spectrum", "--annotate", "PEPTIDE", "--no-isotopes", "2", "--cysteine", "0", "-v"});
    EXPECT_EQ(options.peptide.toStdString(), "PEPTIDE");
    EXPECT_EQ(options.charge, 2);
    EXPECT_EQ(options.cysteineMass, 0);
    EXPECT_FALSE(options.isotopes);
    EXPECT_TRUE(options.annotate);
    EXPECT_TRUE(options.verbose);
}

TEST(CommandLine, EnergyIsANumberFrom10To60)
{
    EXPECT_TRUE(std::isnan(spectrumOptions({"spectrum", "PEPTIDE", "2"}).collisionEnergy));
    EXPECT_EQ(spectrumOptions({"spectrum", "PEPTIDE", "2", "--energy", "27.5"}).collisionEnergy, 27.5);
    for (const char *energy : {"9", "60.5", "nan", "inf", "30eV", "-30"})
        EXPECT_EQ(refusal({"spectrum", "PEPTIDE", "2", "--energy", energy}),
                  std::string("zav: --energy '") + energy + "' is not a number from 10 to 60");
}

TEST(CommandLine, NegativeCysteineMassIsAValueAndNoOption)
{
    EXPECT_EQ(spectrumOptions({"spectrum", "PEPTIDE", "2", "--cysteine=-1.5"}).cysteineMass, -1.5);
    EXPECT_EQ(spectrumOptions({"spectrum", "PEPTIDE", "2", "--cysteine", "-1.5"}).cysteineMass, -1.5);
}

TEST(CommandLine, PeptideListMayBeStandardInput)
{
    EXPECT_EQ(spectrumOptions({"spectrum", "--peptides", "-"}).peptideList.toStdString(), "-");
}

TEST(CommandLine, FormatFollowsTheEndingOfTheOutputUnlessItIsNamed)
{
    EXPECT_EQ(spectrumOptions({"spectrum", "PEPTIDE", "2", "-o", "a.msp"}).format, OutputFormat::Msp);
    EXPECT_EQ(spectrumOptions({"spectrum", "PEPTIDE", "2", "-o", "a.MGF"}).format, OutputFormat::Mgf);
    EXPECT_EQ(spectrumOptions({"spectrum", "PEPTIDE", "2", "-o", "a.txt"}).format, std::nullopt);
    EXPECT_EQ(spectrumOptions({"spectrum", "PEPTIDE", "2", "-o", "a.msp", "--format", "json"}).format,
              OutputFormat::Json);
}

TEST(CommandLine, ToleranceIsReadWithItsUnit)
{
    const SpectrumOptions options =
        spectrumOptions({"spectrum", "PEPTIDE", "2", "--against", "a.mgf", "--tolerance", "0.02Da"});
    EXPECT_EQ(options.tolerance.value, 0.02);
    EXPECT_EQ(options.tolerance.unit, MassTolerance::Dalton);
}

struct Refused
{
    std::vector<const char *> arguments;
    const char *message;
};

class RefusedArguments : public ::testing::TestWithParam<Refused>
{};

TEST_P(RefusedArguments, AreWrongUsageWithOneLineThatSaysWhy)
{
    EXPECT_EQ(refusal(GetParam().arguments), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLine, RefusedArguments,
    ::testing::Values(
        Refused{{}, "zav: A subcommand is required"},
        Refused{{"spectrm"}, "zav: unknown command 'spectrm', did you mean 'spectrum'?"},
        Refused{{"inspct", "x"}, "zav: unknown command 'inspct', did you mean 'inspect'?"},
        Refused{{"frobnicate"}, "zav: unknown command 'frobnicate'"},
        Refused{{"spectrum"}, "zav: PEPTIDE and CHARGE, or --peptides, are missing"},
        Refused{{"spectrum", "PEPTIDE"}, "zav: CHARGE is missing"},
        Refused{{"spectrum", "PEPTIDE", "two"}, "zav: CHARGE 'two' is not a whole number"},
        Refused{{"spectrum", "PEPTIDE", "2.5"}, "zav: CHARGE '2.5' is not a whole number"},
        Refused{{"spectrum", "PEPTIDE", "2", "3"}, "zav: The following argument was not expected: 3"},
        Refused{{"spectrum", "PEPTIDE", "2", "--colour"}, "zav: The following argument was not expected: --colour"},
        Refused{{"spectrum", "PEPTIDE", "2", "--format", "xml"},
                "zav: --format 'xml' is not one of tsv, msp, mgf, json, table"},
        Refused{{"spectrum", "PEPTIDE", "2", "--format"}, "zav: --format: 1 required FORMAT missing"},
        Refused{{"spectrum", "PEPTIDE", "2", "--cysteine", "nan"}, "zav: --cysteine is not a finite mass"},
        Refused{{"spectrum", "PEPTIDE", "2", "--plot", "a.gif"},
                "zav: --plot draws a file ending in .svg, .png or .pdf, not 'a.gif'"},
        Refused{{"spectrum", "PEPTIDE", "2", "--scan", "3"},
                "zav: --scan, --tolerance, --scores and --report need --against"},
        Refused{{"spectrum", "--peptides", "a.tsv", "--report", "a.html"},
                "zav: --scan, --tolerance, --scores and --report need --against"},
        Refused{{"spectrum", "--peptides", "a.tsv", "--against", "a.mgf", "--scan", "3"},
                "zav: --scan is for one peptide; a list of --peptides has the column scan"},
        Refused{{"spectrum", "PEPTIDE", "2", "--against", "a.mgf", "--report", "-", "--format", "mgf"},
                "zav: --report -: only one output can go to standard output"},
        Refused{{"spectrum", "PEPTIDE", "2", "--against", "a.mgf", "--scores", "-", "--report", "-", "-o", "b"},
                "zav: --report -: only one output can go to standard output"},
        Refused{{"spectrum", "PEPTIDE", "2", "--against", "a.mgf", "--scores", "b", "--report", "./b"},
                "zav: ./b is named for two outputs"},
        Refused{{"spectrum", "PEPTIDE", "2", "-o", "b.svg", "--plot", "./b.svg"},
                "zav: ./b.svg is named for two outputs"},
        Refused{{"retention", "--peptides", "a", "--calibrate", "a", "--plot", "b.svg", "-o", "./b.svg"},
                "zav: b.svg is named for two outputs"},
        Refused{{"limits", "a.tsv", "-o", "b.svg", "--plot", "./b.svg"}, "zav: ./b.svg is named for two outputs"},
        Refused{{"spectrum", "PEPTIDE", "2", "--peptides", "a.tsv"},
                "zav: PEPTIDE and --peptides cannot be used together"},
        Refused{{"spectrum", "--peptides", "a.tsv", "--plot", "a.svg"},
                "zav: --plot is for one peptide, not for --peptides"},
        Refused{{"inspect", "a", "--models", "b"}, "zav: DIR and --models cannot be used together"}));

TEST(CommandLine, RefusalPointsToTheHelpOfTheCommand)
{
    const CommandLine parsed = parse({"spectrum", "PEPTIDE"});
    EXPECT_EQ(std::get<EarlyExit>(parsed).standardError.toStdString(),
              "zav: CHARGE is missing\nzav: 'zav spectrum --help' explains the usage\n");
}

TEST(CommandLine, HelpGoesToStandardOutputAndIsNoFailure)
{
    for (const std::vector<const char *> &arguments :
         {std::vector<const char *>{"--help"}, {"spectrum", "--help"}, {"inspect", "-h"}}) {
        const CommandLine parsed = parse(arguments);
        const EarlyExit exit = std::get<EarlyExit>(parsed);
        EXPECT_EQ(exit.code, 0);
        EXPECT_TRUE(exit.standardOutput.contains(QStringLiteral("Usage: zav"))) << exit.standardOutput.toStdString();
        EXPECT_EQ(exit.standardError.toStdString(), "");
    }
}

} // namespace
} // namespace zav
