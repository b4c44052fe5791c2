// SPDX-License-Identifier: Apache-2.0
#include "PeptidoformText.h"

#include <zav/Modifications.h>

namespace zav {

namespace {

constexpr int CARBAMIDOMETHYL = 4; // Unimod's accession

Peptidoform withBlockedCysteines(const QString &sequence)
{
    const Modification &blocked = modifications::findByAccession(CARBAMIDOMETHYL)->modification;
    QList<PlacedModification> placed;
    for (qsizetype at = sequence.indexOf(u'C'); at >= 0; at = sequence.indexOf(u'C', at + 1))
        placed.append({static_cast<int>(at) + 1, blocked});
    return Peptidoform(sequence, placed);
}

} // namespace

Result<Peptidoform> readPeptidoform(const QString &text)
{
    Result<Peptidoform> peptidoform = Peptidoform::fromProForma(text);
    if (peptidoform.hasError() || text.contains(u'['))
        return peptidoform;
    return withBlockedCysteines(peptidoform.value().sequence());
}

} // namespace zav
