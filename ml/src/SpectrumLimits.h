// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Which predicted peaks are worth returning.
namespace zav::spectrumLimits {

inline constexpr double HIGHEST_MZ = 2000.0;      // the usual end of the mass range that is recorded
inline constexpr double LOWEST_INTENSITY = 0.025; // of the network's scale

/// Whether a peak is left out: over 2000 m/z or under the lowest intensity. Peaks at the limits stay, and so does NaN.
constexpr bool isOutside(double mz, double intensity)
{
    return mz > HIGHEST_MZ || intensity < LOWEST_INTENSITY;
}

} // namespace zav::spectrumLimits
