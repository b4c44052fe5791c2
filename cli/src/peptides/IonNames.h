// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "AnnotatedPeak.h"

#include <zav/FragmentPeak.h>

#include <QtCore/QString>

namespace zav {

/// The fragment as a peak with its name: `y7+`, `b12++`, `y7-H2O+`.
AnnotatedPeak annotatedPeak(const FragmentPeak &fragment);

/// The same ion `isotopeNumber` neutrons above its monoisotopic peak (1 or more), named `y7-H2O++ i1`; m/z and
/// intensity are to be set by the caller.
AnnotatedPeak isotopeOf(const AnnotatedPeak &monoisotopic, int isotopeNumber);

} // namespace zav
