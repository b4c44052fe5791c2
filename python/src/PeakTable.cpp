// SPDX-License-Identifier: Apache-2.0
#include "PeakTable.h"

#include <stdexcept>
#include <utility>

namespace zav::python {

namespace {

PeakRow rowOf(const FragmentPeak &peak, std::size_t spectrum)
{
    PeakRow row{static_cast<std::int64_t>(spectrum),
                peak.mz,
                peak.intensity,
                peak.ionType.unicode(),
                peak.ionNumber,
                peak.charge,
                {},
                peak.isotope};
    if (peak.neutralLoss.size() > static_cast<qsizetype>(row.loss.size()))
        throw std::length_error("a neutral loss has more than four characters");
    for (qsizetype i = 0; i < peak.neutralLoss.size(); ++i)
        row.loss[static_cast<std::size_t>(i)] = peak.neutralLoss[i].unicode();
    return row;
}

} // namespace

void PeakTable::put(const std::vector<std::size_t> &indices, QList<QList<FragmentPeak>> &&spectra)
{
    for (std::size_t i = 0; i < indices.size(); ++i)
        m_spectra.at(indices[i]) = std::move(spectra[static_cast<qsizetype>(i)]);
}

std::vector<PeakRow> PeakTable::take()
{
    std::size_t count = 0;
    for (const QList<FragmentPeak> &peaks : m_spectra)
        count += static_cast<std::size_t>(peaks.size());
    std::vector<PeakRow> rows;
    rows.reserve(count);
    for (std::size_t i = 0; i < m_spectra.size(); ++i) {
        const QList<FragmentPeak> peaks = std::exchange(m_spectra[i], {});
        for (const FragmentPeak &peak : peaks)
            rows.push_back(rowOf(peak, i));
    }
    return rows;
}

} // namespace zav::python
