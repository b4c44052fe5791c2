// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Precursor.h"

#include <zav/Error.h>

#include <functional>

namespace zav {

/// The longest peptide for a precursor charge, 0 for a charge that no network serves.
using MaximumPeptideLength = std::function<int(int charge)>;

/// Whether a precursor can be predicted at all, before any network is asked: the predictor itself takes every text
/// and stays silent about what it cannot serve. `InvalidInput` says what is wrong and where (positions from 1).
Error checkPrecursor(const Precursor &precursor, const MaximumPeptideLength &maximumLength);

} // namespace zav
