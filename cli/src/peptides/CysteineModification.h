// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace zav {

/// What cysteines are blocked with, as the field names it.
struct CysteineModification
{
    double mass;      ///< monoisotopic, Da
    const char *name; ///< in Unimod
    int unimod;       ///< record number in Unimod
};

/// The modification of that mass (within 0.001 Da) among carbamidomethyl, propionamide, pyridylethyl, methylthio and
/// N-ethylmaleimide; null for any other mass.
const CysteineModification *knownCysteineModification(double mass);

/// Whether cysteines of that added mass (Da) count as modified: not within 0.001 Da of nothing.
bool isCysteineModified(double mass);

/// The mass as Unimod has it where `mass` is that mass with fewer digits (57.02146), else `mass`.
double exactCysteineMass(double mass);

} // namespace zav
