// SPDX-License-Identifier: Apache-2.0
#include "MzMlFile.h"

#include "ByteStream.h"
#include "InflatedSize.h"
#include "MzMlElements.h"
#include "PrintableText.h"
#include "ProteoWizard.h"

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

#include <pwiz/data/msdata/IO.hpp>

#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace zav {

namespace {

using pwiz::msdata::Spectrum;

// What is known of a spectrum since the file was opened.
struct KnownSpectrum
{
    SpectrumIdentity identity;
    int msLevel = 0;
    QString problem; // empty, or why it cannot be read
    TracePlace place;
};

int scanNumberOf(const QString &nativeId)
{
    static const QRegularExpression scan(QStringLiteral("(?:^|\\s)scan=(\\d+)(?:\\s|$)"));
    const QRegularExpressionMatch match = scan.match(nativeId);
    return match.hasMatch() ? match.captured(1).toInt() : -1;
}

QString titleOf(const QString &path, const SpectrumIdentity &identity)
{
    const QString spectrum =
        identity.scanNumber < 0 ? identity.name : QStringLiteral("scan %1").arg(identity.scanNumber);
    return QFileInfo(path).fileName() + QStringLiteral(", ") + spectrum;
}

// The spectrum's own parameters stand in front of all other elements; those of its groups have been put there.
int msLevelOf(QByteArrayView text)
{
    int level = 0;
    qsizetype size = xmlMarkupSize(text);
    for (qsizetype at = text.indexOf('<', size); size > 0 && at >= 0; at = text.indexOf('<', at + size)) {
        const QByteArrayView rest = text.sliced(at);
        if (!rest.startsWith("<cvParam "))
            return level;
        size = xmlMarkupSize(rest);
        const QByteArrayView tag = rest.first(size);
        const QByteArrayView accession = xmlAttribute(tag, "accession").value_or(QByteArrayView());
        if (accession == "MS:1000511")
            return xmlAttribute(tag, "value").value_or(QByteArrayView()).toInt();
        if (accession == "MS:1000579") // an MS1 spectrum
            level = 1;
    }
    return level;
}

void readPrecursor(const Spectrum &source, ObservedSpectrum *out)
{
    if (source.precursors.empty())
        return;
    const pwiz::msdata::Precursor &precursor = source.precursors.front();
    out->precursorMz = precursor.isolationWindow.cvParamValueOrDefault(pwiz::cv::MS_isolation_window_target_m_z, 0.0);
    if (precursor.selectedIons.empty())
        return;
    const pwiz::msdata::SelectedIon &ion = precursor.selectedIons.front();
    out->precursorMz = ion.cvParamValueOrDefault(pwiz::cv::MS_selected_ion_m_z, out->precursorMz);
    out->precursorCharge = ion.cvParamValueOrDefault(pwiz::cv::MS_charge_state, 0);
}

// An error text, empty when all went well.
QString readPeaks(const Spectrum &source, QList<QPointF> *out)
{
    const std::optional<MzMlArray> mzs = arrayOf(source, pwiz::cv::MS_m_z_array);
    const std::optional<MzMlArray> intensities = arrayOf(source, pwiz::cv::MS_intensity_array);
    const std::size_t count = mzs ? mzs->values.size() : 0;
    if (count != (intensities ? intensities->values.size() : 0))
        return QStringLiteral("its m/z and intensity arrays differ in length");
    out->reserve(static_cast<qsizetype>(count));
    for (std::size_t i = 0; i < count; ++i) {
        // Baseline correction leaves intensities under 0; they are no peaks, but no damage either.
        const QPointF peak(mzs->values[i], intensities->values[i] < 0 ? 0 : intensities->values[i]);
        if (!isPeak(peak))
            return QStringLiteral("peak %1 has no finite m/z above 0 and intensity").arg(i + 1);
        out->append(peak);
    }
    tidyPeaks(out);
    return {};
}

class MzMlFile : public SpectrumFile
{
public:
    MzMlFile(const QString &path, std::unique_ptr<ByteStream> bytes)
        : m_path(path), m_elements(std::move(bytes), "spectrum")
    {}

    // Reads the file to its end, without decoding.
    Error start()
    {
        for (;;) {
            const Result<std::optional<MzMlElement>> read = m_elements.next();
            if (read.hasError() || !read.value())
                return read.error();
            const MzMlElement &element = *read.value();
            const QByteArrayView text(element.text.data(), static_cast<qsizetype>(element.text.size()));
            const int level = element.problem.isEmpty() ? msLevelOf(text) : 0;
            m_spectra.push_back({{element.id, scanNumberOf(element.id)}, level, element.problem, element.place});
        }
    }

    int spectrumCount() const override { return static_cast<int>(m_spectra.size()); }

    SpectrumIdentity identity(int index) const override { return known(index).identity; }

    Result<int> msLevel(int index) override
    {
        if (const QString &problem = known(index).problem; !problem.isEmpty())
            return failure(index, problem);
        return known(index).msLevel;
    }

    Result<SpectrumOutcome> spectrum(int index) override
    {
        if (Error error = m_elements.seek(known(index).place); error.hasError())
            return error;
        Result<std::optional<MzMlElement>> read = m_elements.next();
        if (read.hasError())
            return read.error();
        std::optional<MzMlElement> element = std::move(read).value();
        if (!element || element->id != known(index).identity.name)
            return hasChanged(inputName(m_path));
        const QString problem = element->problem.isEmpty() ? inflationProblem(*element) : element->problem;
        if (!problem.isEmpty())
            return SpectrumOutcome{{}, failure(index, problem)};
        const Result<ObservedSpectrum> spectrum = decoded(index, std::move(element->text));
        return SpectrumOutcome{spectrum.hasError() ? ObservedSpectrum() : spectrum.value(), spectrum.error()};
    }

private:
    const KnownSpectrum &known(int index) const { return m_spectra[static_cast<std::size_t>(index)]; }

    QString subject(int index) const
    {
        return QStringLiteral("%1: spectrum '%2'").arg(inputName(m_path), displayText(known(index).identity.name));
    }

    Error failure(int index, const QString &problem) const
    {
        return {Failure, subject(index) + QStringLiteral(": ") + problem};
    }

    Result<ObservedSpectrum> decoded(int index, std::string element) const
    {
        return caughtAs(subject(index), [&]() -> Result<ObservedSpectrum> {
            std::istringstream text(std::move(element));
            Spectrum source;
            pwiz::msdata::IO::read(text, source, pwiz::msdata::IO::ReadBinaryData);
            ObservedSpectrum spectrum;
            spectrum.title = titleOf(m_path, known(index).identity);
            readPrecursor(source, &spectrum);
            const QString problem = readPeaks(source, &spectrum.peaks);
            return problem.isEmpty() ? Result<ObservedSpectrum>(std::move(spectrum)) : failure(index, problem);
        });
    }

    QString m_path;
    MzMlElements m_elements;
    std::vector<KnownSpectrum> m_spectra;
};

} // namespace

Result<std::unique_ptr<SpectrumFile>> openMzMlFile(const QString &path, SpectraToRead wanted)
{
    Result<std::unique_ptr<ByteStream>> bytes = openSpectrumBytes(path, wanted);
    if (bytes.hasError())
        return bytes.error();
    if (bytes.value()->peek().isEmpty())
        return cannotRead(inputName(path), QStringLiteral("it is empty"));
    auto file = std::make_unique<MzMlFile>(path, std::move(bytes).value());
    if (Error error = file->start(); error.hasError())
        return error;
    return std::unique_ptr<SpectrumFile>(std::move(file));
}

} // namespace zav
