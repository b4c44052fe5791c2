// SPDX-License-Identifier: Apache-2.0
#include "DecoyMaker.h"

#include "DigestionFixtures.h"
#include "SplitMix64.h"

#include <algorithm>
#include <map>
#include <numeric>

namespace zav {
namespace {

const DecoyMaker REVERSED({DecoyKind::Reversed, 0}, DecoyMaker::LastResidue);
const DecoyMaker SHUFFLED({DecoyKind::Shuffled, 1}, DecoyMaker::LastResidue);

// The check values of Rosetta Code's task "Pseudo-random numbers/Splitmix64" for the seed 1234567.
TEST(SplitMix64, DrawsTheKnownNumbers)
{
    SplitMix64 generator(1234567);
    for (const quint64 expected : {6457827717110365317U, 3203168211198807973U, 9817491932198370423U,
                                   4593380528125082431U, 16408922859458223821U})
        EXPECT_EQ(generator.next(), expected);
}

TEST(SplitMix64, DrawsBelowALimitEvenly)
{
    SplitMix64 generator(1);
    std::map<quint64, int> draws;
    for (int i = 0; i < 60000; ++i)
        ++draws[generator.below(6)];
    ASSERT_EQ(draws.size(), 6U);
    for (const auto &[number, count] : draws)
        EXPECT_NEAR(count, 10000, 365) << number; // four standard deviations of the binomial distribution
}

TEST(DecoyMaker, ReversesAllButTheLastResidue)
{
    EXPECT_EQ(REVERSED.make("PEPTIDEK", 0), "EDITPEPK");
}

TEST(DecoyMaker, ReversesAllButTheFirstResidueForEnzymesThatCutBeforeTheirs)
{
    EXPECT_EQ(DecoyMaker({DecoyKind::Reversed, 0}, DecoyMaker::FirstResidue).make("KPEPTIDE", 0), "KEDITPEP");
}

TEST(DecoyMaker, DecoysAreThoseOfTheSecondProgram)
{
    for (const QStringList &row : digestionTable("decoys.tsv")) {
        const DecoyKind kind = row[0] == QLatin1String("reversed") ? DecoyKind::Reversed : DecoyKind::Shuffled;
        const auto end = row[1] == QLatin1String("first") ? DecoyMaker::FirstResidue : DecoyMaker::LastResidue;
        const DecoyMaker maker({kind, row[2].toULongLong()}, end);
        EXPECT_EQ(maker.make(row[4].toLatin1(), row[3].toInt()).toStdString(), row[5].toStdString());
    }
}

TEST(DecoyMaker, OneAndTwoResiduesStayAsTheyAre)
{
    EXPECT_EQ(SHUFFLED.make("K", 0), "K");
    EXPECT_EQ(SHUFFLED.make("", 0), "");
    EXPECT_EQ(REVERSED.make("AK", 0), "AK");
}

TEST(DecoyMaker, ShuffledDecoyHasItsTargetsResiduesAndLastOne)
{
    std::mt19937 random(3);
    for (int i = 0; i < 500; ++i) {
        const QByteArray target = randomSequence(random, 7 + i % 30);
        QByteArray decoy = SHUFFLED.make(target, 0);
        EXPECT_EQ(decoy.back(), target.back());
        QByteArray sorted = target;
        std::sort(sorted.begin(), sorted.end());
        std::sort(decoy.begin(), decoy.end());
        EXPECT_EQ(decoy, sorted);
    }
}

TEST(DecoyMaker, SeedAndAttemptChangeTheShuffledDecoy)
{
    const QByteArray target = "ACDEFGHILMNPQSTVWYK";
    const DecoyMaker otherSeed({DecoyKind::Shuffled, 2}, DecoyMaker::LastResidue);
    EXPECT_EQ(SHUFFLED.make(target, 0), SHUFFLED.make(target, 0));
    EXPECT_NE(SHUFFLED.make(target, 0), SHUFFLED.make(target, 1));
    EXPECT_NE(SHUFFLED.make(target, 0), otherSeed.make(target, 0));
}

TEST(DecoyMaker, SimilarShuffledDecoysArePassedOver)
{
    int passedOver = 0;
    std::mt19937 random(5);
    for (int i = 0; i < 2000; ++i) {
        const QByteArray target = randomSequence(random, 10, "AC"); // often similar
        int attempt = 0;
        const std::optional<QByteArray> decoy = SHUFFLED.makeAcceptable(target, &attempt);
        for (int earlier = 0; earlier < attempt; ++earlier) {
            const QByteArray dropped = SHUFFLED.make(target, earlier);
            const auto same = std::inner_product(target.begin(), target.end(), dropped.begin(), 0, std::plus<>(),
                                                 [](char a, char b) { return a == b ? 1 : 0; });
            EXPECT_GT(same, 7);
            ++passedOver;
        }
        EXPECT_EQ(decoy.has_value(), attempt < SHUFFLED.attemptCount());
        EXPECT_EQ(decoy.value_or(SHUFFLED.make(target, attempt)), SHUFFLED.make(target, attempt));
    }
    EXPECT_GT(passedOver, 100);
}

TEST(DecoyMaker, PeptideOfOneKindOfResidueHasNoShuffledDecoy)
{
    int attempt = 0;
    EXPECT_FALSE(SHUFFLED.makeAcceptable("AAAAAAAK", &attempt).has_value());
    EXPECT_EQ(attempt, 10);
}

TEST(DecoyMaker, ReversedDecoyIsNeverTooSimilar)
{
    int attempt = 0;
    EXPECT_EQ(REVERSED.makeAcceptable("AAAAAAAK", &attempt).value_or(""), "AAAAAAAK");
    EXPECT_EQ(attempt, 0);
}

} // namespace
} // namespace zav
