// SPDX-License-Identifier: Apache-2.0
#include "Spectrum.h"

namespace zav {

QString peptideText(const PredictedSpectrum &spectrum)
{
    const QString &asked = spectrum.precursor.peptide;
    return isProForma(asked) ? spectrum.peptidoform.toProForma() : asked;
}

QString ionName(const FragmentPeak &peak)
{
    if (peak.ionType.isNull())
        return {};
    const QString name =
        peak.ionType + QString::number(peak.ionNumber) + peak.neutralLoss + QString(peak.charge, QLatin1Char('+'));
    return peak.isotope == 0 ? name : name + QStringLiteral(" i%1").arg(peak.isotope);
}

} // namespace zav
