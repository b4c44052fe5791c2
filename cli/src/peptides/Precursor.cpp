// SPDX-License-Identifier: Apache-2.0
#include "Precursor.h"

#include "PeptideMasses.h"
#include "PrintableText.h"

#include <zav/PeptidoformSpectrumPredictor.h>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

bool isResidue(QChar character)
{
    return QStringLiteral("ACDEFGHIKLMNPQRSTVWY").contains(character);
}

QString residueProblem(QChar character)
{
    if (character.isLower() && isResidue(character.toUpper()))
        return QStringLiteral("lower-case residue '%1' at position %2, peptides are written in upper case");
    if (character.isUpper())
        return QStringLiteral("unknown residue '%1' at position %2; only the 20 standard residues are predicted");
    return QStringLiteral("'%1' at position %2 is not a residue; modifications are written as in AM[Oxidation]K");
}

Error checkResidues(const QString &peptide)
{
    if (peptide.isEmpty())
        return Error(InvalidInput, QStringLiteral("the peptide is empty"));
    for (int i = 0; i < peptide.size(); ++i) {
        if (!isResidue(peptide[i]))
            return Error(InvalidInput, residueProblem(peptide[i]).arg(displayText(peptide[i])).arg(i + 1));
    }
    return {};
}

/// Of a peptide without modifications and energy.
Error unpredictedCharge(int charge)
{
    constexpr int HIGHEST = PeptidoformSpectrumPredictor::HIGHEST_CHARGE;
    const QString message = QStringLiteral("charge %1 is not predicted, only 1 to 5").arg(charge);
    if (charge != HIGHEST)
        return Error(InvalidInput, message);
    return Error(InvalidInput, message + QStringLiteral("; with --energy, 1 to %1").arg(HIGHEST));
}

constexpr int SHORTEST_PEPTIDOFORM = 2;

Error checkPeptidoform(const Precursor &precursor)
{
    using Limits = PeptidoformSpectrumPredictor;
    if (precursor.charge < 1 || precursor.charge > Limits::HIGHEST_CHARGE)
        return Error(InvalidInput, QStringLiteral("charge %1 is not predicted, only 1 to %2")
                                       .arg(precursor.charge)
                                       .arg(Limits::HIGHEST_CHARGE));
    if (!std::isnan(precursor.collisionEnergy) && !isCollisionEnergy(precursor.collisionEnergy))
        return Error(InvalidInput, QStringLiteral("energy %1 is not predicted, only %2 to %3")
                                       .arg(precursor.collisionEnergy)
                                       .arg(Limits::LOWEST_COLLISION_ENERGY)
                                       .arg(Limits::HIGHEST_COLLISION_ENERGY));
    const Result<Peptidoform> peptidoform = peptidoformOf(precursor.peptide, 0.0);
    if (peptidoform.hasError())
        return peptidoform.error();
    if (Error error = checkResidues(peptidoform.value().sequence()); error.hasError())
        return error;
    const int length = peptidoform.value().length();
    if (length < SHORTEST_PEPTIDOFORM || length > Limits::LONGEST_PEPTIDE)
        return Error(InvalidInput, QStringLiteral("the peptide has %1 residues, not %2 to %3")
                                       .arg(length)
                                       .arg(SHORTEST_PEPTIDOFORM)
                                       .arg(Limits::LONGEST_PEPTIDE));
    const double mass = peptidoform.value().monoisotopicMass();
    if (!(mass > 0.0))
        return Error(InvalidInput, QStringLiteral("the peptide weighs %1 Da with its modifications").arg(mass));
    return {};
}

} // namespace

bool isProForma(const QString &peptide)
{
    const auto isMark = [](QChar character) { return QStringLiteral("[<{(").contains(character); };
    return std::any_of(peptide.begin(), peptide.end(), isMark);
}

bool needsPeptidoforms(const Precursor &precursor)
{
    return isProForma(precursor.peptide) || !std::isnan(precursor.collisionEnergy);
}

Result<Peptidoform> peptidoformOf(const QString &peptide, double cysteineMass)
{
    return isProForma(peptide) ? Peptidoform::fromProForma(peptide) : withCysteines(peptide, cysteineMass);
}

bool isCollisionEnergy(double energy)
{
    return energy >= PeptidoformSpectrumPredictor::LOWEST_COLLISION_ENERGY &&
           energy <= PeptidoformSpectrumPredictor::HIGHEST_COLLISION_ENERGY;
}

QString displayName(const Precursor &precursor)
{
    return QStringLiteral("%1/%2").arg(displayText(precursor.peptide), QString::number(precursor.charge));
}

Error checkPrecursor(const Precursor &precursor, const MaximumPeptideLength &maximumLength)
{
    if (needsPeptidoforms(precursor))
        return checkPeptidoform(precursor);
    const int limit = maximumLength(precursor.charge);
    if (limit == 0)
        return unpredictedCharge(precursor.charge);
    if (Error error = checkResidues(precursor.peptide); error.hasError())
        return error;
    if (precursor.peptide.size() > limit)
        return Error(InvalidInput, QStringLiteral("the peptide has %1 residues; charge %3 allows at most %2")
                                       .arg(precursor.peptide.size())
                                       .arg(limit)
                                       .arg(precursor.charge));
    return {};
}

} // namespace zav
