// SPDX-License-Identifier: Apache-2.0
#include "MzMlChromatograms.h"

#include "InflatedSize.h"
#include "MzMlElements.h"
#include "PrintableText.h"
#include "ProteoWizard.h"

#include <pwiz/data/msdata/IO.hpp>

#include <cmath>
#include <sstream>
#include <utility>

namespace zav {

namespace {

// Why the arrays are no trace, an empty text when they are.
QString readPoints(const MzMlArray &times, const MzMlArray &intensities, QList<QPointF> *out)
{
    if (times.values.size() != intensities.values.size())
        return QStringLiteral("its time array holds %1 values, its intensity array %2")
            .arg(QString::number(times.values.size()), QString::number(intensities.values.size()));
    out->reserve(static_cast<qsizetype>(times.values.size()));
    for (std::size_t i = 0; i < times.values.size(); ++i) {
        if (!std::isfinite(times.values[i]) || !std::isfinite(intensities.values[i]))
            return QStringLiteral("point %1 is not finite").arg(i + 1);
        out->append({times.values[i], intensities.values[i]});
    }
    return {};
}

QString readArrays(const pwiz::msdata::Chromatogram &source, Chromatogram *out)
{
    const std::optional<MzMlArray> times = arrayOf(source, pwiz::cv::MS_time_array);
    const std::optional<MzMlArray> intensities = arrayOf(source, pwiz::cv::MS_intensity_array);
    out->timeUnit = times ? times->unit : QString();
    out->intensityUnit = intensities ? intensities->unit : QString();
    if (times && intensities)
        return readPoints(*times, *intensities, &out->points);
    if (source.defaultArrayLength == 0 && !times && !intensities)
        return {};
    return times ? QStringLiteral("it has no intensity array") : QStringLiteral("it has no time array");
}

class MzMlChromatograms : public ChromatogramSource
{
public:
    explicit MzMlChromatograms(std::unique_ptr<ByteStream> bytes) : m_elements(std::move(bytes), "chromatogram") {}

    // Reads up to the first chromatogram: what is wrong with the file as a whole is said when it is opened.
    Error start()
    {
        Result<std::optional<MzMlElement>> first = m_elements.next();
        if (first.hasError())
            return first.error();
        m_first = std::move(first).value();
        return m_first ? Error() : noChromatogram();
    }

    qint64 count() const override { return m_elements.declaredCount(); }

    Result<std::optional<TraceOutcome>> next() override
    {
        if (m_error.hasError())
            return m_error;
        std::optional<MzMlElement> element = std::exchange(m_first, std::nullopt);
        if (!element) {
            Result<std::optional<MzMlElement>> read = m_elements.next();
            m_error = read.error();
            if (read.hasError())
                return m_error;
            element = std::move(read).value();
        }
        return element ? std::optional<TraceOutcome>(read(std::move(*element))) : std::nullopt;
    }

    Error seek(const TracePlace &place) override
    {
        m_first.reset();
        m_error = m_elements.seek(place);
        return m_error;
    }

private:
    TraceOutcome read(MzMlElement element) const
    {
        const QString subject =
            QStringLiteral("%1: chromatogram '%2'").arg(m_elements.name(), displayText(element.id, MAX_ID_LENGTH));
        TraceOutcome outcome;
        outcome.chromatogram.id = element.id;
        outcome.chromatogram.origin = element.origin;
        outcome.place = element.place;
        outcome.problem = caughtAs(subject, [&]() -> Error {
            const QString why = element.problem.isEmpty() ? inflationProblem(element) : element.problem;
            if (!why.isEmpty())
                return {Failure, subject + QStringLiteral(": ") + why};
            std::istringstream text(std::move(element.text));
            pwiz::msdata::Chromatogram source;
            pwiz::msdata::IO::read(text, source, pwiz::msdata::IO::ReadBinaryData);
            const QString problem = readArrays(source, &outcome.chromatogram);
            return problem.isEmpty() ? Error() : Error(Failure, subject + QStringLiteral(": ") + problem);
        });
        return outcome;
    }

    Error noChromatogram() const
    {
        const QString hint = QStringLiteral("; name an m/z to extract chromatograms from its MS1 spectra");
        return cannotRead(m_elements.name(), QStringLiteral("it holds no chromatogram") +
                                                 (m_elements.declaredSpectra() > 0 ? hint : QString()));
    }

    static constexpr int MAX_ID_LENGTH = 120; // native ids name transition, sample, period and more

    MzMlElements m_elements;
    std::optional<MzMlElement> m_first; // read when the file was opened
    Error m_error;
};

} // namespace

Result<std::unique_ptr<ChromatogramSource>> openMzMlChromatograms(std::unique_ptr<ByteStream> bytes)
{
    auto chromatograms = std::make_unique<MzMlChromatograms>(std::move(bytes));
    if (Error error = chromatograms->start(); error.hasError())
        return error;
    return std::unique_ptr<ChromatogramSource>(std::move(chromatograms));
}

} // namespace zav
