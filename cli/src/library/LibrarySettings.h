// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryFormat.h"
#include "LibraryOptions.h"
#include "ModelFolder.h"

#include <zav/Result.h>

#include <QtCore/QByteArray>

namespace zav {

/// Everything that a library's bytes depend on beside its input, as one line of JSON: this program's version, the
/// networks by the SHA-256 of their files, and each option. Shard, threads and memory are not among it. The error names
/// a network that cannot be read.
Result<QByteArray> librarySettings(const LibraryOptions &options, const ModelFolder &folder);

/// What such settings say a library is.
LibraryFileKind kindIn(const QByteArray &settings);
LibraryInfo infoIn(const QByteArray &settings);

} // namespace zav
