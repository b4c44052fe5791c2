// SPDX-License-Identifier: Apache-2.0
#include "SpectrumWriter.h"

#include "LibraryFormat.h"
#include "PeptideMasses.h"

#include <nlohmann/json.hpp>

#include <QtCore/QLocale>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

/// Empty where the energy is unknown.
QByteArray energyText(double energy)
{
    return std::isnan(energy) ? QByteArray() : QByteArray::number(energy, 'g', QLocale::FloatingPointShortest);
}

class TableWriter : public SpectrumWriter
{
public:
    QByteArray spectrum(const PredictedSpectrum &spectrum, bool isFirst) const override
    {
        const QByteArray energy = energyText(spectrum.precursor.collisionEnergy);
        QByteArray text = (isFirst ? "" : "\n") + peptideText(spectrum).toUtf8() + "  charge " +
                          QByteArray::number(spectrum.precursor.charge) + '+' +
                          (energy.isEmpty() ? QByteArray() : "  energy " + energy) + "  precursor m/z " +
                          QByteArray::number(spectrum.precursorMz, 'f', 5) + "  " +
                          QByteArray::number(spectrum.peaks.size()) + " peaks\n";
        text += QByteArray("m/z").rightJustified(MZ_WIDTH) + QByteArray("intensity").rightJustified(INTENSITY_WIDTH) +
                "  ion\n";
        for (const FragmentPeak &peak : spectrum.peaks)
            text += peakLine(peak);
        return text;
    }

private:
    static constexpr int MZ_WIDTH = 11;
    static constexpr int INTENSITY_WIDTH = 11;
    static constexpr int ION_WIDTH = 15;
    static constexpr int BAR_WIDTH = 30; // of a peak of intensity 1

    static QByteArray peakLine(const FragmentPeak &peak)
    {
        const int bar = int(std::lround(BAR_WIDTH * std::clamp(peak.intensity, 0.0, 1.5)));
        QByteArray line = QByteArray::number(peak.mz, 'f', 5).rightJustified(MZ_WIDTH) +
                          QByteArray::number(peak.intensity, 'f', 4).rightJustified(INTENSITY_WIDTH) + "  " +
                          ionName(peak).toUtf8().leftJustified(ION_WIDTH) + QByteArray(bar, '#');
        while (line.endsWith(' '))
            line.chop(1);
        return line + '\n';
    }
};

class TsvWriter : public SpectrumWriter
{
public:
    explicit TsvWriter(const WriterOptions &options) : m_options(options) {}

    QByteArray opening() const override
    {
        return QByteArray("mz\tintensity") + (m_options.ionNames ? "\tion" : "") +
               (m_options.several ? "\tpeptide\tcharge" : "") +
               (m_options.several && m_options.energies ? "\tenergy" : "") + '\n';
    }

    QByteArray spectrum(const PredictedSpectrum &spectrum, bool /*isFirst*/) const override
    {
        const QByteArray lineEnd = precursorCells(spectrum) + '\n';
        QByteArray text;
        for (const FragmentPeak &peak : spectrum.peaks) {
            text += QByteArray::number(peak.mz, 'f', 5) + '\t' + QByteArray::number(peak.intensity, 'f', 6);
            if (m_options.ionNames)
                text += '\t' + ionName(peak).toUtf8();
            text += lineEnd;
        }
        return text;
    }

private:
    QByteArray precursorCells(const PredictedSpectrum &spectrum) const
    {
        if (!m_options.several)
            return {};
        QByteArray cells = '\t' + peptideText(spectrum).toUtf8() + '\t' + QByteArray::number(spectrum.precursor.charge);
        if (m_options.energies)
            cells += '\t' + energyText(spectrum.precursor.collisionEnergy);
        return cells;
    }

    WriterOptions m_options;
};

class JsonWriter : public SpectrumWriter
{
public:
    explicit JsonWriter(const WriterOptions &options) : m_options(options) {}

    QByteArray opening() const override { return "{\"generator\": \"zav " ZAV_VERSION "\", \"spectra\": [\n"; }

