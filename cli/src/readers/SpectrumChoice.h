// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumFile.h"

#include <QtCore/QString>

namespace zav {

/// The index of the spectrum that `scan` names in the file, or of the only MS2 spectrum when `scan` is empty: the rules
/// of `readObservedSpectrum`. `path` is for messages.
Result<int> chooseSpectrum(SpectrumFile *file, const QString &path, const QString &scan);

} // namespace zav
