// SPDX-License-Identifier: Apache-2.0
#include "LibraryPeptidoforms.h"

#include "PeptideDigest.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

LibraryOptions optionsWith(const QStringList &variable, int maxVariable = 1)
{
    LibraryOptions options;
    for (const QString &text : variable)
        options.modifications.variable.append(ModificationRule::parse(text).value());
    options.modifications.maxVariable = maxVariable;
    return options;
}

/// In ProForma, with a `!` behind variants.
std::string shown(const LibraryOptions &options, const LibraryPeptide &peptide)
{
    QStringList texts;
    for (const LibraryPeptidoform &one : LibraryPeptidoforms(options).of(peptide))
        texts.append(one.peptidoform.toProForma() + QLatin1String(one.isVariant ? "!" : ""));
    return texts.join(QLatin1Char(' ')).toStdString();
}

TEST(LibraryPeptidoforms, ThoseOfTheRulesComeBeforeThoseOfTheList)
{
    const LibraryOptions options = optionsWith({"Oxidation@M"});
    LibraryPeptide peptide{"MCK", {}, false};
    EXPECT_EQ(shown(options, peptide), "MC[Carbamidomethyl]K M[Oxidation]C[Carbamidomethyl]K!");
    peptide.named = {"MCK[Methyl]", "MC[Carbamidomethyl]K", "M[Oxidation]CK", "M[Phospho]CK"};
    EXPECT_EQ(shown(options, peptide), "MC[Carbamidomethyl]K M[Oxidation]C[Carbamidomethyl]K! "
                                       "MC[Carbamidomethyl]K[Methyl]! M[Phospho]C[Carbamidomethyl]K!");
    peptide.isPlain = false;
    EXPECT_EQ(shown(options, peptide), "MC[Carbamidomethyl]K[Methyl]! MC[Carbamidomethyl]K "
                                       "M[Oxidation]C[Carbamidomethyl]K! M[Phospho]C[Carbamidomethyl]K!");
}

TEST(LibraryPeptidoforms, CountsWhatTheLibraryWillHold)
{
    const TemporaryFiles files;
    PeptideRequest request;
    request.digestion.missedCleavages = 0;
    request.decoys.kind = DecoyKind::Reversed;
    const LibraryOptions options = optionsWith({"Oxidation@M", "Phospho@STY", "Acetyl@protein-N-term"}, 2);
    const QString path =
        files.write(QStringLiteral("p.fasta"), ">P1\nMAGICPEPTIDEKSAMPLEPEPTIDERLVNELTEFAK\n"
                                               ">P2\nLVNELTEFAKGGGGGGKAAAAAAAAAAAAAAAAAAAAAAAAAAAAK\n");
    auto digested = digestFasta(path, request);
    ASSERT_FALSE(digested.hasError());
    PeptideSet &peptides = *std::move(digested).value().peptides.release();
    const std::unique_ptr<PeptideSet> owner(&peptides);

    PeptideBlock block;
    ASSERT_FALSE(peptides.read(0, peptides.count(), &block).hasError());
    const LibraryPeptidoforms peptidoforms(options);
    PeptidoformCounts expected;
    for (const LibraryPeptide &peptide : block) {
        ++expected.peptides;
        for (const LibraryPeptidoform &one : peptidoforms.of(peptide)) {
            ++expected.peptidoforms;
            for (const int charge : {2, 3}) {
                const double mz = one.peptidoform.monoisotopicMass() / charge + 1.00727646677;
                expected.precursors += mz >= 300 && mz <= 1800;
            }
        }
    }
    EXPECT_GT(expected.peptidoforms, 2 * expected.peptides);
    const auto never = [] { return false; };
    const PeptidoformCounts counts = peptidoforms.count(&peptides, 0, peptides.count(), never).value();
    EXPECT_EQ(counts.peptides, expected.peptides);
    EXPECT_EQ(counts.peptidoforms, expected.peptidoforms);
    EXPECT_EQ(counts.precursors, expected.precursors);
    EXPECT_EQ(counts.cutPeptides, 0);

    const qint64 half = peptides.count() / 2;
    EXPECT_EQ(peptidoforms.count(&peptides, 0, half, never).value().peptidoforms +
                  peptidoforms.count(&peptides, half, peptides.count(), never).value().peptidoforms,
              expected.peptidoforms);
    EXPECT_EQ(peptidoforms.count(&peptides, 0, half, [] { return true; }).error().message(),
              QStringLiteral("interrupted"));
}

TEST(LibraryPeptidoforms, CountsAreGroupedByThousands)
{
    EXPECT_EQ((PeptidoformCounts{1301818, 2140332, 4216004, 0}.text()),
              QStringLiteral("1,301,818 peptides, 2,140,332 peptidoforms, 4,216,004 precursors"));
}

} // namespace
} // namespace zav
