// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumFile.h"
#include "TextLineReader.h"

#include <QtCore/QList>

namespace zav {

/// A Mascot generic format file (Matrix Science, "Mascot database search: Data file format").
///
/// Opening it reads it once and keeps each spectrum's header and place; peaks are read when asked for. Blocks without
/// MSLEVEL are MS/MS spectra. SCANS gives the scan number, of a range its first.
class MgfFile : public SpectrumFile
{
public:
    static Result<std::unique_ptr<SpectrumFile>> open(const QString &path);

    explicit MgfFile(const QString &path) : m_lines(path) {}

    int spectrumCount() const override { return static_cast<int>(m_blocks.size()); }
    SpectrumIdentity identity(int index) const override { return m_blocks[index].identity; }
    Result<int> msLevel(int index) override { return m_blocks[index].msLevel; }
    Result<ObservedSpectrum> spectrum(int index) override;

private:
    struct Block
    {
        SpectrumIdentity identity;
        double precursorMz = 0;
        int precursorCharge = 0;
        int msLevel = 2;
        qint64 offset = 0; // of the line after BEGIN IONS
        int lineNumber = 0;
    };

    Error index();
    Error indexBlock();
    Error readHeader(Block *block, const QByteArray &line) const;

    TextLineReader m_lines;
    QList<Block> m_blocks;
};

} // namespace zav
