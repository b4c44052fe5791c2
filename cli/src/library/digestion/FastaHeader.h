// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ProteinTable.h"

#include <QtCore/QByteArrayView>

namespace zav {

/// Reads what a header line of a FASTA file says, without its '>'.
///
/// UniProtKB's form (https://www.uniprot.org/help/fasta-headers), `sp|P02768|ALBU_HUMAN Albumin OS=... GN=ALB PE=1`,
/// gives accession and entry name. Of every other header the first word is the accession. ` GN=` names the gene in
/// either; it ends before the next field (two capital letters and '='). The accession is empty where the header has no
/// word.
Protein readFastaHeader(QByteArrayView header);

/// The same for an identifier alone, `sp|P02768|ALBU_HUMAN` or `P02768`, which is not split at blanks.
Protein readProteinIdentifier(const QString &identifier);

} // namespace zav
