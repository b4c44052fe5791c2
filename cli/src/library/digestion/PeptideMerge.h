// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "DigestionReport.h"
#include "PeptidePages.h"

#include <vector>

namespace zav {

/// Merges parts into one, in order and each sequence once. The parts are finished and in order; their memory is given
/// back on the way. `*unitedCount` says how many peptides of the parts were the same as another.
Result<PeptidePages> mergePeptides(std::vector<PeptidePages> parts, const SortingSpace &space,
                                   const DigestionHooks &hooks, qint64 *unitedCount);

} // namespace zav
