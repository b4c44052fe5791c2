// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QtGlobal>

namespace zav {

/// The generator SplitMix64 (Steele, Lea and Flood, OOPSLA 2014, doi:10.1145/2660193.2660195): the same numbers on
/// every platform, and cheap enough to start one for each peptide, unlike those of the standard library.
class SplitMix64
{
public:
    explicit constexpr SplitMix64(quint64 seed) : m_state(seed) {}

    constexpr quint64 next()
    {
        m_state += 0x9E3779B97F4A7C15;
        quint64 z = m_state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z ^ (z >> 31);
    }

    /// Uniform in 0 to `limit` - 1: draws beyond the last whole multiple of `limit` are drawn again. `limit` > 0.
    constexpr quint64 below(quint64 limit)
    {
        const quint64 excess = (~quint64(0) % limit + 1) % limit;
        quint64 draw = next();
        while (draw > ~quint64(0) - excess)
            draw = next();
        return draw % limit;
    }

private:
    quint64 m_state;
};

} // namespace zav
