// SPDX-License-Identifier: Apache-2.0
#include "PeptidoformText.h"

#include "PeptideMasses.h"

#include <zav/Modifications.h>

namespace zav {

namespace {

constexpr int CARBAMIDOMETHYL = 4; // Unimod's accession

} // namespace

Result<Peptidoform> readPeptidoform(const QString &text)
{
    Result<Peptidoform> peptidoform = Peptidoform::fromProForma(text);
    if (peptidoform.hasError() || text.contains(u'['))
        return peptidoform;
    return withCysteines(peptidoform.value().sequence(),
                         modifications::findByAccession(CARBAMIDOMETHYL)->modification.mass);
}

} // namespace zav
