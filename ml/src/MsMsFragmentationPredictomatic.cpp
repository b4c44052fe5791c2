// SPDX-License-Identifier: Apache-2.0
#include <zav/MsMsFragmentationPredictomatic.h>

#include "ErrorUtils.h"
#include "FragmentBatch.h"
#include "FragmentLadder.h"
#include "MsMsFragmentationPredictomatic_p.h"
#include "OutOfMemory.h"
#include "PeptideVocabulary.h"
#include "ReturnIfError.h"
#include "SpectrumAssembler.h"
#include "Tensor.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "ml/src/MsMsFragmentationPredictomatic";

constexpr qsizetype TYPICAL_PEAKS_PER_SLOT = 3; // isotopes included, placeholders too

std::vector<float> encodePeptide(const QString &peptide, int charge)
{
    const int rowCount = peptideVocabulary::maximumPeptideLength(charge);
    std::vector<float> rows(static_cast<std::size_t>(rowCount) * peptideVocabulary::encodingWidth(), 0.0F);
    peptideVocabulary::writeOneHotRows(peptide, rowCount, rows.data());
    return rows;
}

Error missingOutError()
{
    return {InvalidInput, QStringLiteral("There is no list for the prediction")};
}

} // namespace

MsMsFragmentationPredictomatic::Private::~Private()
{
    qDeleteAll(models);
}

Error MsMsFragmentationPredictomatic::Private::init(const QString &modelPath1, QString modelPath2, QString modelPath3,
                                                    QString modelPath4, QString modelPath5)
{
    const std::array<std::pair<const QString &, int>, 5> pathsAndLines{
        {{modelPath1, fragmentationTrail::NETWORK_OF_CHARGE_1},
         {modelPath2, fragmentationTrail::NETWORK_OF_CHARGE_2},
         {modelPath3, fragmentationTrail::NETWORK_OF_CHARGE_3},
         {modelPath4, fragmentationTrail::NETWORK_OF_CHARGE_4},
         {modelPath5, fragmentationTrail::NETWORK_OF_CHARGE_5}}};
    int charge = 0;
    for (const auto &[path, line] : pathsAndLines) {
        ++charge;
        auto model = std::make_unique<Model>();
        ZAV_RETURN_IF_ERROR(model->init(path.toStdString(), {}), line);
        Model *&loaded = models[charge]; // may run out of memory, nothing after it does
        delete loaded;
        loaded = model.release();
    }
    return NoError;
}

Result<Model *> MsMsFragmentationPredictomatic::Private::model(int charge) const
{
    Model *const loaded = models.value(charge);
    if (loaded == nullptr)
        return Error(Failure, QStringLiteral("No network is loaded for precursor charge %1").arg(charge));
    return loaded;
}

MsMsFragmentationPredictomatic::MsMsFragmentationPredictomatic() : d(std::make_unique<Private>()) {}

MsMsFragmentationPredictomatic::~MsMsFragmentationPredictomatic() = default;

// NOLINTBEGIN(performance-unnecessary-value-param): the signature is a promise to hosts
Error MsMsFragmentationPredictomatic::init(const QString &modelPath1, QString modelPath2, QString modelPath3,
                                           QString modelPath4, QString modelPath5)
