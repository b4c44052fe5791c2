// SPDX-License-Identifier: Apache-2.0
#include "ModificationRule.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

std::string parsed(const char *text)
{
    const Result<ModificationRule> rule = ModificationRule::parse(QString::fromUtf8(text));
    return (rule.hasError() ? QStringLiteral("! ") + rule.error().message() : rule.value().text()).toStdString();
}

TEST(ModificationRule, IsWrittenInOneWayHoweverItWasGiven)
{
    EXPECT_EQ(parsed("Oxidation@M"), "Oxidation@M");
    EXPECT_EQ(parsed("oxidation@WM"), "Oxidation@M,W");
    EXPECT_EQ(parsed("UNIMOD:21@Y,ST,S"), "Phospho@S,T,Y");
    EXPECT_EQ(parsed("TMT6plex@n-TERM,K"), "TMT6plex@K,N-term");
    EXPECT_EQ(parsed("Acetyl@protein-N-term"), "Acetyl@protein-N-term");
    EXPECT_EQ(parsed("Gln->pyro-Glu@N-term:Q"), "Gln->pyro-Glu@N-term:Q");
    EXPECT_EQ(parsed("Ammonia-loss@N, N-term:CQ"), "Ammonia-loss@N,N-term:C,N-term:Q");
    EXPECT_EQ(parsed("Amidated@protein-C-term,C-term:K"), "Amidated@C-term:K,protein-C-term");
    EXPECT_EQ(parsed("+15.9949@M"), "+15.9949@M");
}

TEST(ModificationRule, FaultsAreNamed)
{
    const std::string sites = "is no site; sites are residues such as STY, N-term, C-term, protein-N-term, "
                              "protein-C-term, or N-term:Q";
    EXPECT_EQ(parsed("Oxidation"), "! 'Oxidation' is not NAME@SITES, such as Oxidation@M");
    EXPECT_EQ(parsed(""), "! '' is not NAME@SITES, such as Oxidation@M");
    EXPECT_EQ(parsed("@M"), "! no modification");
    EXPECT_EQ(parsed("Foo@M"), "! no modification 'Foo'");
    EXPECT_EQ(parsed("+inf@M"), "! no mass of up to 1e6 Da: '+inf'");
    EXPECT_EQ(parsed("Oxidation@"), "! '' " + sites);
    EXPECT_EQ(parsed("Oxidation@m"), "! 'm' " + sites);
    EXPECT_EQ(parsed("Oxidation@MX"), "! 'MX' " + sites);
    EXPECT_EQ(parsed("Oxidation@M,N-terminus"), "! 'N-terminus' " + sites);
    EXPECT_EQ(parsed("Oxidation@N-term:"), "! 'N-term:' " + sites);
    EXPECT_EQ(parsed("Oxidation@M:K"), "! 'M:K' " + sites);
}

ModificationRule rule(const char *text)
{
    return ModificationRule::parse(QString::fromUtf8(text)).value();
}

TEST(ModificationRule, ServesItsSitesAndNoOthers)
{
    const ProteinEnds inside;
    const ProteinEnds whole{true, true};
    EXPECT_TRUE(rule("Oxidation@M").servesResidue('M'));
    EXPECT_FALSE(rule("Oxidation@M").servesResidue('C'));
    EXPECT_FALSE(rule("Oxidation@N-term:M").servesResidue('M'));
    EXPECT_FALSE(rule("Oxidation@M").servesNTerminus("MK", whole));

    EXPECT_TRUE(rule("Acetyl@N-term").servesNTerminus("AK", inside));
    EXPECT_FALSE(rule("Acetyl@N-term").servesCTerminus("AK", whole));
    EXPECT_FALSE(rule("Acetyl@protein-N-term").servesNTerminus("AK", inside));
    EXPECT_FALSE(rule("Acetyl@protein-N-term").servesNTerminus("AK", {false, true}));
    EXPECT_TRUE(rule("Acetyl@protein-N-term").servesNTerminus("AK", {true, false}));
    EXPECT_TRUE(rule("Acetyl@N-term:QA").servesNTerminus("AK", inside));
    EXPECT_FALSE(rule("Acetyl@N-term:Q").servesNTerminus("AQ", inside));

    EXPECT_TRUE(rule("Amidated@C-term").servesCTerminus("AK", inside));
    EXPECT_TRUE(rule("Amidated@C-term:K").servesCTerminus("AK", inside));
    EXPECT_FALSE(rule("Amidated@C-term:A").servesCTerminus("AK", inside));
    EXPECT_TRUE(rule("Amidated@protein-C-term").servesCTerminus("AK", {false, true}));
    EXPECT_FALSE(rule("Amidated@protein-C-term").servesCTerminus("AK", {true, false}));
}

TEST(ModificationRule, OverlapsWhereOnePlaceIsASiteOfBoth)
{
    const auto overlap = [](const char *a, const char *b) {
        EXPECT_EQ(rule(a).overlaps(rule(b)), rule(b).overlaps(rule(a)));
        return rule(a).overlaps(rule(b));
    };
    EXPECT_TRUE(overlap("Oxidation@MW", "Nitro@W"));
    EXPECT_FALSE(overlap("Oxidation@M", "Nitro@W"));
    EXPECT_TRUE(overlap("TMT6plex@N-term", "Acetyl@protein-N-term"));
    EXPECT_TRUE(overlap("TMT6plex@N-term", "Gln->pyro-Glu@N-term:Q"));
    EXPECT_FALSE(overlap("Glu->pyro-Glu@N-term:E", "Gln->pyro-Glu@N-term:Q"));
    EXPECT_FALSE(overlap("Amidated@C-term", "Acetyl@N-term"));
    EXPECT_FALSE(overlap("Oxidation@M", "Acetyl@N-term:M"));
}

} // namespace
} // namespace zav
