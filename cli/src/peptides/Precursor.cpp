// SPDX-License-Identifier: Apache-2.0
#include "Precursor.h"

#include "PrintableText.h"

namespace zav {

QString displayName(const Precursor &precursor)
{
    return QStringLiteral("%1/%2").arg(displayText(precursor.peptide), QString::number(precursor.charge));
}

} // namespace zav
