// SPDX-License-Identifier: Apache-2.0
#include "SpectrumReportFile.h"

#include "PackedPoints.h"
#include "PrintableText.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>
#include <utility>

namespace zav {

namespace {

using Json = nlohmann::ordered_json;

Json texts(const QList<QByteArray> &values)
{
    Json array = Json::array();
    for (const QByteArray &value : values)
        array.push_back(value.toStdString());
    return array;
}

Json headingOf(const QString &run, const QList<QByteArray> &columns)
{
    return {{"generator", "zav " ZAV_VERSION}, {"files", jsonTexts({run})}, {"columns", texts(columns)}};
}

/// Of each ion its m/z, intensity and name, and those of the measured peak where there is one.
Json ionsOf(const ReportedSpectrum &spectrum)
{
    Json ions = Json::array();
    for (const ReportedIon &ion : spectrum.ions) {
        Json values = {ion.mz, ion.intensity, jsonText(ion.name)};
        if (ion.observed) {
            values.push_back(ion.observed->x());
            values.push_back(ion.observed->y());
        }
        ions.push_back(std::move(values));
    }
    return ions;
}

/// The text as tables write it, where that is another.
void setCell(Json *object, const char *key, const QString &text)
{
    if (const QString cell = displayText(text, std::numeric_limits<int>::max()); cell != text)
        (*object)[key] = jsonText(cell);
}

} // namespace

SpectrumReportFile::SpectrumReportFile(const QString &path, const QString &run, const QList<QByteArray> &columns)
    : m_file(path, ReportKind::Spectra, headingOf(run, columns))
{}

Error SpectrumReportFile::add(const ReportedSpectrum &spectrum)
{
    Json object = {{"file", 0},
                   {"peptide", jsonText(spectrum.peptide)},
                   {"charge", spectrum.charge},
                   {"scan", jsonText(spectrum.scan)}};
    setCell(&object, "peptideCell", spectrum.peptide);
    setCell(&object, "scanCell", spectrum.scan);
    if (std::isfinite(spectrum.collisionEnergy))
        object["energy"] = spectrum.collisionEnergy;
    if (!spectrum.title.isEmpty())
        object["title"] = jsonText(spectrum.title);
    if (spectrum.precursorMz > 0)
        object["mz"] = spectrum.precursorMz;
    if (spectrum.observedPrecursorMz > 0)
        object["observedMz"] = spectrum.observedPrecursorMz;
    if (!spectrum.values.isEmpty())
        object["values"] = texts(spectrum.values);
    if (!spectrum.problem.isEmpty())
        object["problem"] = jsonText(spectrum.problem);
    const QList<QPointF> observed = reportedPoints(spectrum.observed);
    if (observed.size() < spectrum.observed.size())
        object["thinned"] = true;
    return m_file.add(std::move(object), packedPoints(observed) + packedJson(ionsOf(spectrum)));
}

} // namespace zav
