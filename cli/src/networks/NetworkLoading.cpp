// SPDX-License-Identifier: Apache-2.0
#include "NetworkLoading.h"

#include <QtCore/QFileInfo>

namespace zav {

namespace {

/// The first charge without a file that can be read, and why not.
Error checkFiles(const ModelFolder &folder, const QList<int> &charges, int *failedCharge)
{
    for (const int charge : charges) {
        *failedCharge = charge;
        if (Error error = folder.checkFragmentationNetwork(charge); error.hasError())
            return error;
    }
    return {};
}

} // namespace

void noteTrust(const NetworkChoice &asked, Messages *messages)
{
    if (asked.trusted)
        messages->note(QStringLiteral("the networks are loaded unchecked"));
}

Error loadingError(const Error &error, const QString &path)
{
    throwIfOutOfMemory(error);
    const QString reason = error.message().isEmpty() ? QStringLiteral("not a usable network") : error.message();
    return explainedError(error, QStringLiteral("cannot load %1: %2").arg(QFileInfo(path).fileName(), reason));
}

Error predictionError(const Error &error, int charge)
{
    throwIfOutOfMemory(error);
    if (!error.hasError() || !error.message().isEmpty())
        return error;
    return explainedError(error, QStringLiteral("msms_charge%1.pb is not a network for charge %1").arg(charge));
}

Error loadFragmentationNetworks(const ModelFolder &folder, const QList<int> &charges,
                                MsMsFragmentationPredictomatic *predictor, int *failedCharge)
{
    int unused = 0;
    int *failed = failedCharge ? failedCharge : &unused;
    if (Error error = checkFiles(folder, charges, failed); error.hasError())
        return error;
    const QStringList paths = folder.fragmentationNetworks(charges);
    const Error error = predictor->init(paths[0], paths[1], paths[2], paths[3], paths[4]);
    if (!error.hasError())
        return {};
    // The predictor loads the charges in turn; those that were not asked for have the path of the first that was.
    const int reached = predictor->maxPredictionChargeState() + 1;
    *failed = charges.contains(reached) ? reached : charges.first();
    return loadingError(error, folder.fragmentationNetwork(*failed));
}

} // namespace zav
