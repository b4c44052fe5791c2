// SPDX-License-Identifier: Apache-2.0
#include "PeptidoformSpectrumAssembler.h"

#include "SpectrumAssembler.h"
#include "SpectrumLimits.h"
#include "kelphysicalConsts.h"

#include <zav/Modifications.h>

#include <algorithm>

namespace zav {

namespace {

using peptidoformIons::Series;

constexpr std::size_t TYPICAL_PEAK_COUNT = 128;
constexpr int HIGHEST_FRAGMENT_CHARGE = 3;

double residueMass(QChar residue)
{
    // One look-up in the hash for each letter of the alphabet, instead of one for each residue of a library.
    static const std::array<double, 26> masses = [] {
        std::array<double, 26> table{};
        const QHash<QString, double> &letters = kelphysicalConsts::MONOISOTOPIC_MASSES_AMINO_ACIDS;
        for (std::size_t i = 0; i < table.size(); ++i)
            table[i] = letters.value(QString(QChar(u'A' + static_cast<char16_t>(i))), 0.0);
        return table;
    }();
    return masses[residue.unicode() - u'A'];
}

} // namespace

PeptidoformSpectrumAssembler::PeptidoformSpectrumAssembler(IsotopePeaks isotopePeaks) : isotopes(isotopePeaks)
{
    peaks.reserve(TYPICAL_PEAK_COUNT);
}

void PeptidoformSpectrumAssembler::take(const Peptidoform &peptidoform)
{
    const QString &sequence = peptidoform.sequence();
    const QList<PlacedModification> &modifications = peptidoform.modifications();
    auto modification = modifications.cbegin();
    whole = {};
    nTerminalParts.clear();
    for (qsizetype i = 0; i < sequence.size(); ++i) {
        whole.mass += residueMass(sequence.at(i));
        // The modifications are sorted by position; the N-terminal one weighs on the first residue.
        for (; modification != modifications.cend() && modification->position <= i + 1; ++modification)
            add(*modification, sequence.at(i));
        if (i + 1 < sequence.size())
            nTerminalParts.push_back(whole);
    }
    for (; modification != modifications.cend(); ++modification)
        whole.mass += modification->modification.mass;
}

void PeptidoformSpectrumAssembler::add(const PlacedModification &placed, QChar residue)
{
    whole.mass += placed.modification.mass;
    if (placed.position == 0)
        return;
    const QList<NeutralLoss> losses = modifications::neutralLosses(placed.modification, residue);
    for (const NeutralLoss &loss : losses)
        ++whole.lossSites[static_cast<std::size_t>(peptidoformIons::modificationLoss(loss.name))];
}

QList<FragmentPeak> PeptidoformSpectrumAssembler::assemble(int precursorCharge, const float *intensities)
{
    chooseSeries(precursorCharge);
    peaks.clear();
    highest = 0.0;
    for (std::size_t bond = 0; bond < nTerminalParts.size(); ++bond)
        collectBond(bond, intensities + bond * peptidoformIons::SERIES_COUNT);
    scaleToBasePeak();
    if (isotopes == IsotopePeaks::Included)
        addIsotopes();
    std::stable_sort(peaks.begin(), peaks.end(), [](const Peak &a, const Peak &b) { return a.mz < b.mz; });
    return namedPeaks();
}

/// The series of which the precursor can have any ion at all.
void PeptidoformSpectrumAssembler::chooseSeries(int precursorCharge)
{
    possibleSeries.clear();
    const int highestCharge = std::min(precursorCharge, HIGHEST_FRAGMENT_CHARGE);
    for (int i = 0; i < peptidoformIons::SERIES_COUNT; ++i) {
        const Series &series = peptidoformIons::series()[i];
        if (series.charge <= highestCharge &&
            whole.lossSites[static_cast<std::size_t>(series.loss)] >= series.lossCount)
            possibleSeries.push_back(i);
    }
}

void PeptidoformSpectrumAssembler::collectBond(std::size_t bond, const float *intensities)
{
    const Part &nTerminal = nTerminalParts[bond];
    for (const int index : possibleSeries) {
        const double intensity = intensities[index];
        // What is too weak beside the highest so far stays too weak. False for NaN.
        if (!(intensity > 0.0 && intensity >= LOWEST_INTENSITY * highest))
            continue;
        const Series &series = peptidoformIons::series()[index];
        const bool isCTerminal = series.ionType == u'y';
        const std::size_t number = isCTerminal ? nTerminalParts.size() - bond : bond + 1;
        const auto loss = static_cast<std::size_t>(series.loss);
        const int sites = isCTerminal ? whole.lossSites[loss] - nTerminal.lossSites[loss] : nTerminal.lossSites[loss];
        const double residues = isCTerminal ? whole.mass - nTerminal.mass : nTerminal.mass;
        const double mz = (residues + series.startMass) / series.charge;
        if (static_cast<int>(number) > series.maximumNumber || sites < series.lossCount || !(mz > 0.0) ||
            mz > spectrumLimits::HIGHEST_MZ)
            continue;
        peaks.push_back({mz, intensity, static_cast<qint16>(index), static_cast<qint16>(number), 0});
        highest = std::max(highest, intensity);
    }
}

void PeptidoformSpectrumAssembler::scaleToBasePeak()
{
    for (Peak &peak : peaks)
        peak.intensity /= highest;
    peaks.erase(std::remove_if(peaks.begin(), peaks.end(),
                               [](const Peak &peak) { return !(peak.intensity >= LOWEST_INTENSITY); }),
                peaks.end());
}

void PeptidoformSpectrumAssembler::addIsotopes()
{
    const std::size_t fragmentCount = peaks.size();
    for (std::size_t i = 0; i < fragmentCount; ++i)
        addIsotopesOf(Peak(peaks[i]));
}

void PeptidoformSpectrumAssembler::addIsotopesOf(const Peak &monoisotopic)
{
    const int charge = peptidoformIons::series()[monoisotopic.series].charge;
    const auto points = heavyIsotopePeaks(isotopeGenerator, {monoisotopic.mz, monoisotopic.intensity}, charge);
    if (points.hasError())
        return; // never: no ion within the limits is too heavy
    Peak peak = monoisotopic;
    for (const QPointF &point : points.value()) {
        peak.mz = point.x();
        peak.intensity = point.y();
        ++peak.isotope;
        if (!spectrumLimits::isOutside(peak.mz, peak.intensity))
            peaks.push_back(peak);
    }
}

QList<FragmentPeak> PeptidoformSpectrumAssembler::namedPeaks() const
{
    QList<FragmentPeak> named;
    named.reserve(static_cast<qsizetype>(peaks.size()));
    for (const Peak &peak : peaks) {
        const Series &series = peptidoformIons::series()[peak.series];
        named.append(
            {peak.mz, peak.intensity, series.ionType, peak.ionNumber, series.charge, series.neutralLoss, peak.isotope});
    }
    return named;
}

} // namespace zav
