// SPDX-License-Identifier: Apache-2.0
#include <zav/PeptidoformSpectrumPredictor.h>

#include "OutOfMemory.h"
#include "PeptidoformBatch.h"
#include "PeptidoformRows.h"
#include "PeptidoformSpectrumPredictor_p.h"
#include "ReturnIfError.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "ml/src/PeptidoformSpectrumPredictor";

static_assert(PeptidoformSpectrumPredictor::LONGEST_PEPTIDE == peptidoformRows::ROW_COUNT);

bool isEnergy(double energy)
{
    return std::isnan(energy) || (energy >= PeptidoformSpectrumPredictor::LOWEST_COLLISION_ENERGY &&
                                  energy <= PeptidoformSpectrumPredictor::HIGHEST_COLLISION_ENERGY);
}

Error checkEnergies(const QList<PeptidoformPrecursor> &precursors)
{
    const auto odd =
        std::find_if_not(precursors.cbegin(), precursors.cend(),
                         [](const PeptidoformPrecursor &precursor) { return isEnergy(precursor.collisionEnergy); });
    if (odd == precursors.cend())
        return NoError;
    return {InvalidInput, QStringLiteral("The collision energy of %1 is %2, not %3 to %4")
                              .arg(odd->peptidoform.toProForma())
                              .arg(odd->collisionEnergy)
                              .arg(PeptidoformSpectrumPredictor::LOWEST_COLLISION_ENERGY)
                              .arg(PeptidoformSpectrumPredictor::HIGHEST_COLLISION_ENERGY)};
}

} // namespace

PeptidoformSpectrumPredictor::PeptidoformSpectrumPredictor() : d(std::make_unique<Private>()) {}

PeptidoformSpectrumPredictor::~PeptidoformSpectrumPredictor() = default;

Error PeptidoformSpectrumPredictor::init(const QString &networkPath)
try {
    auto model = std::make_unique<Model>();
    ZAV_RETURN_IF_ERROR(model->init(networkPath.toStdString(), {}), __LINE__);
    d->model = std::move(model);
    return NoError;
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

bool PeptidoformSpectrumPredictor::isInit() const
{
    return d->model != nullptr;
}

Error PeptidoformSpectrumPredictor::predict(const QList<PeptidoformPrecursor> &precursors,
                                            QList<QList<FragmentPeak>> *out, IsotopePeaks isotopes)
try {
    ZAV_RETURN_IF_ERROR(out == nullptr ? Error(InvalidInput, QStringLiteral("There is no list for the prediction"))
                                       : Error(),
                        __LINE__);
    ZAV_RETURN_IF_ERROR(isInit() ? Error() : Error(Failure, QStringLiteral("No network is loaded")), __LINE__);
    ZAV_RETURN_IF_ERROR(checkEnergies(precursors), __LINE__);

    PeptidoformBatch batch(*d->model, isotopes);
    Error outcome = batch.predict(precursors);
    if (outcome.hasError())
        return std::move(outcome.ecatch(Q_FUNC_INFO, SOURCE_FILE, __LINE__));
    *out = batch.takeSpectra();
    return outcome;
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

} // namespace zav