// NOLINTEND(performance-unnecessary-value-param)
try {
    ZAV_RETURN_IF_ERROR(d->init(modelPath1, modelPath2, modelPath3, modelPath4, modelPath5),
                        fragmentationTrail::NETWORKS);
    return NoError;
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

bool MsMsFragmentationPredictomatic::isInit() const
{
    return !d->models.isEmpty();
}

int MsMsFragmentationPredictomatic::maxPredictionChargeState() const
{
    return d->models.isEmpty() ? 0 : d->models.lastKey();
}

int MsMsFragmentationPredictomatic::getMaximumPeptideLengthForCharge(int charge)
{
    return peptideVocabulary::maximumPeptideLength(charge);
}

void MsMsFragmentationPredictomatic::setCysteineFixedMass(double mass)
{
    cysteineFixedMass = mass;
}

Error MsMsFragmentationPredictomatic::predictMsMsFragmentation(const QString &peptide, int charge, QList<QPointF> *out)
try {
    if (peptide.size() > getMaximumPeptideLengthForCharge(charge))
        return NoError;
    ZAV_RETURN_IF_ERROR(out == nullptr ? missingOutError() : Error(), __LINE__);
    const Result<Model *> model = d->model(charge);
    ZAV_RETURN_IF_ERROR(model, __LINE__);

    Tensor input;
    ZAV_RETURN_IF_ERROR(
        input.init(model.value()->getGraph(), model.value()->getStatus(), peptideVocabulary::NETWORK_INPUT),
        fragmentationTrail::GRAPH_INPUT);
    Tensor output;
    ZAV_RETURN_IF_ERROR(
        output.init(model.value()->getGraph(), model.value()->getStatus(), peptideVocabulary::NETWORK_OUTPUT),
        fragmentationTrail::GRAPH_OUTPUT);
    ZAV_RETURN_IF_ERROR(input.setData<float>(encodePeptide(peptide, charge)), __LINE__);
    ZAV_RETURN_IF_ERROR(model.value()->run(input, output), __LINE__);
    std::vector<float> predictions;
    ZAV_RETURN_IF_ERROR(output.getData<float>(&predictions), fragmentationTrail::NETWORK_RESULT);

    const Result<QList<QPointF>> spectrum = buildSpectrum(peptide, charge, predictions);
    ZAV_RETURN_IF_ERROR(spectrum, fragmentationTrail::SPECTRUM);
    *out = spectrum.value();
    return NoError;
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

Error MsMsFragmentationPredictomatic::predictFragments(const QStringList &peptides, int charge,
                                                       QList<QList<FragmentPeak>> *out, IsotopePeaks isotopes)
try {
    ZAV_RETURN_IF_ERROR(out == nullptr ? missingOutError() : Error(), __LINE__);
    const Result<Model *> model = d->model(charge);
    ZAV_RETURN_IF_ERROR(model, __LINE__);

    FragmentBatch batch(*model.value(), charge, cysteineFixedMass, isotopes);
    Error outcome = batch.predict(peptides);
    if (outcome.hasError())
        return std::move(outcome.ecatch(Q_FUNC_INFO, SOURCE_FILE, __LINE__));
    *out = batch.takeSpectra();
    return outcome;
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

/// The spectrum within its limits. The assembler makes it in one go; what it refuses, the single steps refuse too, and
/// say why.
Result<QList<QPointF>> MsMsFragmentationPredictomatic::buildSpectrum(const QString &peptide, int charge,
                                                                     const std::vector<float> &predictions)
{
    SpectrumAssembler assembler(charge, cysteineFixedMass, IsotopePeaks::Included);
    if (predictions.size() == static_cast<std::size_t>(assembler.slotCount()) &&
        assembler.assemble(peptide, predictions.data()))
        return assembler.points();
    return buildPoints(buildMzPoints(peptide, charge), predictions);
}

QList<MsMsFragmentationPredictomatic::Fragment> MsMsFragmentationPredictomatic::buildMzPoints(const QString &peptide,
                                                                                              int charge)
{
    const QList<fragmentLadder::IonSeries> ladder = fragmentLadder::ionSeries(charge);
    QList<Fragment> fragments;
    fragments.reserve(fragmentLadder::slotCount(ladder));
    for (const fragmentLadder::IonSeries &series : ladder)
        addFragmentIonToMzPoints(series.startMass, series.slotCount, peptide, series.charge, series.ionType,
                                 series.neutralLoss, &fragments);
    return fragments;
}

void MsMsFragmentationPredictomatic::addFragmentIonToMzPoints(double startMass, int count, const QString &peptide,
                                                              int charge, QChar ionType, const QString &neutralLoss,
                                                              QList<Fragment> *out)
{
    if (charge < 1)
        return;
    const bool reversed = fragmentLadder::startsAtCTerminus(ionType);
    const qsizetype length = peptide.size();
    fragmentLadder::GrowingIon ion(startMass, charge);
    for (int i = 0; i < count; ++i) {
        if (i >= length) {
            out->append(Fragment{});
            continue;
        }
        const QChar residue = peptide.at(reversed ? length - 1 - i : i);
        const double mz = ion.mzWith(fragmentLadder::weigh(residue, cysteineFixedMass));
        out->append({mz, charge, ionType, i + 1, neutralLoss});
    }
}

Result<QList<QPointF>> MsMsFragmentationPredictomatic::buildPoints(const QList<Fragment> &fragments,
                                                                   const std::vector<float> &predictions)
{
    ZAV_RETURN_IF_ERROR(
        ErrorUtils::equal<int>(static_cast<int>(fragments.size()), static_cast<int>(predictions.size()), Failure),
        fragmentationTrail::INTENSITY_COUNT);
    QList<QPointF> points;
    points.reserve(fragments.size() * TYPICAL_PEAKS_PER_SLOT);
    for (qsizetype slot = 0; slot < fragments.size(); ++slot) {
        const Fragment &fragment = fragments.at(slot);
        if (fragment.mz < 0.0)
            continue;
        const QPointF monoisotopic(fragment.mz, predictions.at(slot));
        points.append(monoisotopic);
        const Result<QList<QPointF>> isotopes = addIsotopesToFragments(monoisotopic, fragment.charge);
        ZAV_RETURN_IF_ERROR(isotopes, fragmentationTrail::FRAGMENT_ISOTOPES);
        points.append(isotopes.value());
    }
    // Every m/z is a number here, so that the comparison is a true order: the isotope generator refuses a mass of NaN.
    std::stable_sort(points.begin(), points.end(), [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); });
    return points;
}

Result<QList<QPointF>> MsMsFragmentationPredictomatic::addIsotopesToFragments(const QPointF &point, int charge)
{
    Result<QList<QPointF>> isotopes = heavyIsotopePeaks(isotopeGenerator, point, charge);
    ZAV_RETURN_IF_ERROR(isotopes, fragmentationTrail::ISOTOPE_ENVELOPE);
    return isotopes;
}

} // namespace zav
