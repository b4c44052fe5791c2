// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "OutputFile.h"
#include "Spectrum.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// How predicted spectra are written.
enum class OutputFormat {
    /// For a person at a terminal: a line with peptide, charge and precursor m/z, then one peak a line with its ion and
    /// a bar as long as the peak is high. For another program use TSV.
    Table,

    /// Tab-separated: a header line, then one peak a line. Columns `mz` (5 decimals), `intensity` (relative, 6
    /// decimals), with ion names `ion` (empty where unknown), and with several spectra `peptide` and `charge`, and
    /// where any has a
    /// collision energy `energy` (normalised; empty where unknown).
    Tsv,

    /// The text format of NIST spectral libraries, as `zav library` writes it, of peptides without proteins.
    Msp,

    /// Mascot generic format, as `zav library` writes it.
    Mgf,

    /// One JSON object:
    ///
    ///     {"generator": "zav 0.1.0", "spectra": [
    ///     {"peptide": "PEPTIDE", "charge": 2, "precursor_mz": 400.68725, "cysteine_mass": 57.02146,
    ///      "mz": [...], "intensity": [...], "ion": [...]}
    ///     ]}
    ///
    /// one spectrum a line; `ion` only with ion names, null where unknown. Intensities are relative, as predicted. A
    /// peptide that was asked for with modifications stands in ProForma, without `cysteine_mass`; `collision_energy`
    /// is there where one was asked for.
    Json
};

struct WriterOptions
{
    bool ionNames = false; ///< write which ion each peak is; MGF has no place for it, table and MSP always have it
    bool several = false;  ///< the output may hold more than one spectrum: a TSV row then names its precursor
    bool energies = false; ///< and its collision energy
};

/// One text format. A document is `opening`, each spectrum by `spectrum`, `closing`; lines end with LF, numbers have
/// a decimal point whatever the locale.
class SpectrumWriter
{
public:
    SpectrumWriter() = default;
    virtual ~SpectrumWriter();

    SpectrumWriter(const SpectrumWriter &) = delete;
    SpectrumWriter &operator=(const SpectrumWriter &) = delete;

    virtual QByteArray opening() const { return {}; }
    virtual QByteArray spectrum(const PredictedSpectrum &spectrum, bool isFirst) const = 0;
    virtual QByteArray closing() const { return {}; }
};

std::unique_ptr<SpectrumWriter> makeSpectrumWriter(OutputFormat format, const WriterOptions &options);

/// Writes spectra in one format to one file. Nothing is opened, and no file appears, before the first spectrum.
class SpectrumOutput
{
public:
    /// `path` empty or "-": standard output.
    SpectrumOutput(const QString &path, OutputFormat format, const WriterOptions &options);

    Error write(const PredictedSpectrum &spectrum);

    /// Completes the file; nothing may be written afterwards.
    Error finish();

private:
    std::unique_ptr<SpectrumWriter> m_writer;
    OutputFile m_file;
    bool m_isEmpty = true;
};

} // namespace zav
