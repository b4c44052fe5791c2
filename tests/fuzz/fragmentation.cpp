// SPDX-License-Identifier: Apache-2.0
//
// Door: peptides of any characters for the fragment spectra of unmodified peptides, with the outputs of the network
// from the fuzzer. Promises: peaks ascend within 0 to 2000 m/z, none under 0.025; a failure leaves the output as it
// was; many peptides have the peaks that one has; nothing leaks.
#include "PredictorSupport.h"

#include <zav/MsMsFragmentationPredictomatic.h>

namespace zav::fuzz {
namespace {

constexpr double LOWEST_INTENSITY = 0.025;
constexpr int SLOTS[] = {177, 359, 515, 535, 515}; // outputs of the networks for charge 1 to 5

void requireSpectrum(const QList<QPointF> &spectrum)
{
    double last = 0.0;
    for (const QPointF &peak : spectrum) {
        require(peak.x() >= last && peak.x() <= 2000.0, "peaks ascend to 2000 m/z");
        require(peak.y() >= LOWEST_INTENSITY, "no peak is under the lowest intensity");
        last = peak.x();
    }
}

/// But for peaks that rounding puts on either side of the lowest intensity.
void requireSamePeaks(const QList<FragmentPeak> &batch, QList<QPointF> single)
{
    const auto isSure = [](double intensity) { return intensity > LOWEST_INTENSITY * 1.001; };
    single.removeIf([&](const QPointF &peak) { return !isSure(peak.y()); });
    qsizetype next = 0;
    for (const FragmentPeak &peak : batch) {
        require(peak.intensity >= LOWEST_INTENSITY * 0.999, "no peak is under the lowest intensity");
        if (!isSure(peak.intensity) && (next == single.size() || single[next].x() != peak.mz))
            continue;
        if (next < single.size() && single[next].x() == peak.mz) {
            const double difference = std::abs(single[next].y() - peak.intensity);
            require(difference <= 1e-5 * std::abs(peak.intensity) || std::isinf(peak.intensity),
                    "intensities are alike");
            ++next;
        } else {
            require(!isSure(peak.intensity * 0.999), "many peptides have no other peaks than one");
        }
    }
    require(next == single.size(), "many peptides have all peaks of one");
}

void tryPeptide(MsMsFragmentationPredictomatic *predictor, const QString &peptide, int charge)
{
    const QList<QPointF> before = {{-1.0, -1.0}};
    QList<QPointF> spectrum = before;
    const Error single = predictor->predictMsMsFragmentation(peptide, charge, &spectrum);
    const bool isTooLong = peptide.size() > predictor->getMaximumPeptideLengthForCharge(charge);
    if (single.hasError() || isTooLong) {
        require(spectrum == before, "a failure leaves the output as it was");
    } else {
        requireSpectrum(spectrum);
    }
    QList<QList<FragmentPeak>> batch;
    const Error many = predictor->predictFragments({peptide}, charge, &batch, IsotopePeaks::Included);
    if (many.hasError())
        return;
    require(batch.size() == 1, "there is a list for every peptide");
    if (!single.hasError() && !isTooLong)
        requireSamePeaks(batch.first(), spectrum);
    else
        require(batch.first().isEmpty(), "what fails alone has no peaks among many");
}

} // namespace

void tryInput(const QByteArray &input)
{
    FuzzedDataProvider data = dataOf(input);
    const int charge = data.ConsumeIntegralInRange(-1, 7);
    const int slots = SLOTS[std::clamp(charge, 1, 5) - 1];
    const double cysteine = takeNumber(&data);
    const bool hasAnySize = data.ConsumeBool();
    QString peptide = QString::fromStdString(data.ConsumeRandomLengthString(80));
    runtime().operations = {{"init"}, {"import/conv1d_1_input"}, {"import/dense_3/BiasAdd"}};
    std::vector<float> values = takeFloats(&data, slots);
    if (!hasAnySize)
        values.resize(static_cast<std::size_t>(slots), 0.5F);
    runtime().results = values;
    {
        const QString network = fileWith("network.pb", "graph");
        MsMsFragmentationPredictomatic predictor;
        require(!predictor.init(network, network, network, network, network).hasError(), "networks are loaded");
        predictor.setCysteineFixedMass(cysteine);
        tryPeptide(&predictor, peptide, charge);
    }
    requireNothingLives();
}

} // namespace zav::fuzz
