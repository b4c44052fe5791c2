// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/FragmentPeak.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// Every fragment ion that the networks know of a peptide at a precursor charge, with m/z and intensity 0: b and y of
/// charge 1 to the precursor's but at most 3, a ions of up to 15 residues and losses of H2O and NH3 from b and y, all
/// of charge 1. `cysteineMass` in Da is added to every cysteine.
QList<FragmentPeak> theoreticalFragments(const QString &peptide, int charge, double cysteineMass);

} // namespace zav
