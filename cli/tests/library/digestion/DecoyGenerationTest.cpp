// SPDX-License-Identifier: Apache-2.0
#include "DecoyMaker.h"
#include "PeptideDigestFixture.h"

#include <algorithm>
#include <optional>

namespace zav {
namespace {

using DecoyGenerationTest = PeptideDigestTest;

TEST_F(DecoyGenerationTest, ReversedDecoysCarryTheirTargetsProteins)
{
    const auto digested = digest(">P1\nACDKEFGK\n>P2\nEFGK\n", tryptic(DecoyKind::Reversed));
    EXPECT_EQ(shown(digested), "ACDK:P1 [DCAK]:DECOY_P1 EFGK:P1,P2 [GFEK]:DECOY_P1,DECOY_P2");
    EXPECT_EQ(digested.counts.decoys, 2);
}

TEST_F(DecoyGenerationTest, ReversedDecoyThatEqualsATargetIsDroppedAndCounted)
{
    // ACAK is its own reverse; CDEK and EDCK are each other's.
    const auto digested = digest(">P1\nACAKCDEKEDCKGGHK\n", tryptic(DecoyKind::Reversed));
    EXPECT_EQ(shown(digested), "ACAK:P1 CDEK:P1 EDCK:P1 GGHK:P1 [HGGK]:DECOY_P1");
    EXPECT_EQ(digested.counts.decoysEqualToTarget, 3);
    EXPECT_EQ(digested.counts.decoys, 1);
}

TEST_F(DecoyGenerationTest, DecoysKeepTheFirstResidueWhenTheEnzymeCutsBeforeIt)
{
    PeptideRequest request = tryptic(DecoyKind::Reversed);
    request.digestion.enzyme = QStringLiteral("Lys-N");
    EXPECT_EQ(shown(digest(">P1\nKACDKEFG\n", request)), "KACD:P1 [KDCA]:DECOY_P1 KEFG:P1 [KGFE]:DECOY_P1");
}

TEST_F(DecoyGenerationTest, ShuffledDecoyDependsOnSequenceAndSeedAlone)
{
    const auto decoyOf = [this](const QByteArray &fasta, quint64 seed) {
        PeptideRequest request = tryptic(DecoyKind::Shuffled);
        request.decoys.seed = seed;
        std::string decoy;
        for (const auto &[peptide, proteins] : asMap(readAll(*digest(fasta, request).peptides))) {
            std::string sorted = peptide.first;
            std::sort(sorted.begin(), sorted.end());
            if (peptide.second && sorted == "ACDEFGHIKLMN")
                decoy = peptide.first;
        }
        return decoy;
    };
    const std::string alone = decoyOf(">P1\nACDEFGHILMNK\n", 1);
    EXPECT_EQ(alone.size(), 12U);
    EXPECT_EQ(alone.back(), 'K');
    EXPECT_EQ(decoyOf(">P7\nWWWKACDEFGHILMNKYYYYK\n>P8\nPPPPK\n", 1), alone);
    EXPECT_NE(decoyOf(">P1\nACDEFGHILMNK\n", 2), alone);
}

/// The targets and the decoys that each of them has at its first acceptable attempt.
Peptides withExpectedDecoys(const Peptides &targets, const DecoyOptions &options, DigestionCounts *counts)
{
    const DecoyMaker maker(options, DecoyMaker::LastResidue);
    Peptides all = targets;
    for (const auto &[target, proteins] : targets) {
        const QByteArray sequence = QByteArray::fromStdString(target.first);
        std::optional<QByteArray> decoy;
        bool equalledAtLast = false;
        for (int attempt = 0; !decoy && attempt < maker.attemptCount(); ++attempt) {
            decoy = maker.makeAcceptable(sequence, &attempt);
            if (!decoy)
                equalledAtLast = false;
            else if ((equalledAtLast = targets.count({decoy->toStdString(), false}) > 0))
                decoy.reset();
        }
        if (!decoy) {
            ++(equalledAtLast ? counts->decoysEqualToTarget : counts->decoysTooSimilar);
            continue;
        }
        std::set<int> &ofDecoy = all[{decoy->toStdString(), true}];
        counts->decoysShared += ofDecoy.empty() ? 0 : 1;
        ofDecoy.insert(proteins.begin(), proteins.end());
    }
    return all;
}

TEST_F(DecoyGenerationTest, ShuffledDecoysThatEqualATargetAreTriedAgain)
{
    // Few kinds of residues and short peptides, so that each count of dropped decoys is reached.
    const QByteArray fasta = randomFasta(2, 600, "AACDK");
    PeptideRequest request = tryptic(DecoyKind::Shuffled);
    request.digestion.minimumLength = 2;
    request.digestion.missedCleavages = 1;
    const Peptides targets = expectedTargets(fasta, request.digestion);
    DigestionCounts counts;
    const Peptides expected = withExpectedDecoys(targets, request.decoys, &counts);
    counts.targets = static_cast<qint64>(targets.size());
    counts.decoys = static_cast<qint64>(expected.size() - targets.size());
    EXPECT_GT(counts.decoysEqualToTarget, 0);
    EXPECT_GT(counts.decoysTooSimilar, 0);
    EXPECT_GT(counts.decoysShared, 0);

    const DigestedPeptides digested = digest(fasta, request);
    EXPECT_TRUE(asMap(readAll(*digested.peptides)) == expected);
    expectEqual(digested.counts, counts);
    EXPECT_EQ(counts.targets,
              counts.decoys + counts.decoysEqualToTarget + counts.decoysTooSimilar + counts.decoysShared);
}

} // namespace
} // namespace zav
