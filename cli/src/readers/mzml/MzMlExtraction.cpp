// SPDX-License-Identifier: Apache-2.0
#include "MzMlChromatograms.h"

#include "ExtractedTraces.h"
#include "InflatedSize.h"
#include "MzMlElements.h"
#include "MzMlPeaks.h"
#include "PrintableText.h"
#include "ProteoWizard.h"

#include <pwiz/data/msdata/IO.hpp>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

namespace zav {

namespace {

using pwiz::msdata::Spectrum;

bool isMs1(const Spectrum &spectrum)
{
    const bool saysLevel = spectrum.hasCVParam(pwiz::cv::MS_ms_level);
    return saysLevel ? spectrum.cvParam(pwiz::cv::MS_ms_level).valueAs<int>() == 1
                     : spectrum.hasCVParam(pwiz::cv::MS_MS1_spectrum);
}

bool areFinite(const std::vector<double> &values)
{
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}

struct StartTime
{
    double value = 0;
    QString unit;
};

std::optional<StartTime> startTime(const Spectrum &spectrum)
{
    for (const pwiz::msdata::Scan &scan : spectrum.scanList.scans) {
        const pwiz::data::CVParam time = scan.cvParam(pwiz::cv::MS_scan_start_time);
        if (!time.empty() && std::isfinite(time.valueAs<double>()))
            return StartTime{time.valueAs<double>(), unitText(time.units)};
    }
    return std::nullopt;
}

// Nothing where it lacks an array, unless it has no peaks at all.
std::optional<MzMlPeaks> storedPeaks(const Spectrum &spectrum)
{
    std::optional<MzMlArray> mzs = arrayOf(spectrum, pwiz::cv::MS_m_z_array);
    std::optional<MzMlArray> intensities = arrayOf(spectrum, pwiz::cv::MS_intensity_array);
    if (spectrum.defaultArrayLength == 0 && !mzs && !intensities)
        return MzMlPeaks();
    if (!mzs || !intensities)
        return std::nullopt;
    return MzMlPeaks{{std::move(mzs->values), std::move(intensities->values)}, intensities->unit};
}

class MzMlExtraction : public ChromatogramSource
{
public:
    MzMlExtraction(std::unique_ptr<ByteStream> bytes, const QList<ExtractionTarget> &targets, bool keepsTraces)
        : m_elements(std::move(bytes), "spectrum"), m_traces(targets, keepsTraces), m_keepsTraces(keepsTraces)
    {}

    qint64 count() const override { return m_traces.count(); }

    Result<std::optional<TraceOutcome>> next() override
    {
        while (!m_error.hasError() && !m_isRead && !isNextComplete())
            m_error = readSpectrum();
        if (m_error.hasError())
            return m_error;
        if (m_taken == m_traces.count())
            return std::optional<TraceOutcome>();
        TraceOutcome outcome;
        outcome.place.order = m_taken;
        outcome.chromatogram = m_traces.take(m_taken++);
        outcome.chromatogram.timeUnit = m_timeUnit.value_or(QString());
        outcome.chromatogram.intensityUnit = m_intensityUnit;
        return std::optional<TraceOutcome>(std::move(outcome));
    }

    Error seek(const TracePlace &place) override
    {
        m_taken = place.order;
        return m_error;
    }

private:
    // Whether the next trace can be handed on before the end of the file. Behind the last one the rest of the file is
    // read too: it may be damaged. Without a unit all traces wait, since a later spectrum may name it.
    bool isNextComplete() const
    {
        return !m_keepsTraces && !m_intensityUnit.isEmpty() && m_taken < m_traces.count() && m_traces.isOver(m_taken);
    }

    Error readSpectrum()
    {
        Result<std::optional<MzMlElement>> read = m_elements.next();
        if (read.hasError())
            return read.error();
        const std::optional<MzMlElement> element = std::move(read).value();
        if (!element)
            return endOfFile();
        const QString subject = QStringLiteral("%1: spectrum '%2'").arg(m_elements.name(), displayText(element->id));
        return caughtAs(subject, [&]() -> Error {
            const QString why = element->problem.isEmpty() ? addIfMs1(*element) : element->problem;
            return why.isEmpty() ? Error() : Error(Failure, subject + QStringLiteral(": ") + why);
        });
    }

    Error endOfFile()
    {
        m_isRead = true;
        return m_timeUnit ? Error() : cannotRead(m_elements.name(), QStringLiteral("it holds no MS1 spectrum"));
    }

    // Why the spectrum cannot be used; an empty text for one that was added or is not of MS1.
    QString addIfMs1(const MzMlElement &element)
    {
        std::istringstream tags(textWithoutValues(element));
        Spectrum header;
        pwiz::msdata::IO::read(tags, header, pwiz::msdata::IO::IgnoreBinaryData);
        if (!isMs1(header))
            return {};
        if (QString problem = inflationProblem(element); !problem.isEmpty())
            return problem;
        if (std::optional<MzMlPeaks> plain = plainPeaks(element, header.defaultArrayLength))
            return add(header, std::move(plain));
        std::istringstream text(element.text);
        Spectrum spectrum;
        pwiz::msdata::IO::read(text, spectrum, pwiz::msdata::IO::ReadBinaryData);
        return add(spectrum, storedPeaks(spectrum));
    }

    QString add(const Spectrum &spectrum, std::optional<MzMlPeaks> found)
    {
        const std::optional<StartTime> time = startTime(spectrum);
        if (!time)
            return QStringLiteral("it has no scan start time");
        if (m_timeUnit && *m_timeUnit != time->unit)
            return QStringLiteral("its scan start time has another unit than those before");
        m_timeUnit = time->unit;
        if (!found)
            return QStringLiteral("it has no m/z or no intensity array");
        SpectrumPeaks &peaks = found->peaks;
        if (peaks.mzs.size() != peaks.intensities.size())
            return QStringLiteral("its m/z and intensity arrays differ in length");
        if (!areFinite(peaks.mzs) || !areFinite(peaks.intensities))
            return QStringLiteral("its peaks are not all finite");
        if (m_intensityUnit.isEmpty())
            m_intensityUnit = found->intensityUnit;
        return m_traces.addSpectrum(time->value, &peaks);
    }

    MzMlElements m_elements;
    ExtractedTraces m_traces;
    bool m_keepsTraces;
    std::optional<QString> m_timeUnit; // from the first MS1 spectrum on
    QString m_intensityUnit;
    qsizetype m_taken = 0;
    bool m_isRead = false;
    Error m_error;
};

} // namespace

Result<std::unique_ptr<ChromatogramSource>> openMzMlExtraction(std::unique_ptr<ByteStream> bytes,
                                                               const QList<ExtractionTarget> &targets, bool keepsTraces)
{
    return std::unique_ptr<ChromatogramSource>(
        std::make_unique<MzMlExtraction>(std::move(bytes), targets, keepsTraces));
}

} // namespace zav
