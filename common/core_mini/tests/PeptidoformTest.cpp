// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cmath>
#include <unordered_set>

#include <zav/Peptidoform.h>

namespace zav {
namespace {

Modification named(const char *name)
{
    return modifications::findByName(QLatin1String(name))->modification;
}

struct Weighed
{
    const char *proForma;
    double pyteomics; // 5.0.1, calculate_mass of the composition, an older atomic mass evaluation
};

const Weighed WEIGHED[] = {
    {"AC[Carbamidomethyl]DM[Oxidation]K", 639.2356325440701},
    {"[Acetyl]-AC[Carbamidomethyl]DM[Oxidation]K", 681.2461972277699},
    {"PEPTIDES[Phospho]T[Phospho]K", 1275.46729495489},
    {"[TMT6plex]-SAMPLEK[TMT6plex]", 1232.72043998306},
    {"ELVISLIVESR[Label:13C(6)15N(4)]", 1266.74227102668},
    {"[Gln->pyro-Glu]-QGGK[GG]R", 641.32452200785},
    {"PEPTIDEK-[Amidated]", 926.4709114580199},
    {"K[Malonyl]GWY[Sulfo]HNVF", 1215.46550880775},
    {"ACDEFGHIKLMNPQRSTVWY", 2394.1249068251295},
};

constexpr double EVALUATIONS_DIFFER = 1e-6; // phosphorus by 3.7e-7

TEST(Peptidoform, MassAgreesWithPyteomics)
{
    for (const Weighed &weighed : WEIGHED) {
        const auto peptidoform = Peptidoform::fromProForma(QLatin1String(weighed.proForma));
        ASSERT_FALSE(peptidoform.hasError()) << weighed.proForma;
        EXPECT_NEAR(weighed.pyteomics, peptidoform.value().monoisotopicMass(), EVALUATIONS_DIFFER) << weighed.proForma;
    }
}

TEST(Peptidoform, ResidueOutsideTheTwentyHasNoMass)
{
    for (const char *sequence : {"AXK", "AUK", "OAK", "BZJ", "a", "A1K", "A K"})
        EXPECT_TRUE(std::isnan(Peptidoform(QLatin1String(sequence)).monoisotopicMass())) << sequence;
}

TEST(Peptidoform, SortsItsModificationsByPosition)
{
    const Peptidoform peptidoform(QStringLiteral("MAC"),
                                  {{4, named("Amidated")}, {0, named("Acetyl")}, {3, named("Carbamidomethyl")}});
    ASSERT_EQ(3, peptidoform.modifications().size());
    EXPECT_EQ(0, peptidoform.modifications()[0].position);
    EXPECT_EQ(3, peptidoform.modifications()[1].position);
    EXPECT_EQ(4, peptidoform.modifications()[2].position);
    EXPECT_EQ(3, peptidoform.length());
    EXPECT_EQ(QStringLiteral("[Acetyl]-MAC[Carbamidomethyl]-[Amidated]"), peptidoform.toProForma());
}

TEST(Peptidoform, IsWrittenWithoutWhatStandsOutsideIt)
{
    EXPECT_EQ(QStringLiteral("MA"), Peptidoform(QStringLiteral("MA"), {{4, named("Amidated")}}).toProForma());
    EXPECT_EQ(QString(), Peptidoform().toProForma());
}

TEST(Peptidoform, EqualsThoseOfSameSequenceAndModifications)
{
    const Peptidoform plain(QStringLiteral("MMK"));
    const Peptidoform first(QStringLiteral("MMK"), {{1, named("Oxidation")}});
    const Peptidoform second(QStringLiteral("MMK"), {{2, named("Oxidation")}});
    const Peptidoform byMass(QStringLiteral("MMK"), {{1, modifications::ofMass(15.994915)}});
    const Peptidoform both(QStringLiteral("MMK"), {{2, named("Oxidation")}, {1, named("Oxidation")}});
    const Peptidoform bothAgain(QStringLiteral("MMK"), {{1, named("Oxidation")}, {2, named("Oxidation")}});

    const QList<Peptidoform> different{plain, first, second, byMass, both, Peptidoform(QStringLiteral("MMR"))};
    for (qsizetype i = 0; i < different.size(); ++i) {
        for (qsizetype j = 0; j < different.size(); ++j)
            EXPECT_EQ(i == j, different[i] == different[j]) << i << " and " << j;
    }
    EXPECT_TRUE(both == bothAgain);
    EXPECT_FALSE(both != bothAgain);
    EXPECT_EQ(qHash(both), qHash(bothAgain));
    EXPECT_NE(qHash(both, 1), qHash(both, 2));

    std::unordered_set<std::size_t> hashes;
    for (const Peptidoform &peptidoform : different)
        hashes.insert(qHash(peptidoform));
    EXPECT_EQ(6u, hashes.size());
}

} // namespace
} // namespace zav
