// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MzMlElements.h"

#include <QtCore/QString>

namespace zav {

/// Why the arrays of an element are not to be decoded: one of them is a zlib stream that would take far more memory
/// than the file's own bytes, more than 16 MiB and more than 64 times its size. Empty for all others. zlib packs up to
/// 1,032 bytes into one (zlib.net, "Technical Details"), real arrays of more than 16 MiB about two.
///
/// Small arrays cost nothing; those of more than 21,000 characters are inflated once more.
QString inflationProblem(const MzMlElement &element);

} // namespace zav
