// SPDX-License-Identifier: Apache-2.0
#include "Enzyme.h"

#include "DigestionFixtures.h"

namespace zav {
namespace {

/// The sequence with a '|' at each site.
std::string cut(const Enzyme &enzyme, const QByteArray &sequence)
{
    QList<int> sites;
    EXPECT_FALSE(enzyme.findSites(sequence, &sites).hasError());
    std::string shown;
    for (int i = 0; i < sequence.size(); ++i) {
        if (sites.contains(i))
            shown += '|';
        shown += sequence[i];
    }
    return shown;
}

std::string cut(const char *enzyme, const QByteArray &sequence)
{
    return cut(Enzyme::named(QString::fromUtf8(enzyme)).value(), sequence);
}

std::string nameOf(const char *spelling)
{
    const Result<Enzyme> enzyme = Enzyme::named(QString::fromUtf8(spelling));
    return enzyme.hasError() ? "unknown" : enzyme.value().name().toStdString();
}

TEST(Enzyme, TrypsinCutsBehindLysineAndArginineButNotBeforeProline)
{
    EXPECT_EQ(cut("Trypsin", "AKCRDKPERPK"), "AK|CR|DKPERPK");
    EXPECT_EQ(cut("Trypsin/P", "AKCRDKPERPK"), "AK|CR|DK|PER|PK");
}

TEST(Enzyme, EndsOfTheSequenceAreNoSites)
{
    EXPECT_EQ(cut("Trypsin", "AAK"), "AAK");
    EXPECT_EQ(cut("Lys-N", "KAAKA"), "KAA|KA");
    EXPECT_EQ(cut("Trypsin", "K"), "K");
    EXPECT_EQ(cut("Trypsin", ""), "");
}

TEST(Enzyme, GlutamylEndopeptidaseCutsNotBehindASecondGlutamateNorBehindAFirstResidue)
{
    EXPECT_EQ(cut("Glu-C", "EAEEEAEA"), "EAE|EEAE|A");
}

TEST(Enzyme, AmbiguousResiduesAreCutLikeThoseTheyStandFor)
{
    EXPECT_EQ(cut("Asp-N", "ABADA"), "A|BA|DA");
    EXPECT_EQ(cut("V8-DE", "AZABADAEPA"), "AZ|AB|AD|AEPA");
}

TEST(Enzyme, NoneCutsNowhere)
{
    EXPECT_EQ(cut("none", "AKRDEFLMWYK"), "AKRDEFLMWYK");
}

TEST(Enzyme, KnownEnzymesCutWhereTheirPublishedPatternsMatch)
{
    std::mt19937 random(1);
    for (const QString &name : Enzyme::names()) {
        const Enzyme enzyme = Enzyme::named(name).value();
        if (enzyme.pattern().isEmpty())
            continue;
        const Enzyme byPattern = Enzyme::withPattern(enzyme.pattern()).value();
        for (int i = 0; i < 200; ++i) {
            const QByteArray sequence = randomSequence(random, i % 50, "ABCDEFGHIJKLMNOPQRSTUVWXYZKREDPP*-");
            ASSERT_EQ(cut(enzyme, sequence), cut(byPattern, sequence)) << name.toStdString();
        }
    }
}

TEST(Enzyme, NamesAreKnownInEveryCaseAndCommonSpelling)
{
    EXPECT_EQ(nameOf("trypsin"), "Trypsin");
    EXPECT_EQ(nameOf("TRYPSIN/P"), "Trypsin/P");
    EXPECT_EQ(nameOf("trypsin_p"), "Trypsin/P");
    EXPECT_EQ(nameOf("LysC"), "Lys-C");
    EXPECT_EQ(nameOf("lys-c/p"), "Lys-C/P");
    EXPECT_EQ(nameOf("Trypsin/K"), "Lys-C");
    EXPECT_EQ(nameOf("Clostripain"), "Arg-C");
    EXPECT_EQ(nameOf("glutamyl endopeptidase"), "Glu-C");
    EXPECT_EQ(nameOf("asp-n_ambic"), "Asp-N_ambic");
    EXPECT_EQ(nameOf("pepsina"), "PepsinA");
    EXPECT_EQ(nameOf("no cleavage"), "none");
    EXPECT_EQ(nameOf("unspecific cleavage"), "unspecific");
    EXPECT_EQ(nameOf("non-specific"), "unspecific");
    for (const QString &name : Enzyme::names())
        EXPECT_EQ(Enzyme::named(name.toUpper()).value().name(), name);
}

TEST(Enzyme, UnknownNamesAreRefusedWithTheKnownOnes)
{
    EXPECT_EQ(Enzyme::named(QStringLiteral("tripsin")).error().message().toStdString(),
              "enzyme is 'tripsin', must be one of Trypsin, Trypsin/P, Lys-C, Lys-C/P, Lys-N, Arg-C, Glu-C, V8-E, "
              "V8-DE, Asp-N, Asp-N_ambic, Chymotrypsin, PepsinA, none, unspecific");
    for (const char *name : {"", " ", "-", "trypsin k glu", "no enzyme"}) {
        EXPECT_EQ(nameOf(name), "unknown") << name;
        EXPECT_TRUE(Enzyme::named(QString::fromUtf8(name)).error().equals(InvalidInput));
    }
}

TEST(Enzyme, OnlyLysNAndAspNCutBeforeTheirResidue)
{
    QStringList before;
    for (const QString &name : Enzyme::names()) {
        if (Enzyme::named(name).value().cutsBeforeItsResidue())
            before.append(name);
    }
    EXPECT_EQ(before, QStringList({"Lys-N", "Asp-N", "Asp-N_ambic"}));
    EXPECT_FALSE(Enzyme::withPattern(QStringLiteral("(?=K)")).value().cutsBeforeItsResidue());
}

TEST(Enzyme, PatternCutsWhereItMatches)
{
    const Enzyme cyanogenBromide = Enzyme::withPattern(QStringLiteral("(?<=M)")).value();
    EXPECT_EQ(cut(cyanogenBromide, "MAMMAM"), "M|AM|M|AM");
    const Enzyme formicAcid = Enzyme::withPattern(QStringLiteral("((?<=D))|((?=D))")).value();
    EXPECT_EQ(cut(formicAcid, "DADAA"), "D|A|D|AA");
}

std::string patternError(const char *pattern)
{
    const Result<Enzyme> enzyme = Enzyme::withPattern(QString::fromUtf8(pattern));
    EXPECT_TRUE(enzyme.error().equals(InvalidInput)) << pattern;
    return enzyme.error().message().toStdString();
}

TEST(Enzyme, PatternThatMatchesResiduesIsRefused)
{
    const std::string rule = "must match between two residues, as (?<=[KR])(?!P) does, but matches ";
    EXPECT_EQ(patternError("[KR]"), "cleavagePattern is '[KR]', " + rule + "'K'");
    EXPECT_EQ(patternError("(?<=K)|R.?"), "cleavagePattern is '(?<=K)|R.?', " + rule + "'RA'");
    EXPECT_EQ(patternError(".*"), "cleavagePattern is '.*', " + rule + "'AAABACADAEAFAGAHAIAJ...'");
}

TEST(Enzyme, PatternThatIsNoExpressionIsRefused)
{
    EXPECT_EQ(patternError(""), "cleavagePattern is '', must be a regular expression (it is empty)");
    EXPECT_EQ(patternError("(?<=K").substr(0, 58), "cleavagePattern is '(?<=K', must be a regular expression (");
}

TEST(Enzyme, PatternThatMatchesLongerStretchesIsRefusedWhenTheyAppear)
{
    const Result<Enzyme> enzyme = Enzyme::withPattern(QStringLiteral("(?<=K)|KRDE"));
    ASSERT_FALSE(enzyme.hasError());
    QList<int> sites;
    EXPECT_FALSE(enzyme.value().findSites("AKAKA", &sites).hasError());
    EXPECT_EQ(sites, QList<int>({2, 4}));
    EXPECT_TRUE(enzyme.value().findSites("AAKRDEA", &sites).equals(InvalidInput));
}

} // namespace
} // namespace zav
