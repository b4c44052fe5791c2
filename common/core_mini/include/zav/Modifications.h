// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Export.h>
#include <zav/Result.h>

#include <QtCore/QChar>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zav {

/// How many atoms of each element a molecule has, or by how many a reaction changes it: counts may be negative.
///
/// The first row counts atoms of the lightest isotope, the second labelled ones, which the first leaves out:
/// Label:13C(6) has carbon -6 and carbon13 6.
struct ZAV_COMMON_CORE_MINI_EXPORT ElementalComposition
{
    int carbon = 0, hydrogen = 0, nitrogen = 0, oxygen = 0, phosphorus = 0, sulfur = 0;
    int carbon13 = 0, nitrogen15 = 0, deuterium = 0, oxygen18 = 0;

    /// Da, the sum of the atoms' masses of AME2020.
    double monoisotopicMass() const;

    friend bool operator==(const ElementalComposition &left, const ElementalComposition &right)
    {
        return left.carbon == right.carbon && left.hydrogen == right.hydrogen && left.nitrogen == right.nitrogen &&
               left.oxygen == right.oxygen && left.phosphorus == right.phosphorus && left.sulfur == right.sulfur &&
               left.carbon13 == right.carbon13 && left.nitrogen15 == right.nitrogen15 &&
               left.deuterium == right.deuterium && left.oxygen18 == right.oxygen18;
    }
};

/// Atoms that a fragment ion with a modification may lose.
struct NeutralLoss
{
    QString name;                     ///< a minus and the formula as `FragmentPeak::neutralLoss` writes it: "-H3PO4"
    ElementalComposition composition; ///< what leaves: all counts 0 or more
};

/// How a residue or a terminus differs from the plain one.
struct Modification
{
    QString name; ///< Unimod's PSI-MS name, "Oxidation"; the mass, "+15.9949", of one that is known by its mass alone
    int unimodAccession = 0;          ///< 35 for Oxidation; 0 where only the mass is known
    ElementalComposition composition; ///< what is added; all zeros where only the mass is known
    double mass = 0.0;                ///< Da, monoisotopic, what is added

    /// Whether nothing but its mass is known.
    bool isMassOnly() const { return unimodAccession == 0; }

    /// Same name and mass.
    friend bool operator==(const Modification &left, const Modification &right)
    {
        return left.name == right.name && left.mass == right.mass;
    }
};

/// The modifications that proteomics uses daily, as Unimod (https://www.unimod.org) has them, and those known by their
/// mass alone. Any number of threads may use these functions at once.
namespace modifications {

/// A modification with what the table says of it.
struct Entry
{
    Modification modification;

    /// Where it usually is, as Unimod writes it: a residue "K", a terminus of the peptide "N-term" or "C-term" or of
    /// the protein "protein-N-term", a residue at a terminus "N-term Q". Nothing keeps a peptidoform from having it
    /// elsewhere.
    QStringList sites;

    /// What fragments with it lose, of the losses that the spectrum network predicts.
    QList<NeutralLoss> losses;
    QString lossSites; ///< the residues on which it is lost: "ST" for Phospho
};

/// The table, in the order of Unimod's accessions.
ZAV_COMMON_CORE_MINI_EXPORT const QList<Entry> &all();

/// The entry of Unimod's PSI-MS name in any case, or of another name in use ("GlyGly" for GG, "Amidation" for
/// Amidated); nullptr if the table has none.
ZAV_COMMON_CORE_MINI_EXPORT const Entry *findByName(const QString &name);

/// The entry of an accession, 35 for UNIMOD:35; nullptr if the table has none.
ZAV_COMMON_CORE_MINI_EXPORT const Entry *findByAccession(int unimodAccession);

/// A modification known by its mass alone. The mass is rounded to six decimals (0.000001 Da), so that its name says all
/// of it: a sign, and no zeros behind the last decimal ("+15.9949", "-18").
ZAV_COMMON_CORE_MINI_EXPORT Modification ofMass(double mass);

/// What ProForma writes between brackets: a name, also with the prefix `U:`; an accession, `UNIMOD:35`; a mass in Da
/// with its sign, `+15.9949`. `InvalidInput`, untagged, for what the table lacks, for what other dictionaries name
/// (`MOD:`, `Glycan:`), and for a mass of 0 or of more than 1e6 Da either way.
ZAV_COMMON_CORE_MINI_EXPORT Result<Modification> fromText(const QString &text);

/// What fragments with the modification at this residue lose: H3PO4 from Phospho at S and T, CH4OS from Oxidation at M,
/// CO2 from Malonyl at K; nothing otherwise.
ZAV_COMMON_CORE_MINI_EXPORT QList<NeutralLoss> neutralLosses(const Modification &modification, QChar residue);

} // namespace modifications

} // namespace zav
