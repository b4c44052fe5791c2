// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"

namespace zav {

/// Reads what to extract from a table: tab-separated, with a heading. Column `mz` is needed; `id`, `ppm`, `rt_from` and
/// `rt_to` are optional, as are their cells: then the id is the m/z as written (with "#2", "#3" behind where it
/// repeats), ppm is `defaultPpm`, and the range of time is open. With `readsGroups` so is `group`. Empty lines and
/// lines that begin with `#` are passed over. "-" is standard input.
///
/// `Failure` with file and line number for what is no such table: a missing column, a value that is not a number or out
/// of its range (m/z above 0, ppm above 0, rt_from at most rt_to), an id twice, no target at all.
Result<QList<ExtractionTarget>> readTargetList(const QString &path, double defaultPpm, bool readsGroups = false);

} // namespace zav
