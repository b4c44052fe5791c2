// SPDX-License-Identifier: Apache-2.0
#include "MgfFile.h"

#include "PeakLine.h"

#include <QtCore/QFileInfo>

#include <algorithm>

namespace zav {

namespace {

bool isComment(const QByteArray &line)
{
    return line.isEmpty() || QByteArray("#;!/").contains(line[0]);
}

// The peaks' lines begin with a digit, the header's with a keyword.
bool isHeader(const QByteArray &line)
{
    return line.contains('=') && !parsePeakLine(line);
}

// The digits at the start of a value: `2` of `2+ and 3+`, `30069` of `30069-30071`.
int leadingInteger(const QByteArray &value, int otherwise)
{
    const auto end = std::find_if(value.begin(), value.end(), [](char c) { return c < '0' || c > '9'; });
    bool isNumber = false;
    const int number = value.left(end - value.begin()).toInt(&isNumber);
    return isNumber ? number : otherwise;
}

} // namespace

Result<std::unique_ptr<SpectrumFile>> MgfFile::open(const QString &path)
{
    auto file = std::make_unique<MgfFile>(path);
    if (Error error = file->m_lines.open(); error.hasError())
        return error;
    if (Error error = file->index(); error.hasError())
        return error;
    if (file->m_blocks.isEmpty())
        return Error(Failure, path + QStringLiteral(": holds no spectrum (no line BEGIN IONS)"));
    return std::unique_ptr<SpectrumFile>(std::move(file));
}

Error MgfFile::index()
{
    while (m_lines.next()) {
        if (m_lines.line() != "BEGIN IONS")
            continue; // comments, and parameters for a search of the whole file
        if (Error error = indexBlock(); error.hasError())
            return error;
    }
    return m_lines.error();
}

Error MgfFile::indexBlock()
{
    Block block;
    block.offset = m_lines.nextOffset();
    block.lineNumber = m_lines.number();
    while (m_lines.next()) {
        if (m_lines.line() == "END IONS") {
            m_blocks.append(block);
            return {};
        }
        if (m_lines.line() == "BEGIN IONS")
            return m_lines.errorHere(QStringLiteral("BEGIN IONS before the END IONS of the spectrum above"));
        if (isHeader(m_lines.line())) {
            if (Error error = readHeader(&block, m_lines.line()); error.hasError())
                return error;
        }
    }
    if (m_lines.error().hasError())
        return m_lines.error();
    return m_lines.errorHere(QStringLiteral("the file ends within a spectrum (no END IONS)"));
}

Error MgfFile::readHeader(Block *block, const QByteArray &line) const
{
    const qsizetype equals = line.indexOf('=');
    const QByteArray key = line.left(equals).trimmed().toUpper();
    const QByteArray value = line.mid(equals + 1).trimmed();
    if (key == "TITLE") {
        block->identity.name = QString::fromUtf8(value);
    } else if (key == "SCANS") {
        block->identity.scanNumber = leadingInteger(value, -1);
    } else if (key == "CHARGE") {
        block->precursorCharge = leadingInteger(value, 0);
    } else if (key == "MSLEVEL") {
        block->msLevel = leadingInteger(value, 2);
    } else if (key == "PEPMASS") {
        bool isNumber = false;
        block->precursorMz = value.simplified().split(' ').constFirst().toDouble(&isNumber);
        if (!isNumber)
            return m_lines.errorHere(QStringLiteral("PEPMASS is not a number"));
    }
    return {};
}

Result<ObservedSpectrum> MgfFile::spectrum(int index)
{
    const Block &block = m_blocks[index];
    if (Error error = m_lines.seek(block.offset, block.lineNumber); error.hasError())
        return error;
    ObservedSpectrum spectrum{block.identity.name, block.precursorMz, block.precursorCharge, {}};
    if (spectrum.title.isEmpty())
        spectrum.title = QFileInfo(m_lines.path()).fileName();
    while (m_lines.next() && m_lines.line() != "END IONS") {
        if (isComment(m_lines.line()) || isHeader(m_lines.line()))
            continue;
        const auto peak = parsePeakLine(m_lines.line());
        if (!peak)
            return m_lines.errorHere(QStringLiteral("expected m/z and intensity"));
        spectrum.peaks.append(*peak);
    }
    if (m_lines.error().hasError())
        return m_lines.error();
    tidyPeaks(&spectrum.peaks);
    return spectrum;
}

} // namespace zav
