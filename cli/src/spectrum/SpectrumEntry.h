// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryEntry.h"
#include "PredictedSpectrum.h"

namespace zav {

/// The spectrum as an entry of a spectral library: a target of no protein.
LibraryEntry libraryEntry(const PredictedSpectrum &spectrum);

} // namespace zav
