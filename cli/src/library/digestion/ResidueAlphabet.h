// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArrayView>

#include <string_view>

namespace zav {

/// The 20 standard amino acids by their one-letter codes.
inline constexpr std::string_view STANDARD_RESIDUES = "ACDEFGHIKLMNPQRSTVWY";

constexpr bool isStandardResidue(char letter)
{
    return STANDARD_RESIDUES.find(letter) != std::string_view::npos;
}

/// Where the first letter stands that is none of the 20, -1 where all are.
qsizetype firstNonstandardResidue(QByteArrayView sequence);

} // namespace zav
