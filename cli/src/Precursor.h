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

/// A text of the user's as it may stand in a message: control characters escaped, cut after `maxLength` characters.
QString displayText(const QString &text, int maxLength = 60);

} // namespace zav
