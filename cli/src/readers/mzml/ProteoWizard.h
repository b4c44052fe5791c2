// SPDX-License-Identifier: Apache-2.0
//
// Private to the readers of mzML: what they share of ProteoWizard.
#pragma once

#include <zav/Error.h>

#include <QtCore/QString>

#include <pwiz/data/msdata/MSData.hpp>

#include <exception>
#include <optional>
#include <vector>

namespace zav {

/// The one place where ProteoWizard's exceptions become errors: runs `step` and returns what it returns, a `Failure` of
/// the message `subject: what it threw` where it throws.
template <typename Step>
auto caughtAs(const QString &subject, const Step &step) -> decltype(step());

/// A message of ProteoWizard's without the names of its functions and the positions in the text that it was given.
QString plainMessage(const char *what);

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
std::optional<MzMlArray> arrayOf(const Source &source, pwiz::cv::CVID kind);

template <typename Step>
auto caughtAs(const QString &subject, const Step &step) -> decltype(step())
{
    try {
        return step();
    } catch (const std::bad_alloc &) {
        throw; // nothing is wrong with the file
    } catch (const std::exception &exception) {
        return Error(Failure, subject + QStringLiteral(": ") + plainMessage(exception.what()));
    } catch (const char *what) { // as its numpress decoders do
        return Error(Failure, subject + QStringLiteral(": ") + plainMessage(what));
    } catch (...) {
        return Error(Failure, subject);
    }
}

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
