// SPDX-License-Identifier: Apache-2.0
#include <zav/MsMsFragmentationPredictomatic.h>

#include "ErrorUtils.h"
#include "FragmentBatch.h"
#include "FragmentLadder.h"
#include "MsMsFragmentationPredictomatic_p.h"
#include "PeptideVocabulary.h"
#include "ReturnIfError.h"
#include "SpectrumLimits.h"
#include "Tensor.h"
#include "kelphysica.h"

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

void filterPredictedPoints(QList<QPointF> *points)
{
    points->removeIf([](const QPointF &point) { return spectrumLimits::isOutside(point.x(), point.y()); });
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
        {{modelPath1, 58}, {modelPath2, 62}, {modelPath3, 66}, {modelPath4, 70}, {modelPath5, 74}}};
    int charge = 0;
    for (const auto &[path, line] : pathsAndLines) {
        ++charge;
        auto model = std::make_unique<Model>();
        ZAV_RETURN_IF_ERROR(model->init(path.toStdString(), {}), line);
        delete models.take(charge);
        models.insert(charge, model.release());
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
{
    ZAV_RETURN_IF_ERROR(d->init(modelPath1, modelPath2, modelPath3, modelPath4, modelPath5), 123);
    return NoError;
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
{
    if (peptide.size() > getMaximumPeptideLengthForCharge(charge))
        return NoError;
    ZAV_RETURN_IF_ERROR(out == nullptr ? missingOutError() : Error(), __LINE__);
    const Result<Model *> model = d->model(charge);
    ZAV_RETURN_IF_ERROR(model.error(), __LINE__);

    Tensor input;
    ZAV_RETURN_IF_ERROR(
        input.init(model.value()->getGraph(), model.value()->getStatus(), peptideVocabulary::NETWORK_INPUT), 213);
    Tensor output;
    ZAV_RETURN_IF_ERROR(
        output.init(model.value()->getGraph(), model.value()->getStatus(), peptideVocabulary::NETWORK_OUTPUT), 215);
    ZAV_RETURN_IF_ERROR(input.setData<float>(encodePeptide(peptide, charge)), __LINE__);
    ZAV_RETURN_IF_ERROR(model.value()->run(input, output), __LINE__);
    std::vector<float> predictions;
    ZAV_RETURN_IF_ERROR(output.getData<float>(&predictions), 221);

    Result<QList<QPointF>> points = buildPoints(buildMzPoints(peptide, charge), predictions);
    ZAV_RETURN_IF_ERROR(points.error(), 230);
    QList<QPointF> spectrum = std::move(points).value();
    filterPredictedPoints(&spectrum);
    *out = std::move(spectrum);
    return NoError;
}

Error MsMsFragmentationPredictomatic::predictFragments(const QStringList &peptides, int charge,
                                                       QList<QList<FragmentPeak>> *out)
{
    ZAV_RETURN_IF_ERROR(out == nullptr ? missingOutError() : Error(), __LINE__);
    const Result<Model *> model = d->model(charge);
    ZAV_RETURN_IF_ERROR(model.error(), __LINE__);

    FragmentBatch batch(*model.value(), charge, cysteineFixedMass);
    Error outcome = batch.predict(peptides);
    if (outcome.hasError())
        return std::move(outcome.ecatch(Q_FUNC_INFO, SOURCE_FILE, __LINE__));
    *out = batch.takeSpectra();
    return outcome;
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
    double mass = startMass;
    for (int i = 0; i < count; ++i) {
        if (i >= length) {
            out->append(Fragment{});
            continue;
        }
        const QChar residue = peptide.at(reversed ? length - 1 - i : i);
        mass += fragmentLadder::residueMass(residue);
        if (residue == fragmentLadder::MODIFIED_RESIDUE)
            mass += cysteineFixedMass;
        out->append({mass / charge, charge, ionType, i + 1, neutralLoss});
    }
}

Result<QList<QPointF>> MsMsFragmentationPredictomatic::buildPoints(const QList<Fragment> &fragments,
                                                                   const std::vector<float> &predictions)
{
    ZAV_RETURN_IF_ERROR(
        ErrorUtils::equal<int>(static_cast<int>(fragments.size()), static_cast<int>(predictions.size()), Failure), 256);
    QList<QPointF> points;
    points.reserve(fragments.size() * TYPICAL_PEAKS_PER_SLOT);
    for (qsizetype slot = 0; slot < fragments.size(); ++slot) {
        const Fragment &fragment = fragments.at(slot);
        if (fragment.mz < 0.0)
            continue;
        const QPointF monoisotopic(fragment.mz, predictions.at(slot));
        points.append(monoisotopic);
        const Result<QList<QPointF>> isotopes = addIsotopesToFragments(monoisotopic, fragment.charge);
        ZAV_RETURN_IF_ERROR(isotopes.error(), 274);
        points.append(isotopes.value());
    }
    // Every m/z is a number here, so that the comparison is a true order: the isotope generator refuses a mass of NaN.
    std::sort(points.begin(), points.end(), [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); });
    return points;
}

Result<QList<QPointF>> MsMsFragmentationPredictomatic::addIsotopesToFragments(const QPointF &point, int charge)
{
    const double mass = kelphysica::calculateUnchargedMassFromMzCharge(point.x(), charge, 0, true);
    Result<QList<QPointF>> distribution =
        isotopeGenerator.buildTheoreticalIsotopicDistributionPoints(mass, charge, 0.0);
    ZAV_RETURN_IF_ERROR(distribution.error(), 440);
    QList<QPointF> isotopes = std::move(distribution).value();
    if (!isotopes.isEmpty())
        isotopes.removeFirst();
    for (QPointF &isotope : isotopes)
        isotope.setY(isotope.y() * point.y());
    return isotopes;
}

} // namespace zav
