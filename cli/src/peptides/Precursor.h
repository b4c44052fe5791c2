// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Peptidoform.h>
#include <zav/Result.h>

#include <QtCore/QString>

#include <functional>
#include <limits>

namespace zav {

/// A peptide at a precursor charge: one spectrum to predict.
struct Precursor
{
    QString peptide; ///< as it was asked for: upper-case one-letter code, N-terminus first, or ProForma
    int charge = 0;
    double collisionEnergy = std::numeric_limits<double>::quiet_NaN(); ///< normalised; NaN: none was asked for
};

/// Whether a peptide is written with modifications, in ProForma, rather than in one-letter code alone.
bool isProForma(const QString &peptide);

/// Whether only the network of peptidoforms can predict it: it has modifications or an energy.
bool needsPeptidoforms(const Precursor &precursor);

/// The peptide with its modifications. In one-letter code every cysteine has `cysteineMass` (Da) added; ProForma is
/// taken as it stands, so that its plain cysteines are free ones. `InvalidInput` for ProForma that cannot be read.
Result<Peptidoform> peptidoformOf(const QString &peptide, double cysteineMass);

/// Whether the energy is one that the network of peptidoforms takes.
bool isCollisionEnergy(double energy);

/// `PEPTIDE/2` for messages: long peptides are shortened, characters that would disturb a terminal are escaped.
QString displayName(const Precursor &precursor);

/// The longest peptide for a precursor charge, 0 for a charge that no network serves.
using MaximumPeptideLength = std::function<int(int charge)>;

/// Whether a precursor can be predicted at all, before any network is run: the predictor itself takes every text and
/// gives no error for what it cannot predict. `maximumLength` is that of the networks of one charge each; the network
/// of peptidoforms has limits of its own. `InvalidInput` says what is wrong and where (positions from 1).
Error checkPrecursor(const Precursor &precursor, const MaximumPeptideLength &maximumLength);

} // namespace zav
