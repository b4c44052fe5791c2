// SPDX-License-Identifier: Apache-2.0
#include "PeptideMasses.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

namespace zav::peptideMasses {

namespace {

constexpr double CARBON = 12.0;
constexpr double HYDROGEN = 1.007825031898;
constexpr double NITROGEN = 14.003074004251;
constexpr double OXYGEN = 15.994914619257;
constexpr double SULFUR = 31.972071173500;
constexpr double WATER = 2 * HYDROGEN + OXYGEN;

constexpr double mass(int carbon, int hydrogen, int nitrogen, int oxygen, int sulfur = 0)
{
    return carbon * CARBON + hydrogen * HYDROGEN + nitrogen * NITROGEN + oxygen * OXYGEN + sulfur * SULFUR;
}

// By letter, from 'A'; 0 where a letter is no standard residue.
constexpr std::array<double, 26> RESIDUES = {
    mass(3, 5, 1, 1),    // A alanine
    0,                   // B
    mass(3, 5, 1, 1, 1), // C cysteine
    mass(4, 5, 1, 3),    // D aspartic acid
    mass(5, 7, 1, 3),    // E glutamic acid
    mass(9, 9, 1, 1),    // F phenylalanine
    mass(2, 3, 1, 1),    // G glycine
    mass(6, 7, 3, 1),    // H histidine
    mass(6, 11, 1, 1),   // I isoleucine
    0,                   // J
    mass(6, 12, 2, 1),   // K lysine
    mass(6, 11, 1, 1),   // L leucine
    mass(5, 9, 1, 1, 1), // M methionine
    mass(4, 6, 2, 2),    // N asparagine
    0,                   // O
    mass(5, 7, 1, 1),    // P proline
    mass(5, 8, 2, 2),    // Q glutamine
    mass(6, 12, 4, 1),   // R arginine
    mass(3, 5, 1, 2),    // S serine
    mass(4, 7, 1, 2),    // T threonine
    0,                   // U
    mass(5, 9, 1, 1),    // V valine
    mass(11, 10, 2, 1),  // W tryptophan
    0,                   // X
    mass(9, 9, 1, 2),    // Y tyrosine
    0,                   // Z
};

double sumOfResidues(QStringView residues, double cysteineMass)
{
    double sum = 0;
    for (const QChar residue : residues)
        sum += residueMass(residue) + (residue == QLatin1Char('C') ? cysteineMass : 0);
    return sum;
}

double modificationMass(const Peptidoform &peptidoform, int position)
{
    double sum = 0;
    for (const PlacedModification &placed : peptidoform.modifications())
        sum += placed.position == position ? placed.modification.mass : 0;
    return sum;
}

/// The residues from index `first` to before `end`, with the modifications of a terminus that belongs to them.
double massOfPart(const Peptidoform &peptidoform, int first, int end)
{
    double sum = first == 0 ? modificationMass(peptidoform, 0) : 0;
    for (int i = first; i < end; ++i)
        sum += residueMass(peptidoform.sequence().at(i)) + modificationMass(peptidoform, i + 1);
    return end == peptidoform.length() ? sum + modificationMass(peptidoform, end + 1) : sum;
}

double protonated(double neutral, int charge)
{
    return (neutral + charge * PROTON) / charge;
}

} // namespace

double residueMass(QChar residue)
{
    return residue >= QLatin1Char('A') && residue <= QLatin1Char('Z')
               ? RESIDUES[static_cast<std::size_t>(residue.unicode() - u'A')]
               : 0;
}

double neutralMass(const QString &peptide, double cysteineMass)
{
    return sumOfResidues(peptide, cysteineMass) + WATER;
}

double precursorMz(const QString &peptide, int charge, double cysteineMass)
{
    return protonated(neutralMass(peptide, cysteineMass), charge);
}

double precursorMz(const Peptidoform &peptidoform, int charge)
{
    return protonated(massOfPart(peptidoform, 0, peptidoform.length()) + WATER, charge);
}

double fragmentMz(const Peptidoform &peptidoform, QChar ionType, int ionNumber, int charge)
{
    const int length = peptidoform.length();
    const double neutral = ionType == QLatin1Char('y') ? massOfPart(peptidoform, length - ionNumber, length) + WATER
                                                       : massOfPart(peptidoform, 0, ionNumber);
    return protonated(neutral, charge);
}

} // namespace zav::peptideMasses

namespace zav {

namespace {

// From Unimod (https://www.unimod.org).
constexpr CysteineModification KNOWN[] = {{57.021464, "Carbamidomethyl", 4},
                                          {71.037114, "Propionamide", 24},
                                          {105.057849, "Pyridylethyl", 31},
                                          {45.987721, "Methylthio", 39},
                                          {125.047679, "Nethylmaleimide", 108}};

constexpr double SAME_MASS = 1e-3;
constexpr double SAME_DIGITS = 1e-5;

} // namespace

const CysteineModification *knownCysteineModification(double mass)
{
    const auto *found = std::find_if(std::begin(KNOWN), std::end(KNOWN), [mass](const CysteineModification &known) {
        return std::abs(mass - known.mass) < SAME_MASS;
    });
    return found == std::end(KNOWN) ? nullptr : found;
}

bool isCysteineModified(double mass)
{
    return std::abs(mass) >= SAME_MASS;
}

Modification cysteineModification(double mass)
{
    const CysteineModification *known = knownCysteineModification(mass);
    Modification modification =
        known ? modifications::findByAccession(known->unimod)->modification : modifications::ofMass(mass);
    modification.mass = mass;
    return modification;
}

Peptidoform withCysteines(const QString &peptide, double mass)
{
    QList<PlacedModification> modifications;
    qsizetype i = isCysteineModified(mass) ? peptide.indexOf(QLatin1Char('C')) : -1;
    for (; i >= 0; i = peptide.indexOf(QLatin1Char('C'), i + 1))
        modifications.append({static_cast<int>(i + 1), cysteineModification(mass)});
    return Peptidoform(peptide, std::move(modifications));
}

double exactCysteineMass(double mass)
{
    const CysteineModification *known = knownCysteineModification(mass);
    return known && std::abs(mass - known->mass) < SAME_DIGITS ? known->mass : mass;
}

} // namespace zav
