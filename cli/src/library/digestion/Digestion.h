// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QString>

#include <functional>

namespace zav {

/// How proteins are cut into peptides.
struct DigestionOptions
{
    /// A name that `Enzyme::named` knows.
    QString enzyme = QStringLiteral("Trypsin");

    /// A regular expression for `Enzyme::withPattern`; where it is set it takes the place of `enzyme`.
    QString cleavagePattern;

    /// How many sites a peptide may contain uncut. 0 or more; without meaning for the enzyme `unspecific`.
    int missedCleavages = 1;

    /// Residues in a peptide. `minimumLength` within 1 to 65535, `maximumLength` from there to 65535.
    int minimumLength = 7;
    int maximumLength = 30;

    /// Whether one end of a peptide may lie anywhere, with the other at a site or an end of the protein.
    bool semiSpecific = false;

    /// Whether a protein that begins with methionine is digested without it too, as cells remove it from many proteins
    /// (Giglione et al., Cell. Mol. Life Sci. 61, 1455, 2004). Both forms of its first peptides are kept; its place is
    /// no cleavage site.
    bool removesMethionine = false;

    /// `InvalidInput`, naming field, value and rule, for the first field out of its range, in the order above.
    Error checkForParameterErrors() const;
};

/// A peptide that cannot be part of a library, at one of its places in a protein.
struct SkippedPeptide
{
    QString protein; ///< accession; empty for a peptide of a list that names none
    QString peptide;
    QString reason; ///< "residue X at position 4", "5 residues, not 7 to 30"
};

/// What came of a digestion.
struct DigestionCounts
{
    qint64 proteins = 0;           ///< read, with those below
    qint64 repeatedAccessions = 0; ///< proteins whose accession had come before: theirs count as one
    qint64 emptyProteins = 0;      ///< without a residue
    qint64 skipped = 0;            ///< peptides with residues outside the 20, at each of their places
    qint64 unreadable = 0;         ///< rows of a list whose modifications cannot be read
    qint64 targets = 0;
    qint64 decoys = 0;

    /// Targets without a decoy: it equalled a target (shuffled: at the last attempt), or no attempt was different
    /// enough from its target.
    qint64 decoysEqualToTarget = 0;
    qint64 decoysTooSimilar = 0;

    /// Targets that share their decoy with another target; it occurs once, with the proteins of both. `targets` is the
    /// sum of `decoys` and of these three counts of targets without a decoy of their own.
    qint64 decoysShared = 0;
};

/// What a caller wants to hear of a digestion while it runs; each may be empty. All are called by the thread that
/// digests.
struct DigestionHooks
{
    /// Every skipped peptide, in the order of the file. An error stops the digestion and is returned.
    std::function<Error(const SkippedPeptide &)> skipped;

    /// After each protein, how much of the file was read, within 0 to 1.
    std::function<void(double)> progress;

    /// Asked after each protein and peptide; true ends the digestion with the `Failure` "interrupted".
    std::function<bool()> isInterrupted;

    Error checkForInterrupt() const
    {
        return isInterrupted && isInterrupted() ? Error(Failure, QStringLiteral("interrupted")) : Error();
    }
};

} // namespace zav
