// SPDX-License-Identifier: Apache-2.0
#include "Precursor.h"

#include "PrintableText.h"

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
    return QStringLiteral("'%1' at position %2 is not a residue; modifications are not supported");
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

} // namespace

QString displayName(const Precursor &precursor)
{
    return QStringLiteral("%1/%2").arg(displayText(precursor.peptide), QString::number(precursor.charge));
}

Error checkPrecursor(const Precursor &precursor, const MaximumPeptideLength &maximumLength)
{
    const int limit = maximumLength(precursor.charge);
    if (limit == 0)
        return Error(InvalidInput, QStringLiteral("charge %1 is not predicted, only 1 to 5").arg(precursor.charge));
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
