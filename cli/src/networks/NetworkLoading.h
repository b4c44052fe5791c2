// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ModelFolder.h"

#include <zav/Error.h>
#include <zav/MsMsFragmentationPredictomatic.h>
#include <zav/RetentionTimePredictor.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// The failure to load a network, in the user's terms: `cannot load msms_charge2.pb: REASON`. Code and trail are those
/// of `error`.
Error loadingError(const Error &error, const QString &path);

/// The failure to predict with a fragmentation network. The library reports a network that does not fit its charge by
/// code and trail alone; here it gets a message. Other errors, and no error, come back as they are.
Error predictionError(const Error &error, int charge);

/// Loads the networks of the charges into `predictor`: one charge at least, each within 1 to 5. Ends at the first that
/// fails. The error names its file, and `*failedCharge` is its charge.
Error loadFragmentationNetworks(const ModelFolder &folder, const QList<int> &charges,
                                MsMsFragmentationPredictomatic *predictor, int *failedCharge = nullptr);

/// Loads the network of a predictor that needs its path alone; the error names the file.
template <typename Predictor>
Error loadNetwork(const QString &path, Predictor *predictor)
{
    const Error error = predictor->init(path);
    return error.hasError() ? loadingError(error, path) : Error();
}

/// Loads the network for retention times of the folder, or of a file. The error names the file.
Error loadRetentionTimes(const ModelFolder &folder, RetentionTimePredictor *predictor);
Error loadRetentionTimes(const QString &path, RetentionTimePredictor *predictor);

/// Loads the network of a predictor for chromatograms. `Options` is the predictor's record of options; the error names
/// the file.
template <typename Predictor, typename Options>
Error loadNetwork(const Options &options, Predictor *predictor)
{
    const Error error = predictor->init(options);
    return error.hasError() ? loadingError(error, options.modelFilePath) : Error();
}

} // namespace zav
