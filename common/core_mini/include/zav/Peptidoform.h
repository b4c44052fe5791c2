// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Export.h>
#include <zav/Modifications.h>
#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <cstddef>

namespace zav {

/// A modification at its place in a peptide of n residues.
struct PlacedModification
{
    int position = 0; ///< 0: the N-terminus, 1 to n: the residue, n + 1: the C-terminus
    Modification modification;

    friend bool operator==(const PlacedModification &left, const PlacedModification &right)
    {
        return left.position == right.position && left.modification == right.modification;
    }
};

/// A linear peptide with its modifications.
///
/// A plain sequence is a peptide without any: its cysteines are not carbamidomethylated.
///
/// A value: copies share their data, and any number of threads may read one object.
class ZAV_COMMON_CORE_MINI_EXPORT Peptidoform
{
public:
    /// No residue at all; what predictors leave out.
    Peptidoform() = default;

    /// `sequence` in upper-case one-letter codes. The modifications may come in any order and are sorted by position.
    /// Their positions lie within 0 to n + 1, and no two are the same: the caller sees to that, nothing checks it.
    explicit Peptidoform(QString sequence, QList<PlacedModification> modifications = {});

    /// Reads ProForma 2.0 (LeDuc et al., J. Proteome Res. 21, 1189, 2022) as far as linear peptides need it:
    ///
    ///     AC[Carbamidomethyl]DM[U:Oxidation]K   names of Unimod, in any case, with or without the prefix
    ///     AC[UNIMOD:4]DM[+15.9949]K             its accessions; masses in Da, rounded to six decimals
    ///     [Acetyl]-ACDMK-[Amidated]             at the termini
    ///     <[Carbamidomethyl]@C>ACDMK            at every C; also at several sites, `@C,K`, and at termini, `@N-term`,
    ///                                           `@C-term`, `@N-term:Q` (where the first residue is a Q)
    ///
    /// Residues are the letters A to Z. `InvalidInput`, untagged, with a message that says what is wrong and at which
    /// character, counted from 1:
    ///     for what is not supported: two modifications at one place, choices (`|`), other dictionaries, formulas,
    ///     glycans, observed masses, labels of groups and scores (`#`), ranges, places unknown or labile (`?`, `{}`),
    ///     isotopes (`<13C>`), cross-links and branches (`//`), charges (`/2`), several peptides (`+`);
    ///     for a name or accession that the table of modifications lacks;
    ///     for a mass of 0 or of more than 1e6 Da either way;
    ///     for text that is not ProForma, has no residue or is longer than `MAXIMUM_TEXT_LENGTH`.
    static Result<Peptidoform> fromProForma(const QString &text);

    static constexpr int MAXIMUM_TEXT_LENGTH = 10000; ///< characters

    /// ProForma 2.0 with each modification at its place by name, or by mass where that is all that is known:
    /// "[Acetyl]-AC[Carbamidomethyl]DM[+15.9949]K". `fromProForma` reads it back to an equal peptidoform.
    QString toProForma() const;

    /// One-letter codes, N-terminus first.
    const QString &sequence() const { return m_sequence; }

    /// In the order of their positions.
    const QList<PlacedModification> &modifications() const { return m_modifications; }

    /// Residues.
    int length() const { return static_cast<int>(m_sequence.size()); }

    /// Da, of the neutral molecule with its water and all modifications; NaN where a residue is not one of the 20
    /// standard ones.
    double monoisotopicMass() const;

    /// Same sequence, and equal modifications at the same positions.
    friend bool operator==(const Peptidoform &left, const Peptidoform &right)
    {
        return left.m_sequence == right.m_sequence && left.m_modifications == right.m_modifications;
    }
    friend bool operator!=(const Peptidoform &left, const Peptidoform &right) { return !(left == right); }

private:
    QString m_sequence;
    QList<PlacedModification> m_modifications;
};

ZAV_COMMON_CORE_MINI_EXPORT std::size_t qHash(const Peptidoform &peptidoform, std::size_t seed = 0) noexcept;

} // namespace zav
