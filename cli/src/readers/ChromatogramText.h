// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ByteStream.h"
#include "ChromatogramSource.h"

namespace zav {

/// The chromatograms of a tab-separated table, as `openChromatograms` describes it. Holds one chromatogram and the ids
/// of those before, by which it knows an id that comes back. Fails for a table without a row. `readsGroups` as in
/// `ChromatogramRequest`, here and below.
Result<std::unique_ptr<ChromatogramSource>> openChromatogramTable(std::unique_ptr<ByteStream> bytes, bool readsGroups);

/// The chromatograms of a file with a JSON object on each line, as `openChromatograms` describes it. A line that cannot
/// be used is a broken trace; where already the first is no JSON object, the file is not of this kind: an error.
std::unique_ptr<ChromatogramSource> openChromatogramJsonLines(std::unique_ptr<ByteStream> bytes, bool readsGroups);

} // namespace zav
