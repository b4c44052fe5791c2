// SPDX-License-Identifier: Apache-2.0
#include "MgfWriter.h"

namespace zav {

QByteArray MgfWriter::spectrum(const PredictedSpectrum &spectrum, bool) const
{
    const QByteArray charge = QByteArray::number(spectrum.precursor.charge);
    QByteArray text = "BEGIN IONS\nTITLE=" + spectrum.precursor.peptide.toUtf8() + '/' + charge +
                      "\nPEPMASS=" + QByteArray::number(spectrum.precursorMz, 'f', 5) + "\nCHARGE=" + charge + "+\n";
    for (const AnnotatedPeak &peak : spectrum.peaks)
        text += QByteArray::number(peak.mz, 'f', 5) + ' ' + QByteArray::number(peak.intensity * 10000, 'f', 1) + '\n';
    return text + "END IONS\n\n";
}

} // namespace zav
