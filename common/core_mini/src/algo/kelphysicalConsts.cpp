// SPDX-License-Identifier: Apache-2.0
#include "kelphysicalConsts.h"

namespace zav::kelphysicalConsts {

namespace {

struct Residue
{
    char letter;
    int carbon;
    int hydrogen;
    int nitrogen;
    int oxygen;
    int sulfur;
};

constexpr double monoisotopicMass(const Residue &residue)
{
    return residue.carbon * CARBON_MASS + residue.hydrogen * HYDROGEN_MASS + residue.nitrogen * NITROGEN_MASS +
           residue.oxygen * OXYGEN_MASS + residue.sulfur * SULFUR_MASS;
}

//                              C   H  N  O  S
constexpr Residue RESIDUES[] = {
    {'G', 2, 3, 1, 1, 0},   // glycine
    {'A', 3, 5, 1, 1, 0},   // alanine
    {'S', 3, 5, 1, 2, 0},   // serine
    {'P', 5, 7, 1, 1, 0},   // proline
    {'V', 5, 9, 1, 1, 0},   // valine
    {'T', 4, 7, 1, 2, 0},   // threonine
    {'C', 3, 5, 1, 1, 1},   // cysteine
    {'I', 6, 11, 1, 1, 0},  // isoleucine
    {'L', 6, 11, 1, 1, 0},  // leucine
    {'N', 4, 6, 2, 2, 0},   // asparagine
    {'D', 4, 5, 1, 3, 0},   // aspartic acid
    {'Q', 5, 8, 2, 2, 0},   // glutamine
    {'K', 6, 12, 2, 1, 0},  // lysine
    {'E', 5, 7, 1, 3, 0},   // glutamic acid
    {'M', 5, 9, 1, 1, 1},   // methionine
    {'H', 6, 7, 3, 1, 0},   // histidine
    {'F', 9, 9, 1, 1, 0},   // phenylalanine
    {'R', 6, 12, 4, 1, 0},  // arginine
    {'Y', 9, 9, 1, 2, 0},   // tyrosine
    {'W', 11, 10, 2, 1, 0}, // tryptophan
};

QHash<QString, double> massesByLetter()
{
    QHash<QString, double> masses;
    for (const Residue &residue : RESIDUES)
        masses.insert(QString(QLatin1Char(residue.letter)), monoisotopicMass(residue));
    return masses;
}

} // namespace

const QHash<QString, double> MONOISOTOPIC_MASSES_AMINO_ACIDS = massesByLetter();

} // namespace zav::kelphysicalConsts
