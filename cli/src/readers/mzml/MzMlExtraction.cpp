// SPDX-License-Identifier: Apache-2.0
#include "MzMlChromatograms.h"

#include "MzMlElements.h"
#include "PrintableText.h"
#include "ProteoWizard.h"

#include <pwiz/data/msdata/IO.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <sstream>
#include <utility>

namespace zav {

namespace {

using pwiz::msdata::Spectrum;

constexpr double PARTS_PER_MILLION = 1e6;

std::vector<double> reordered(const std::vector<double> &values, const std::vector<std::size_t> &order)
{
    std::vector<double> out(values.size());
    std::transform(order.begin(), order.end(), out.begin(), [&](std::size_t i) { return values[i]; });
    return out;
}

void sortByMz(std::vector<double> *mzs, std::vector<double> *intensities)
{
    if (std::is_sorted(mzs->begin(), mzs->end()))
        return;
    std::vector<std::size_t> order(mzs->size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return (*mzs)[a] < (*mzs)[b]; });
    *mzs = reordered(*mzs, order);
    *intensities = reordered(*intensities, order);
}

double sumInWindow(const ExtractionTarget &target, const std::vector<double> &mzs,
                   const std::vector<double> &intensities)
{
    const double halfWidth = target.mz * target.ppm / PARTS_PER_MILLION;
    const auto first = std::lower_bound(mzs.begin(), mzs.end(), target.mz - halfWidth);
    const auto last = std::upper_bound(first, mzs.end(), target.mz + halfWidth);
    return std::accumulate(intensities.begin() + (first - mzs.begin()), intensities.begin() + (last - mzs.begin()),
                           0.0);
}

/// The chromatograms of targets, which grow spectrum by spectrum.
class ExtractedTraces
{
public:
    ExtractedTraces(QList<ExtractionTarget> targets, bool keepsTraces);

    /// Adds a point to each target whose range of time holds `time`: the sum of the intensities in its window. Both
    /// vectors have the same length; they come back ordered by m/z. Costs a binary search for each target.
    void addSpectrum(double time, std::vector<double> *mzs, std::vector<double> *intensities);

    qsizetype count() const { return m_targets.size(); }

    /// The trace of a target. Unless traces are kept, its points are given away.
    Chromatogram take(qsizetype index);

private:
    QList<ExtractionTarget> m_targets;
    QList<QList<QPointF>> m_points;
    bool m_keepsTraces;
};

ExtractedTraces::ExtractedTraces(QList<ExtractionTarget> targets, bool keepsTraces)
    : m_targets(std::move(targets)), m_points(m_targets.size()), m_keepsTraces(keepsTraces)
{}

void ExtractedTraces::addSpectrum(double time, std::vector<double> *mzs, std::vector<double> *intensities)
{
    sortByMz(mzs, intensities);
    for (qsizetype i = 0; i < m_targets.size(); ++i) {
        if (time >= m_targets[i].rtFrom && time <= m_targets[i].rtTo)
            m_points[i].append({time, sumInWindow(m_targets[i], *mzs, *intensities)});
    }
}

Chromatogram ExtractedTraces::take(qsizetype index)
{
    Chromatogram trace;
    trace.id = m_targets[index].id;
    trace.origin.group = m_targets[index].group;
    trace.points = m_keepsTraces ? m_points[index] : std::exchange(m_points[index], {});
    return trace;
}

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

class MzMlExtraction : public ChromatogramSource
{
public:
    MzMlExtraction(std::unique_ptr<ByteStream> bytes, const QList<ExtractionTarget> &targets, bool keepsTraces)
        : m_elements(std::move(bytes), "spectrum"), m_traces(targets, keepsTraces)
    {}

    qint64 count() const override { return m_traces.count(); }

    Result<std::optional<TraceOutcome>> next() override
    {
        if (!m_isExtracted)
            m_error = extract();
        m_isExtracted = true;
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
    Error extract()
    {
        for (;;) {
            Result<std::optional<MzMlElement>> element = m_elements.next();
            if (element.hasError())
                return element.error();
            std::optional<MzMlElement> spectrum = std::move(element).value();
            if (!spectrum)
                break;
            if (Error error = readSpectrum(std::move(*spectrum)); error.hasError())
                return error;
        }
        return m_timeUnit ? Error() : cannotRead(m_elements.name(), QStringLiteral("it holds no MS1 spectrum"));
    }

    Error readSpectrum(MzMlElement element)
    {
        const QString subject = QStringLiteral("%1: spectrum '%2'").arg(m_elements.name(), displayText(element.id));
        const QString problem = element.problem;
        return caughtAs(subject, [&]() -> Error {
            const QString why = problem.isEmpty() ? addIfMs1(std::move(element.text)) : problem;
            return why.isEmpty() ? Error() : Error(Failure, subject + QStringLiteral(": ") + why);
        });
    }

    // Why the spectrum cannot be used; an empty text for one that was added or is not of MS1.
    QString addIfMs1(std::string &&content)
    {
        std::istringstream text(std::move(content));
        Spectrum header;
        pwiz::msdata::IO::read(text, header, pwiz::msdata::IO::IgnoreBinaryData);
        if (!isMs1(header))
            return {};
        text.clear();
        text.seekg(0);
        Spectrum spectrum;
        pwiz::msdata::IO::read(text, spectrum, pwiz::msdata::IO::ReadBinaryData);
        return add(spectrum);
    }

    QString add(const Spectrum &spectrum)
    {
        const std::optional<StartTime> time = startTime(spectrum);
        if (!time)
            return QStringLiteral("it has no scan start time");
        if (m_timeUnit && *m_timeUnit != time->unit)
            return QStringLiteral("its scan start time has another unit than those before");
        m_timeUnit = time->unit;
        std::optional<MzMlArray> mzs = arrayOf(spectrum, pwiz::cv::MS_m_z_array);
        std::optional<MzMlArray> intensities = arrayOf(spectrum, pwiz::cv::MS_intensity_array);
        if (spectrum.defaultArrayLength == 0 && !mzs && !intensities)
            mzs = intensities = MzMlArray();
        if (!mzs || !intensities)
            return QStringLiteral("it has no m/z or no intensity array");
        if (mzs->values.size() != intensities->values.size())
            return QStringLiteral("its m/z and intensity arrays differ in length");
        if (!areFinite(mzs->values) || !areFinite(intensities->values))
            return QStringLiteral("its peaks are not all finite");
        if (m_intensityUnit.isEmpty())
            m_intensityUnit = intensities->unit;
        m_traces.addSpectrum(time->value, &mzs->values, &intensities->values);
        return {};
    }

    MzMlElements m_elements;
    ExtractedTraces m_traces;
    std::optional<QString> m_timeUnit; // from the first MS1 spectrum on
    QString m_intensityUnit;
    qsizetype m_taken = 0;
    bool m_isExtracted = false;
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
