// SPDX-License-Identifier: Apache-2.0
#include "MzMlFile.h"

#include "ProteoWizard.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

#include <pwiz/data/msdata/MSDataFile.hpp>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace zav {

namespace {

using pwiz::msdata::BinaryDataArrayPtr;
using pwiz::msdata::MSDataFile;
using pwiz::msdata::Spectrum;
using pwiz::msdata::SpectrumPtr;

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
    const BinaryDataArrayPtr mzs = source.getMZArray();
    const BinaryDataArrayPtr intensities = source.getIntensityArray();
    const std::size_t count = mzs ? mzs->data.size() : 0;
    if (count != (intensities ? intensities->data.size() : 0))
        return QStringLiteral("its m/z and intensity arrays differ in length");
    out->reserve(static_cast<qsizetype>(count));
    for (std::size_t i = 0; i < count; ++i) {
        // Baseline correction leaves intensities under 0; they are no peaks, but no damage either.
        const QPointF peak(mzs->data[i], intensities->data[i] < 0 ? 0 : intensities->data[i]);
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
    explicit MzMlFile(const QString &path) : m_path(path)
    {
        open();
        for (std::size_t i = 0; m_spectra && i < m_spectra->size(); ++i)
            m_ids.push_back(m_spectra->spectrumIdentity(i).id);
    }

    int spectrumCount() const override { return static_cast<int>(m_ids.size()); }

    SpectrumIdentity identity(int index) const override
    {
        const QString id = QString::fromStdString(m_ids[static_cast<std::size_t>(index)]);
        return {id, scanNumberOf(id)};
    }

    Result<int> msLevel(int index) override
    {
        return caught(m_path, [&]() -> Result<int> {
            return read(index, false)->cvParamValueOrDefault(pwiz::cv::MS_ms_level, 0);
        });
    }

    Result<ObservedSpectrum> spectrum(int index) override
    {
        return caught(m_path, [&]() -> Result<ObservedSpectrum> {
            const SpectrumPtr source = read(index, true);
            ObservedSpectrum spectrum;
            spectrum.title = titleOf(m_path, identity(index));
            readPrecursor(*source, &spectrum);
            const QString problem = readPeaks(*source, &spectrum.peaks);
            if (!problem.isEmpty())
                return Error(Failure,
                             QStringLiteral("%1: spectrum '%2': ").arg(m_path, identity(index).name) + problem);
            return spectrum;
        });
    }

private:
    void open()
    {
        m_file = std::make_unique<MSDataFile>(QFile::encodeName(m_path).toStdString());
        m_spectra = m_file->run.spectrumListPtr;
    }

    // Where the file's index is wrong, ProteoWizard makes one of its own in the middle of a read. If the file is
    // damaged, too, spectra are lost then, half of one may be returned, and later reads would go behind the end of its
    // list.
    SpectrumPtr read(int index, bool withPeaks)
    {
        SpectrumPtr spectrum;
        if (!m_spectra || static_cast<std::size_t>(index) >= m_spectra->size())
            throw std::runtime_error("it has changed since it was opened");
        try {
            spectrum = m_spectra->spectrum(static_cast<std::size_t>(index), withPeaks);
        } catch (...) {
            if (hasOtherSpectra(index))
                open();
            throw;
        }
        if (!hasOtherSpectra(index))
            return spectrum;
        open();
        throw std::runtime_error("its index is wrong");
    }

    // Than when the file was opened, as far as their number and this one tell.
    bool hasOtherSpectra(int index) const
    {
        const auto place = static_cast<std::size_t>(index);
        return m_spectra->size() != m_ids.size() || m_spectra->spectrumIdentity(place).id != m_ids[place];
    }

    QString m_path;
    std::unique_ptr<MSDataFile> m_file;
    pwiz::msdata::SpectrumListPtr m_spectra;
    std::vector<std::string> m_ids;
};

} // namespace

Result<std::unique_ptr<SpectrumFile>> openMzMlFile(const QString &path)
{
    if (Error error = checkFile(path); error.hasError())
        return error;
    return caught(path, [&]() -> Result<std::unique_ptr<SpectrumFile>> {
        return std::unique_ptr<SpectrumFile>(std::make_unique<MzMlFile>(path));
    });
}

} // namespace zav
