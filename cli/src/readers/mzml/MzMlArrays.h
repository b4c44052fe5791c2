// SPDX-License-Identifier: Apache-2.0
//
// Private to the readers of mzML: what they share of ProteoWizard's data structures.
#pragma once

#include <QtCore/QString>

#include <pwiz/data/msdata/MSData.hpp>

#include <algorithm>
#include <optional>
#include <vector>

namespace zav {

/// One data array of a chromatogram or a spectrum.
struct MzMlArray
{
    std::vector<double> values;
    QString unit;
};

/// The unit as this program writes it: "min", "s", "counts", the ontology's name for others, empty for none.
QString unitText(pwiz::cv::CVID unit);

/// The array of a kind (time, intensity, m/z), stored as floating-point or integer numbers; nothing where `source` has
/// none. `source` is a `Chromatogram` or a `Spectrum`.
template <typename Source>
std::optional<MzMlArray> arrayOf(const Source &source, pwiz::cv::CVID kind)
{
    const auto take = [&](const auto &arrays) -> std::optional<MzMlArray> {
        for (const auto &array : arrays) {
            if (!array->hasCVParam(kind))
                continue;
            MzMlArray out{std::vector<double>(array->data.size()), unitText(array->cvParam(kind).units)};
            for (std::size_t i = 0; i < out.values.size(); ++i)
                out.values[i] = static_cast<double>(array->data[i]);
            return out;
        }
        return std::nullopt;
    };
    std::optional<MzMlArray> found = take(source.binaryDataArrayPtrs);
    return found ? found : take(source.integerDataArrayPtrs);
}

} // namespace zav
