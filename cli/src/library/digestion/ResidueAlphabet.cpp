// SPDX-License-Identifier: Apache-2.0
#include "ResidueAlphabet.h"

#include <array>

namespace zav {

namespace {

constexpr auto makeStandardTable()
{
    std::array<bool, 256> table{};
    for (char letter : STANDARD_RESIDUES)
        table[static_cast<unsigned char>(letter)] = true;
    return table;
}

constexpr std::array<bool, 256> IS_STANDARD = makeStandardTable();

} // namespace

qsizetype firstNonstandardResidue(QByteArrayView sequence)
{
    for (qsizetype i = 0; i < sequence.size(); ++i) {
        if (!IS_STANDARD[static_cast<unsigned char>(sequence[i])])
            return i;
    }
    return -1;
}

} // namespace zav
