// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ExtractedTraces.h"
#include "MzMlElements.h"

#include <QtCore/QString>

#include <cstddef>
#include <optional>
#include <string>

namespace zav {

/// The peaks of one spectrum, with the unit of their intensities.
struct MzMlPeaks
{
    SpectrumPeaks peaks;
    QString intensityUnit;
};

/// The peaks of a spectrum that has two arrays of `length` values, m/z and intensity, stored as floating-point numbers,
/// plain or compressed by zlib, as most files have them. Nothing for any other spectrum, a damaged one too.
///
/// It gives what ProteoWizard's reader of spectra gives, which takes more than twice as long: that looks for markup in
/// the values, character by character. Other spectra are left to it, so that it says what is wrong with them.
std::optional<MzMlPeaks> plainPeaks(const MzMlElement &spectrum, std::size_t length);

/// The element's text without the values of its arrays.
std::string textWithoutValues(const MzMlElement &element);

} // namespace zav
