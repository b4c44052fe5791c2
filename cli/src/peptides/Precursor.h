// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>

namespace zav {

/// A peptide at a precursor charge: one spectrum to predict.
struct Precursor
{
    QString peptide; ///< upper-case one-letter code, N-terminus first
    int charge = 0;
};

/// `PEPTIDE/2` for messages: long peptides are shortened, characters that would disturb a terminal are escaped.
QString displayName(const Precursor &precursor);

} // namespace zav