    QByteArray spectrum(const PredictedSpectrum &spectrum, bool isFirst) const override
    {
        nlohmann::ordered_json object;
        object["peptide"] = peptideText(spectrum).toStdString();
        object["charge"] = spectrum.precursor.charge;
        if (!std::isnan(spectrum.precursor.collisionEnergy))
            object["collision_energy"] = spectrum.precursor.collisionEnergy;
        object["precursor_mz"] = rounded(spectrum.precursorMz, 1e5);
        if (!isProForma(spectrum.precursor.peptide))
            object["cysteine_mass"] = spectrum.cysteineMass;
        object["mz"] = nlohmann::json::array();
        object["intensity"] = nlohmann::json::array();
        if (m_options.ionNames)
            object["ion"] = nlohmann::json::array();
        for (const FragmentPeak &peak : spectrum.peaks) {
            object["mz"].push_back(rounded(peak.mz, 1e5));
            object["intensity"].push_back(rounded(peak.intensity, 1e6));
            if (m_options.ionNames)
                object["ion"].push_back(ionOrNull(peak));
        }
        return (isFirst ? "" : ",\n") + QByteArray::fromStdString(object.dump());
    }

    QByteArray closing() const override { return "\n]}\n"; }

private:
    /// Rounded to the digits that mean something, so that the shortest text of the number is short.
    static double rounded(double value, double scale) { return std::round(value * scale) / scale; }

    static nlohmann::ordered_json ionOrNull(const FragmentPeak &peak)
    {
        const QString name = ionName(peak);
        return name.isEmpty() ? nlohmann::ordered_json() : nlohmann::ordered_json(name.toStdString());
    }

    WriterOptions m_options;
};

/// A text format of spectral libraries, of which each spectrum is an entry: a target of no protein.
class LibraryEntryWriter : public SpectrumWriter
{
public:
    explicit LibraryEntryWriter(LibraryFileKind kind) : m_format(textLibraryFormat(kind)) {}

    QByteArray spectrum(const PredictedSpectrum &spectrum, bool /*isFirst*/) const override
    {
        LibraryEntry entry;
        entry.peptidoform = spectrum.peptidoform;
        entry.isVariant = isProForma(spectrum.precursor.peptide);
        entry.charge = spectrum.precursor.charge;
        entry.precursorMz = spectrum.precursorMz;
        entry.peaks = spectrum.peaks;
        TextBuffer text;
        m_format->addEntry(entry, 0, &text); // the index is for formats that number their entries, which these do not
        return text.take();
    }

private:
    const LibraryFormat *m_format;
};

} // namespace

SpectrumWriter::~SpectrumWriter() = default;

std::unique_ptr<SpectrumWriter> makeSpectrumWriter(OutputFormat format, const WriterOptions &options)
{
    switch (format) {
    case OutputFormat::Table:
        break;
    case OutputFormat::Tsv:
        return std::make_unique<TsvWriter>(options);
    case OutputFormat::Msp:
        return std::make_unique<LibraryEntryWriter>(LibraryFileKind::Msp);
    case OutputFormat::Mgf:
        return std::make_unique<LibraryEntryWriter>(LibraryFileKind::Mgf);
    case OutputFormat::Json:
        return std::make_unique<JsonWriter>(options);
    }
    return std::make_unique<TableWriter>();
}

SpectrumOutput::SpectrumOutput(const QString &path, OutputFormat format, const WriterOptions &options)
    : m_writer(makeSpectrumWriter(format, options)), m_file(path)
{}

Error SpectrumOutput::write(const PredictedSpectrum &spectrum)
{
    QByteArray text = m_writer->spectrum(spectrum, m_isEmpty);
    if (m_isEmpty) {
        if (Error error = m_file.open(); error.hasError())
            return error;
        text.prepend(m_writer->opening());
        m_isEmpty = false;
    }
    return m_file.write(text);
}

Error SpectrumOutput::finish()
{
    if (m_isEmpty)
        return {};
    if (Error error = m_file.write(m_writer->closing()); error.hasError())
        return error;
    return m_file.commit();
}

} // namespace zav
