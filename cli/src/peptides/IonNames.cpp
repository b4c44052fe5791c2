// SPDX-License-Identifier: Apache-2.0
#include "IonNames.h"

namespace zav {

AnnotatedPeak annotatedPeak(const FragmentPeak &fragment)
{
    AnnotatedPeak peak;
    peak.mz = fragment.mz;
    peak.intensity = fragment.intensity;
    peak.ionType = fragment.ionType;
    peak.ionNumber = fragment.ionNumber;
    peak.charge = fragment.charge;
    peak.neutralLoss = fragment.neutralLoss;
    peak.ionName = fragment.ionType + QString::number(fragment.ionNumber) + fragment.neutralLoss +
                   QString(fragment.charge, QLatin1Char('+'));
    return peak;
}

AnnotatedPeak isotopeOf(const AnnotatedPeak &monoisotopic, int isotopeNumber)
{
    AnnotatedPeak peak = monoisotopic;
    peak.isotope = true;
    peak.isotopeNumber = isotopeNumber;
    peak.ionName += QStringLiteral(" i%1").arg(isotopeNumber);
    return peak;
}

} // namespace zav
