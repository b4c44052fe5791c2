// SPDX-License-Identifier: Apache-2.0
#include "ComparisonOutput.h"

#include "PrintableText.h"

#include <QtCore/QLocale>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zav {

namespace {

/// Of an even number the mean of the two in the middle.
double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

QByteArray precursorDistance(const ComparedSpectrum &compared)
{
    const double expected = compared.predicted->precursorMz;
    const double observed = compared.observed->precursorMz;
    if (!(expected > 0 && observed > 0))
        return {};
    const double ppm = std::round(1e8 * (observed / expected - 1)) / 100;
    return QByteArray::number(ppm + 0.0, 'f', 2); // no minus in front of 0
}

QByteArray cell(const QString &text)
{
    return displayText(text, std::numeric_limits<int>::max()).toUtf8();
}

QString peptideOf(const ComparedSpectrum &compared)
{
    return compared.predicted ? peptideText(*compared.predicted) : compared.precursor.peptide;
}

QList<ReportedIon> ionsOf(const ComparedSpectrum &compared)
{
    QList<ReportedIon> ions;
    for (const FragmentPeak &peak : compared.predicted->peaks)
        ions.append({ionName(peak), peak.mz, peak.intensity, {}});
    for (const PeakMatch &match : compared.comparison->matches)
        ions[match.predicted].observed = compared.observed->peaks[match.observed];
    return ions;
}

ReportedSpectrum reported(const ComparedSpectrum &compared)
{
    ReportedSpectrum spectrum;
    spectrum.peptide = peptideOf(compared);
    spectrum.charge = compared.precursor.charge;
    spectrum.collisionEnergy = compared.precursor.collisionEnergy;
    spectrum.scan = compared.scan;
    spectrum.problem = compared.problem;
    if (compared.predicted)
        spectrum.precursorMz = compared.predicted->precursorMz;
    if (!compared.comparison)
        return spectrum;
    spectrum.title = compared.observed->title;
    spectrum.observedPrecursorMz = compared.observed->precursorMz;
    spectrum.values = comparisonValues(compared);
    spectrum.observed = compared.observed->peaks;
    spectrum.ions = ionsOf(compared);
    return spectrum;
}

} // namespace

QList<QByteArray> comparisonColumns()
{
    return {"spectral_angle", "cosine", "explained_peaks", "observed_peaks", "explained_intensity", "precursor_ppm"};
}

QList<QByteArray> comparisonValues(const ComparedSpectrum &compared)
{
    if (!compared.comparison)
        return {};
    const SpectrumComparison &comparison = *compared.comparison;
    return {QByteArray::number(comparison.spectralAngle, 'f', 4),
            QByteArray::number(comparison.cosine, 'f', 4),
            QByteArray::number(comparison.explainedPeaks),
            QByteArray::number(comparison.observedPeaks),
            QByteArray::number(comparison.explainedIntensity, 'f', 4),
            precursorDistance(compared)};
}

ComparisonOutput::ComparisonOutput(const ComparisonPaths &paths, bool hasEnergies)
    : m_paths(paths), m_hasEnergies(hasEnergies), m_scores(paths.scores),
      m_report(paths.report, inputName(paths.run), comparisonColumns())
{}

Error ComparisonOutput::add(const ComparedSpectrum &compared)
{
    if (compared.comparison) {
        m_angles.push_back(compared.comparison->spectralAngle);
        m_explained.push_back(compared.comparison->explainedIntensity);
    }
    if (!m_paths.scores.isEmpty()) {
        if (Error error = addScores(compared); error.hasError())
            return error;
    }
    m_isEmpty = false;
    return m_paths.report.isEmpty() ? Error() : m_report.add(reported(compared));
}

Error ComparisonOutput::addScores(const ComparedSpectrum &compared)
{
    QList<QByteArray> heading = {"peptide", "charge"};
    const int charge = compared.precursor.charge; // 0 where the list has none that can be read
    QList<QByteArray> cells = {cell(peptideOf(compared)), charge == 0 ? QByteArray() : QByteArray::number(charge)};
    if (m_hasEnergies) {
        const double energy = compared.precursor.collisionEnergy;
        heading.append("energy");
        cells.append(std::isfinite(energy) ? QByteArray::number(energy, 'g', QLocale::FloatingPointShortest)
                                           : QByteArray());
    }
    heading.append("scan");
    cells.append(cell(compared.scan));
    heading += comparisonColumns();
    cells += comparisonValues(compared);
    cells.resize(heading.size());
    if (m_isEmpty) {
        if (Error error = m_scores.open(); error.hasError())
            return error;
        if (Error error = m_scores.write(heading.join('\t') + '\n'); error.hasError())
            return error;
    }
    return m_scores.write(cells.join('\t') + '\n');
}

Error ComparisonOutput::finish()
{
    if (m_isEmpty)
        return {};
    if (!m_paths.scores.isEmpty()) {
        if (Error error = m_scores.commit(); error.hasError())
            return error;
    }
    return m_report.finish();
}

QString ComparisonOutput::summary() const
{
    if (m_angles.empty())
        return {};
    const QString medians = m_angles.size() == 1 ? QStringLiteral("1 comparison")
                                                 : QStringLiteral("medians of %1 comparisons").arg(m_angles.size());
    return QStringLiteral("spectral angle %1, %2 % of the intensity explained (%3)\n")
        .arg(QString::number(median(m_angles), 'f', 3), QString::number(100 * median(m_explained), 'f', 1), medians);
}

} // namespace zav
