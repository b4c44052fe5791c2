// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/FragmentPeak.h>

#include <QtCore/QList>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zav::python {

/// One row of the table of predicted peaks. `zav._fragments.PEAK_DTYPE` describes the same bytes to numpy.
struct PeakRow
{
    std::int64_t spectrum;
    double mz;
    double intensity;
    char32_t ion;
    std::int32_t number;
    std::int32_t charge;
    std::array<char32_t, 4> loss; ///< unused characters are 0
    std::int32_t isotope;
};
static_assert(sizeof(PeakRow) == 56, "numpy's rows have no padding");

/// The predicted peaks of a list of peptides, which arrive in pieces and in any order.
class PeakTable
{
public:
    explicit PeakTable(std::size_t spectrumCount) : m_spectra(spectrumCount) {}

    /// `indices` of the spectra within the list.
    void put(const std::vector<std::size_t> &indices, QList<QList<FragmentPeak>> &&spectra);

    /// All rows in the order of the spectra. Each spectrum is released as soon as it is copied; the table is empty
    /// then.
    std::vector<PeakRow> take();

private:
    std::vector<QList<FragmentPeak>> m_spectra;
};

} // namespace zav::python
