// SPDX-License-Identifier: Apache-2.0
#include "PeptidoformMaker.h"

#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace zav {
namespace {

QList<ModificationRule> rules(const QStringList &texts)
{
    QList<ModificationRule> parsed;
    for (const QString &text : texts)
        parsed.append(ModificationRule::parse(text).value());
    return parsed;
}

PeptidoformRules rulesOf(const QStringList &fixed, const QStringList &variable, int maxVariable)
{
    return {rules(fixed), rules(variable), maxVariable};
}

std::string made(const PeptidoformRules &rules, const QByteArray &sequence, ProteinEnds ends = {})
{
    QStringList texts;
    for (const Peptidoform &peptidoform : PeptidoformMaker(rules).make(sequence, ends))
        texts.append(peptidoform.toProForma());
    return texts.join(QLatin1Char(' ')).toStdString();
}

TEST(PeptidoformMaker, CysteinesAreCarbamidomethylatedUnlessSaidOtherwise)
{
    EXPECT_EQ(made({}, "ACDCM"), "AC[Carbamidomethyl]DC[Carbamidomethyl]M");
    EXPECT_EQ(made(rulesOf({}, {}, 1), "ACDCM"), "ACDCM");
    EXPECT_EQ(made(rulesOf({"TMT6plex@K,N-term"}, {}, 1), "AK"), "[TMT6plex]-AK[TMT6plex]");
}

TEST(PeptidoformMaker, OrderIsByNumberThenPositionThenRule)
{
    EXPECT_EQ(made(rulesOf({}, {"Oxidation@M"}, 2), "MMK"),
              "MMK M[Oxidation]MK MM[Oxidation]K M[Oxidation]M[Oxidation]K");
    // Positions come before rules: both first positions with every rule, then the next.
    EXPECT_EQ(made(rulesOf({}, {"Methyl@K", "Acetyl@K"}, 2), "KAKK"),
              "KAKK "
              "K[Methyl]AKK K[Acetyl]AKK KAK[Methyl]K KAK[Acetyl]K KAKK[Methyl] KAKK[Acetyl] "
              "K[Methyl]AK[Methyl]K K[Methyl]AK[Acetyl]K K[Acetyl]AK[Methyl]K K[Acetyl]AK[Acetyl]K "
              "K[Methyl]AKK[Methyl] K[Methyl]AKK[Acetyl] K[Acetyl]AKK[Methyl] K[Acetyl]AKK[Acetyl] "
              "KAK[Methyl]K[Methyl] KAK[Methyl]K[Acetyl] KAK[Acetyl]K[Methyl] KAK[Acetyl]K[Acetyl]");
}

TEST(PeptidoformMaker, ProteinTerminiNeedTheEndOfTheProtein)
{
    const PeptidoformRules rules = rulesOf({}, {"Acetyl@protein-N-term", "Amidated@protein-C-term"}, 1);
    EXPECT_EQ(made(rules, "AK"), "AK");
    EXPECT_EQ(made(rules, "AK", {true, false}), "AK [Acetyl]-AK");
    EXPECT_EQ(made(rules, "AK", {false, true}), "AK AK-[Amidated]");
}

TEST(PeptidoformMaker, VariableModificationTakesThePlaceOfAFixedOne)
{
    EXPECT_EQ(made(rulesOf({"Carbamidomethyl@C", "TMT6plex@N-term"}, {"Propionamide@C", "Acetyl@protein-N-term"}, 2),
                   "CK", {true, false}),
              "[TMT6plex]-C[Carbamidomethyl]K [Acetyl]-C[Carbamidomethyl]K [TMT6plex]-C[Propionamide]K "
              "[Acetyl]-C[Propionamide]K");
}

TEST(PeptidoformMaker, NoPeptidoformComesTwice)
{
    EXPECT_EQ(made(rulesOf({}, {"Oxidation@M", "Oxidation@MW", "Acetyl@N-term", "Acetyl@protein-N-term"}, 1), "MW",
                   {true, true}),
              "MW [Acetyl]-MW M[Oxidation]W MW[Oxidation]");
}

TEST(PeptidoformMaker, MostVariableModificationsMayBeNone)
{
    EXPECT_EQ(made(rulesOf({}, {"Oxidation@M"}, 0), "MM"), "MM");
}

TEST(PeptidoformMaker, FirstPeptidoformsAreKeptOfAPeptideWithTooMany)
{
    const PeptidoformMaker maker(rulesOf({}, {"Phospho@S"}, 10));
    const QByteArray sequence(50, 'S');
    const QList<Peptidoform> peptidoforms = maker.make(sequence, {});
    ASSERT_EQ(peptidoforms.size(), PeptidoformMaker::MOST_OF_A_PEPTIDE);
    EXPECT_EQ(maker.addedMasses(sequence, {}).size(), PeptidoformMaker::MOST_OF_A_PEPTIDE);
    EXPECT_TRUE(peptidoforms.first().modifications().isEmpty());
    // 1 + 50 + 1225 have two or fewer; the 4096th is among those with three.
    EXPECT_EQ(peptidoforms[1275].modifications().size(), 2);
    EXPECT_EQ(peptidoforms.last().modifications().size(), 3);
    double binomials = 0.0;
    double binomial = 1.0;
    for (int k = 0; k <= 10; ++k) {
        binomials += binomial;
        binomial *= (50.0 - k) / (k + 1);
    }
    EXPECT_NEAR(maker.count(sequence, {}), binomials, 1e-9 * binomials);
}

TEST(PeptidoformMaker, NamedPeptidoformGetsFixedModificationsWhereItHasNone)
{
    const PeptidoformMaker maker(rulesOf({"Carbamidomethyl@C", "TMT6plex@K,N-term"}, {"Oxidation@M"}, 1));
    const auto withFixed = [&](const char *text) {
        return maker.withFixed(Peptidoform::fromProForma(QString::fromUtf8(text)).value()).toProForma().toStdString();
    };
    EXPECT_EQ(withFixed("[Acetyl]-MC[Propionamide]CK"), "[Acetyl]-MC[Propionamide]C[Carbamidomethyl]K[TMT6plex]");
    EXPECT_EQ(withFixed("M[Oxidation]A-[Amidated]"), "[TMT6plex]-M[Oxidation]A-[Amidated]");
}

// The same set by another way: every site takes nothing or one of its modifications, recursively, then a sort.
struct Chosen
{
    std::vector<int> positions;
    std::vector<int> rules;
};

void chooseFrom(int position, const std::map<int, std::vector<int>> &sites, int most, const Chosen &chosen,
                std::vector<Chosen> *all)
{
    const auto site = sites.lower_bound(position);
    if (site == sites.end()) {
        all->push_back(chosen);
        return;
    }
    chooseFrom(site->first + 1, sites, most, chosen, all);
    for (const int rule : site->second) {
        if (static_cast<int>(chosen.positions.size()) == most)
            break;
        Chosen more = chosen;
        more.positions.push_back(site->first);
        more.rules.push_back(rule);
        chooseFrom(site->first + 1, sites, most, more, all);
    }
}

TEST(PeptidoformMaker, AgreesWithNaiveEnumeration)
{
    // Rules 0 to 2 with one site each that the enumeration below finds by itself.
    const PeptidoformRules base = rulesOf({"Carbamidomethyl@C"}, {"Phospho@ST", "Oxidation@M", "Methyl@SK"}, 0);
    const std::map<char, std::vector<int>> served{{'S', {0, 2}}, {'T', {0}}, {'M', {1}}, {'K', {2}}};
    std::mt19937 random(3);
    for (int i = 0; i < 300; ++i) {
        PeptidoformRules rules = base;
        rules.maxVariable = static_cast<int>(random() % 4);
        QByteArray sequence;
        for (int length = 1 + static_cast<int>(random() % 9); length > 0; --length)
            sequence.append("ACSTMK"[random() % 6]);
        std::map<int, std::vector<int>> sites;
        for (int place = 0; place < sequence.size(); ++place) {
            if (const auto found = served.find(sequence[place]); found != served.end())
                sites[place + 1] = found->second;
        }
        std::vector<Chosen> all;
        chooseFrom(0, sites, rules.maxVariable, {}, &all);
        std::sort(all.begin(), all.end(), [](const Chosen &a, const Chosen &b) {
            return std::make_tuple(a.positions.size(), a.positions, a.rules) <
                   std::make_tuple(b.positions.size(), b.positions, b.rules);
        });

        const PeptidoformMaker maker(rules);
        const QList<Peptidoform> peptidoforms = maker.make(sequence, {});
        const QList<double> added = maker.addedMasses(sequence, {});
        ASSERT_EQ(peptidoforms.size(), static_cast<qsizetype>(all.size())) << sequence.toStdString();
        ASSERT_EQ(added.size(), peptidoforms.size());
        EXPECT_EQ(maker.count(sequence, {}), static_cast<double>(all.size()));
        const double plain = Peptidoform(QString::fromLatin1(sequence)).monoisotopicMass();
        for (qsizetype k = 0; k < peptidoforms.size(); ++k) {
            QList<PlacedModification> placed;
            for (int place = 0; place < sequence.size(); ++place) {
                if (sequence[place] == 'C')
                    placed.append({place + 1, rules.fixed[0].modification});
            }
            const Chosen &chosen = all[static_cast<std::size_t>(k)];
            for (std::size_t j = 0; j < chosen.positions.size(); ++j)
                placed.append({chosen.positions[j], rules.variable[chosen.rules[j]].modification});
            EXPECT_TRUE(peptidoforms[k] == Peptidoform(QString::fromLatin1(sequence), placed))
                << peptidoforms[k].toProForma().toStdString();
            EXPECT_NEAR(plain + added[k], peptidoforms[k].monoisotopicMass(), 1e-9);
        }
    }
}

TEST(PeptidoformRules, FaultsAreNamed)
{
    const auto fault = [](const PeptidoformRules &rules) { return rules.check().message().toStdString(); };
    EXPECT_EQ(fault({}), "");
    EXPECT_EQ(fault(rulesOf({"Carbamidomethyl@C"}, {"Propionamide@C", "Carbamidomethyl@K"}, 1)), "");
    EXPECT_EQ(fault(rulesOf({"Carbamidomethyl@C", "Methylthio@CM"}, {}, 1)),
              "Carbamidomethyl@C and Methylthio@C,M are fixed at the same site");
    EXPECT_EQ(fault(rulesOf({"Carbamidomethyl@C"}, {"Carbamidomethyl@C"}, 1)),
              "Carbamidomethyl@C cannot be variable: Carbamidomethyl@C is fixed");
    EXPECT_EQ(fault(rulesOf({}, {}, 11)), "11 variable modifications of a peptide are not within 0 to 10");
    EXPECT_EQ(fault(rulesOf({}, {}, -1)), "-1 variable modifications of a peptide are not within 0 to 10");
}

} // namespace
} // namespace zav
