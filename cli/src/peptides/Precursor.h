// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QString>

#include <functional>

namespace zav {

/// A peptide at a precursor charge: one spectrum to predict.
struct Precursor
{
    QString peptide; ///< upper-case one-letter code, N-terminus first
    int charge = 0;
};

/// `PEPTIDE/2` for messages: long peptides are shortened, characters that would disturb a terminal are escaped.
QString displayName(const Precursor &precursor);

/// The longest peptide for a precursor charge, 0 for a charge that no network serves.
using MaximumPeptideLength = std::function<int(int charge)>;

/// Whether a precursor can be predicted at all, before any network is run: the predictor itself takes every text and
/// gives no error for what it cannot predict. `InvalidInput` says what is wrong and where (positions from 1).
Error checkPrecursor(const Precursor &precursor, const MaximumPeptideLength &maximumLength);

} // namespace zav
