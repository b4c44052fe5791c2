// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Digester.h"
#include "DigestionFixtures.h"
#include "PeptideDigest.h"
#include "TemporaryFiles.h"

#include <map>
#include <set>
#include <utility>

namespace zav {

/// Sequence and whether it is a decoy, with the proteins.
using Peptides = std::map<std::pair<std::string, bool>, std::set<int>>;

/// Trypsin without missed cleavages, 3 residues or more.
inline PeptideRequest tryptic(DecoyKind decoys = DecoyKind::None)
{
    PeptideRequest request;
    request.digestion.missedCleavages = 0;
    request.digestion.minimumLength = 3;
    request.decoys.kind = decoys;
    return request;
}

inline PeptideBlock readAll(PeptideSet &source)
{
    PeptideBlock block;
    EXPECT_FALSE(source.read(0, source.count(), &block).hasError());
    EXPECT_EQ(block.size(), source.count());
    return block;
}

inline Peptides asMap(const PeptideBlock &block)
{
    Peptides peptides;
    for (const LibraryPeptide &peptide : block)
        peptides[{peptide.sequence.toByteArray().toStdString(), peptide.isDecoy}] = {peptide.proteins.begin(),
                                                                                     peptide.proteins.end()};
    EXPECT_EQ(peptides.size(), size_t(block.size()));
    return peptides;
}

class PeptideDigestTest : public ::testing::Test
{
protected:
    DigestedPeptides digest(const QByteArray &fasta, const PeptideRequest &request, const DigestionHooks &hooks = {})
    {
        auto result = digestFasta(m_files.write(QStringLiteral("p.fasta"), fasta), request, hooks);
        EXPECT_FALSE(result.hasError()) << result.error().message().toStdString();
        return std::move(result).value();
    }

    DigestedPeptides readTable(const QByteArray &table, const PeptideRequest &request, const DigestionHooks &hooks = {})
    {
        auto result = readPeptideTable(m_files.write(QStringLiteral("p.tsv"), table), request, hooks);
        EXPECT_FALSE(result.hasError()) << result.error().message().toStdString();
        return std::move(result).value();
    }

    /// `SEQUENCE:protein,protein` of every peptide, decoys in brackets, a blank between.
    static std::string shown(const DigestedPeptides &digested)
    {
        std::string text;
        for (const LibraryPeptide &peptide : readAll(*digested.peptides)) {
            QStringList accessions;
            for (const int protein : peptide.proteins)
                accessions.append(digested.peptides->proteins().protein(protein, peptide.isDecoy).accession);
            const QString sequence = QString::fromLatin1(peptide.sequence);
            const QString name = peptide.isDecoy ? QStringLiteral("[%1]").arg(sequence) : sequence;
            text += (text.empty() ? "" : " ") + (name + ':' + accessions.join(',')).toStdString();
        }
        return text;
    }

    TemporaryFiles m_files;
};

/// Random proteins that share stretches, with residues outside the 20.
inline QByteArray randomFasta(quint32 seed, int count, std::string_view letters)
{
    std::mt19937 random(seed);
    QByteArray fasta;
    QByteArray shared = randomSequence(random, 60, letters);
    for (int i = 0; i < count; ++i) {
        const QByteArray own = randomSequence(random, static_cast<int>(random() % 200), letters);
        fasta += ">P" + QByteArray::number(i) + '\n' + own + (i % 3 == 0 ? shared : QByteArray()) + '\n';
        if (i % 50 == 0)
            shared = randomSequence(random, 60, letters);
    }
    return fasta;
}

/// The peptides of such proteins, from sets and maps.
inline Peptides expectedTargets(const QByteArray &fasta, const DigestionOptions &options)
{
    Peptides peptides;
    Digester digester = Digester::create(options).value();
    const QList<QByteArray> lines = fasta.split('\n');
    for (int i = 0; 2 * i + 1 < lines.size(); ++i) {
        const Error error = digester.digest(lines[2 * i + 1], [&](QByteArrayView peptide, ProteinEnds) {
            const std::string sequence = peptide.toByteArray().toStdString();
            if (sequence.find_first_not_of("ACDEFGHIKLMNPQRSTVWY") == std::string::npos)
                peptides[{sequence, false}].insert(i);
            return Error();
        });
        EXPECT_FALSE(error.hasError());
    }
    return peptides;
}

inline void expectEqual(const DigestionCounts &a, const DigestionCounts &b)
{
    EXPECT_EQ(a.decoysEqualToTarget, b.decoysEqualToTarget);
    EXPECT_EQ(a.decoysTooSimilar, b.decoysTooSimilar);
    EXPECT_EQ(a.decoysShared, b.decoysShared);
    EXPECT_EQ(a.targets, b.targets);
    EXPECT_EQ(a.decoys, b.decoys);
}

} // namespace zav
