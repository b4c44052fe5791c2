// SPDX-License-Identifier: Apache-2.0
#include "TsvWriter.h"

namespace zav {

QByteArray TsvWriter::opening() const
{
    return QByteArray("mz\tintensity") + (m_options.ionNames ? "\tion" : "") +
           (m_options.several ? "\tpeptide\tcharge" : "") + '\n';
}

QByteArray TsvWriter::spectrum(const PredictedSpectrum &spectrum, bool) const
{
    QByteArray lineEnd("\n");
    if (m_options.several)
        lineEnd =
            '\t' + spectrum.precursor.peptide.toUtf8() + '\t' + QByteArray::number(spectrum.precursor.charge) + '\n';
    QByteArray text;
    for (const AnnotatedPeak &peak : spectrum.peaks) {
        text += QByteArray::number(peak.mz, 'f', 5) + '\t' + QByteArray::number(peak.intensity, 'f', 6);
        if (m_options.ionNames)
            text += '\t' + peak.ionName.toUtf8();
        text += lineEnd;
    }
    return text;
}

} // namespace zav
