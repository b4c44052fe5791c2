// SPDX-License-Identifier: Apache-2.0
#include "SpectrumComparison.h"

#include "PeptideMasses.h"
#include "PrintableText.h"

#include <QtCore/QHash>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <numeric>
#include <vector>

namespace zav {

namespace {

constexpr int MAX_FRAGMENT_CHARGE = 3; // the predictor's series end there

// The most intense peak within the tolerance, -1 when there is none. `peaks` ascend in m/z.
int mostIntensePeak(const QList<QPointF> &peaks, double mz, const MassTolerance &tolerance)
{
    const double width = tolerance.at(mz);
    auto peak = std::lower_bound(peaks.begin(), peaks.end(), mz - width,
                                 [](const QPointF &point, double limit) { return point.x() < limit; });
    int best = -1;
    for (; peak != peaks.end() && peak->x() <= mz + width; ++peak) {
        if (best < 0 || peak->y() > peaks[best].y())
            best = static_cast<int>(peak - peaks.begin());
    }
    return best;
}

struct IonIntensities
{
    double predicted = 0;
    double observed = 0;
};

QString ionKey(QChar ionType, int ionNumber, int charge)
{
    return ionType + QString::number(ionNumber) + QLatin1Char('/') + QString::number(charge);
}

QHash<QString, double> backboneIntensities(const QList<FragmentPeak> &predicted)
{
    QHash<QString, double> intensities;
    for (const FragmentPeak &peak : predicted) {
        if (peak.isotope == 0 && peak.neutralLoss.isEmpty())
            intensities.insert(ionKey(peak.ionType, peak.ionNumber, peak.charge), peak.intensity);
    }
    return intensities;
}

// Pairs the two intensities of every b and y ion. Ions that the tolerance cannot tell apart, because they claim one
// observed peak, count as one ion with their summed prediction: else that peak would count twice.
class IonTable
{
public:
    void add(double predicted, int observedPeak, double observedIntensity)
    {
        if (observedPeak < 0) {
            m_unseen.push_back({predicted, 0});
            return;
        }
        IonIntensities &ion = m_seen[observedPeak];
        ion.predicted += predicted;
        ion.observed = observedIntensity;
    }

    double cosine() const
    {
        double product = 0;
        double predictedSquare = 0;
        double observedSquare = 0;
        for (const IonIntensities &ion : all()) {
            product += ion.predicted * ion.observed;
            predictedSquare += ion.predicted * ion.predicted;
            observedSquare += ion.observed * ion.observed;
        }
        const double norm = std::sqrt(predictedSquare) * std::sqrt(observedSquare);
        return norm > 0 ? std::min(1.0, product / norm) : 0.0;
    }

private:
    std::vector<IonIntensities> all() const
    {
        std::vector<IonIntensities> ions = m_unseen;
        for (const auto &[peak, ion] : m_seen)
            ions.push_back(ion);
        return ions;
    }

    std::vector<IonIntensities> m_unseen;
    std::map<int, IonIntensities> m_seen; // by observed peak
};

double cosineOfBackboneIons(const PredictedSpectrum &predicted, const QList<QPointF> &observed,
                            const MassTolerance &tolerance)
{
    const int highestCharge = std::min(predicted.precursor.charge, MAX_FRAGMENT_CHARGE);
    const QHash<QString, double> intensities = backboneIntensities(predicted.peaks);
    IonTable ions;
    for (const QChar ionType : {QLatin1Char('b'), QLatin1Char('y')}) {
        for (int charge = 1; charge <= highestCharge; ++charge) {
            for (int number = 1; number < predicted.peptidoform.length(); ++number) {
                const double mz = peptideMasses::fragmentMz(predicted.peptidoform, ionType, number, charge);
                const int peak = mostIntensePeak(observed, mz, tolerance);
                ions.add(intensities.value(ionKey(ionType, number, charge)), peak, peak < 0 ? 0 : observed[peak].y());
            }
        }
    }
    return ions.cosine();
}

QList<PeakMatch> matchPeaks(const QList<FragmentPeak> &predicted, const QList<QPointF> &observed,
                            const MassTolerance &tolerance)
{
    std::vector<int> order(static_cast<std::size_t>(predicted.size()));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return predicted[a].intensity > predicted[b].intensity; });
    std::vector<bool> isTaken(static_cast<std::size_t>(observed.size()), false);
    QList<PeakMatch> matches;
    for (const int i : order) {
        const int peak = mostIntensePeak(observed, predicted[i].mz, tolerance);
        if (peak < 0 || isTaken[static_cast<std::size_t>(peak)])
            continue;
        isTaken[static_cast<std::size_t>(peak)] = true;
        matches.append({i, peak});
    }
    std::sort(matches.begin(), matches.end(),
              [](const PeakMatch &a, const PeakMatch &b) { return a.predicted < b.predicted; });
    return matches;
}

/// With a highest intensity from 0.5 to 1, so that no square or sum of them overflows or vanishes. A power of two is
/// the factor: no digit changes.
QList<QPointF> scaled(QList<QPointF> peaks)
{
    double highest = 0;
    for (const QPointF &peak : peaks)
        highest = std::max(highest, peak.y());
    int exponent = 0;
    std::frexp(highest, &exponent);
    for (QPointF &peak : peaks)
        peak.ry() = std::ldexp(peak.y(), -exponent);
    return peaks;
}

double sumOfIntensities(const QList<QPointF> &peaks)
{
    return std::accumulate(peaks.begin(), peaks.end(), 0.0,
                           [](double sum, const QPointF &peak) { return sum + peak.y(); });
}

} // namespace

Result<MassTolerance> parseMassTolerance(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^\\s*([0-9.eE+-]+)\\s*(ppm|da)?\\s*$"),
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    bool isNumber = false;
    const double value = match.captured(1).toDouble(&isNumber);
    if (!match.hasMatch() || !isNumber || !std::isfinite(value) || !(value > 0))
        return Error(InvalidInput,
                     QStringLiteral("'%1' is not a tolerance such as 20ppm or 0.02Da").arg(displayText(text)));
    const bool isDalton = match.captured(2).compare(QLatin1String("da"), Qt::CaseInsensitive) == 0;
    return MassTolerance{value, isDalton ? MassTolerance::Dalton : MassTolerance::Ppm};
}

SpectrumComparison compareSpectra(const PredictedSpectrum &predicted, const ObservedSpectrum &observed,
                                  const MassTolerance &tolerance)
{
    SpectrumComparison comparison;
    const QList<QPointF> peaks = scaled(observed.peaks);
    comparison.cosine = cosineOfBackboneIons(predicted, peaks, tolerance);
    comparison.spectralAngle = 1 - 2 * std::acos(comparison.cosine) / std::numbers::pi;
    comparison.matches = matchPeaks(predicted.peaks, peaks, tolerance);
    comparison.explainedPeaks = static_cast<int>(comparison.matches.size());
    comparison.observedPeaks = static_cast<int>(peaks.size());
    double explained = 0;
    for (const PeakMatch &match : comparison.matches)
        explained += peaks[match.observed].y();
    const double total = sumOfIntensities(peaks);
    comparison.explainedIntensity = total > 0 ? explained / total : 0;
    return comparison;
}

} // namespace zav
