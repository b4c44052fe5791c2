// SPDX-License-Identifier: Apache-2.0
#include "Bindings.h"
#include "Errors.h"
#include "PeakTable.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <nanobind/stl/array.h>
#include <nanobind/stl/pair.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <QtCore/QPointF>

#include <array>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace nb = nanobind;

namespace zav::python {

namespace {

/// The predictor for any number of threads: they take turns, and wait for them without the GIL.
class FragmentNetworks
{
public:
    FragmentNetworks(const std::array<std::string, 5> &paths, double cysteineMass)
    {
        Error error;
        {
            const nb::gil_scoped_release release;
            error = m_predictor.init(text(paths[0]), text(paths[1]), text(paths[2]), text(paths[3]), text(paths[4]));
            m_predictor.setCysteineFixedMass(cysteineMass);
        }
        raiseIfError(error);
    }

    int longestPeptide(int charge) { return m_predictor.getMaximumPeptideLengthForCharge(charge); }

    void predict(PeakTable *table, const std::vector<std::size_t> &indices, const std::vector<std::string> &peptides,
                 int charge, bool isotopes)
    {
        Error error;
        {
            const nb::gil_scoped_release release;
            QStringList list;
            list.reserve(static_cast<qsizetype>(peptides.size()));
            for (const std::string &peptide : peptides)
                list.append(text(peptide));
            QList<QList<FragmentPeak>> spectra;
            const std::lock_guard turn(m_mutex);
            error = m_predictor.predictFragments(list, charge, &spectra,
                                                 isotopes ? IsotopePeaks::Included : IsotopePeaks::LeftOut);
            if (!error.hasError() && !error.hasWarnings())
                table->put(indices, std::move(spectra));
        }
        raiseIfError(error);
    }

    std::pair<Array<double>, Array<double>> spectrum(const std::string &peptide, int charge)
    {
        QList<QPointF> peaks;
        Error error;
        {
            const nb::gil_scoped_release release;
            const std::lock_guard turn(m_mutex);
            error = m_predictor.predictMsMsFragmentation(text(peptide), charge, &peaks);
        }
        raiseIfError(error);
        std::vector<double> mz;
        std::vector<double> intensity;
        for (const QPointF &peak : peaks) {
            mz.push_back(peak.x());
            intensity.push_back(peak.y());
        }
        return {arrayOf<double>(std::move(mz)), arrayOf<double>(std::move(intensity))};
    }

private:
    std::mutex m_mutex; ///< of the predictor, which serves one thread at a time
    MsMsFragmentationPredictomatic m_predictor;
};

/// The bytes of the rows, which Python looks at as `PEAK_DTYPE`.
Array<std::uint8_t> takeBytes(PeakTable *table)
{
    std::vector<PeakRow> rows;
    {
        const nb::gil_scoped_release release;
        rows = table->take();
    }
    return arrayOf<std::uint8_t>(std::move(rows));
}

} // namespace

void bindFragments(nb::module_ &module)
{
    nb::class_<PeakTable>(module, "PeakTable")
        .def(nb::init<std::size_t>(), nb::arg("spectrum_count"))
        .def("take", &takeBytes);
    nb::class_<FragmentNetworks>(module, "FragmentNetworks")
        .def(nb::init<const std::array<std::string, 5> &, double>(), nb::arg("paths"), nb::arg("cysteine"))
        .def("longest_peptide", &FragmentNetworks::longestPeptide, nb::arg("charge"))
        .def("predict", &FragmentNetworks::predict, nb::arg("table"), nb::arg("indices"), nb::arg("peptides"),
             nb::arg("charge"), nb::arg("isotopes"))
        .def("spectrum", &FragmentNetworks::spectrum, nb::arg("peptide"), nb::arg("charge"));
}

} // namespace zav::python
