// SPDX-License-Identifier: Apache-2.0
#include "MspWriter.h"

#include "IonNames.h"
#include "PeptideMasses.h"

#include <cmath>

namespace zav {

namespace {

struct CysteineModification
{
    double mass; // monoisotopic, Da
    const char *name;
};

// Unimod, by its names (records 4, 24, 31, 39, 108).
constexpr CysteineModification CYSTEINE_MODIFICATIONS[] = {{57.021464, "Carbamidomethyl"},
                                                           {71.037114, "Propionamide"},
                                                           {105.057849, "Pyridylethyl"},
                                                           {45.987721, "Methylthio"},
                                                           {125.047679, "Nethylmaleimide"}};

constexpr double SAME_MASS = 1e-3;

QByteArray modificationName(double mass)
{
    for (const CysteineModification &known : CYSTEINE_MODIFICATIONS) {
        if (std::abs(mass - known.mass) < SAME_MASS)
            return known.name;
    }
    return (mass > 0 ? "+" : "") + QByteArray::number(mass, 'f', 5);
}

QByteArray modifications(const PredictedSpectrum &spectrum)
{
    const qsizetype count =
        std::abs(spectrum.cysteineMass) < SAME_MASS ? 0 : spectrum.precursor.peptide.count(QLatin1Char('C'));
    QByteArray text = QByteArray::number(count);
    for (int i = 0; count > 0 && i < spectrum.precursor.peptide.size(); ++i) {
        if (spectrum.precursor.peptide[i] == QLatin1Char('C'))
            text += '/' + QByteArray::number(i) + ",C," + modificationName(spectrum.cysteineMass);
    }
    return text;
}

QByteArray peakLine(const AnnotatedPeak &peak)
{
    const QByteArray ion = libraryIonName(peak).toUtf8();
    return QByteArray::number(peak.mz, 'f', 5) + '\t' + QByteArray::number(peak.intensity * 10000, 'f', 1) + "\t\"" +
           ion + (ion == "?" ? "\"\n" : "/0.0ppm\"\n");
}

} // namespace

QByteArray MspWriter::spectrum(const PredictedSpectrum &spectrum, bool) const
{
    const QByteArray charge = QByteArray::number(spectrum.precursor.charge);
    const QByteArray mz = QByteArray::number(spectrum.precursorMz, 'f', 5);
    const double mass = peptideMasses::neutralMass(spectrum.precursor.peptide, spectrum.cysteineMass);
    QByteArray text = "Name: " + spectrum.precursor.peptide.toUtf8() + '/' + charge +
                      "\nMW: " + QByteArray::number(mass, 'f', 5) + "\nPrecursorMZ: " + mz + "\nCharge: " + charge +
                      "\nComment: Parent=" + mz + " Mods=" + modifications(spectrum) +
                      "\nNum peaks: " + QByteArray::number(spectrum.peaks.size()) + '\n';
    for (const AnnotatedPeak &peak : spectrum.peaks)
        text += peakLine(peak);
    return text + '\n';
}

} // namespace zav
