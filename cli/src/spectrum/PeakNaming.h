// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "AnnotatedPeak.h"

#include <zav/FragmentPeak.h>
#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QPointF>

namespace zav {

/// Names the peaks of a predicted spectrum (m/z, intensity) by its fragments, which carry names but no isotope peaks.
///
/// Every point comes back, in its place, as one peak. It takes the name of the fragment, or of the heavier isotope of
/// a fragment, that stands at its m/z (within 0.0001) and, where several do, is nearest in intensity; each name is
/// given once.
///
/// `fragments` in any order. Where they leave points unnamed, `silentFragments` are tried too: ions too low to be
/// listed themselves, of which a heavier isotope may still be high enough. An error is that of an isotope envelope.
Result<QList<AnnotatedPeak>> namePeaks(const QList<QPointF> &points, const QList<FragmentPeak> &fragments,
                                       const QList<FragmentPeak> &silentFragments);

} // namespace zav
