// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Messages.h"
#include "ModelFolder.h"

#include <zav/Error.h>
#include <zav/MsMsFragmentationPredictomatic.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// Says so when the networks are loaded unchecked.
void noteTrust(const NetworkChoice &asked, Messages *messages);

/// The failure to load a network, in the user's terms: `cannot load msms_charge2.pb: REASON`. Code and trail are those
/// of `error`. Throws as `throwIfOutOfMemory` does.
Error loadingError(const Error &error, const QString &path);

/// The failure to predict with a fragmentation network. The library reports a network that does not fit its charge by
/// code and trail alone; here it gets a message. Other errors, and no error, come back as they are, but for what
/// `throwIfOutOfMemory` throws.
Error predictionError(const Error &error, int charge);

/// Loads the networks of the charges into `predictor`: one charge at least, each within 1 to 5. Ends at the first that
/// fails. The error names its file, and `*failedCharge` is its charge.
Error loadFragmentationNetworks(const ModelFolder &folder, const QList<int> &charges,
                                MsMsFragmentationPredictomatic *predictor, int *failedCharge = nullptr);

/// Loads the network of a predictor that needs its path alone, unchecked; the error names the file.
template <typename Predictor>
Error loadNetwork(const QString &path, Predictor *predictor)
{
    const Error error = predictor->init(path);
    return error.hasError() ? loadingError(error, path) : Error();
}

/// Likewise, the network of the folder for that use, once it has passed the folder's check.
template <typename Predictor>
Error loadNetwork(const ModelFolder &folder, NetworkUse use, Predictor *predictor)
{
    Error error = folder.checkNetwork(use);
    return error.hasError() ? error : loadNetwork(folder.network(use), predictor);
}

/// Loads the network of a predictor for chromatograms, unchecked. `Options` is the predictor's record of options; the
/// error names the file.
template <typename Predictor, typename Options>
Error loadNetwork(const Options &options, Predictor *predictor)
{
    const Error error = predictor->init(options);
    return error.hasError() ? loadingError(error, options.modelFilePath) : Error();
}

} // namespace zav
