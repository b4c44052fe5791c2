// SPDX-License-Identifier: Apache-2.0
#include "JsonWriter.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace zav {

namespace {

/// Rounded to the digits that mean something, so that the shortest text of the number is short.
double rounded(double value, double scale)
{
    return std::round(value * scale) / scale;
}

} // namespace

QByteArray JsonWriter::opening() const
{
    return "{\"generator\": \"zav " ZAV_VERSION "\", \"spectra\": [\n";
}

QByteArray JsonWriter::spectrum(const PredictedSpectrum &spectrum, bool isFirst) const
{
    nlohmann::ordered_json object;
    object["peptide"] = spectrum.precursor.peptide.toStdString();
    object["charge"] = spectrum.precursor.charge;
    object["precursor_mz"] = rounded(spectrum.precursorMz, 1e5);
    object["cysteine_mass"] = spectrum.cysteineMass;
    object["mz"] = nlohmann::json::array();
    object["intensity"] = nlohmann::json::array();
    if (m_options.ionNames)
        object["ion"] = nlohmann::json::array();
    for (const AnnotatedPeak &peak : spectrum.peaks) {
        object["mz"].push_back(rounded(peak.mz, 1e5));
        object["intensity"].push_back(rounded(peak.intensity, 1e6));
        if (m_options.ionNames)
            object["ion"].push_back(peak.ionName.isEmpty() ? nlohmann::ordered_json()
                                                           : nlohmann::ordered_json(peak.ionName.toStdString()));
    }
    return (isFirst ? "" : ",\n") + QByteArray::fromStdString(object.dump());
}

QByteArray JsonWriter::closing() const
{
    return "\n]}\n";
}

} // namespace zav
