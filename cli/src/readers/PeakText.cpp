// SPDX-License-Identifier: Apache-2.0
#include "PeakText.h"

#include "LineReader.h"
#include "PrintableText.h"

#include <QtCore/QFileInfo>

#include <algorithm>
#include <optional>

namespace zav {

namespace {

// No peak list has lines of this length; a binary file may, and is not to be read into memory.
constexpr qsizetype MAX_LINE_BYTES = 1 << 16;

// The first two fields of a line of fields that white space separates; nothing when they are not there or are no peak.
std::optional<QPointF> parsePeakLine(QByteArrayView line)
{
    const QList<QByteArray> fields = line.toByteArray().simplified().split(' ');
    if (fields.size() < 2)
        return std::nullopt;
    bool isMz = false;
    bool isIntensity = false;
    const QPointF peak(fields[0].toDouble(&isMz), fields[1].toDouble(&isIntensity));
    return isMz && isIntensity && isPeak(peak) ? std::optional(peak) : std::nullopt;
}

bool isComment(QByteArrayView line)
{
    return line.isEmpty() || QByteArrayView("#;!/").contains(line[0]);
}

// The peaks' lines begin with a digit, the header's with a keyword.
bool isHeader(QByteArrayView line)
{
    return line.contains('=') && !parsePeakLine(line);
}

// The digits at the start of a value: `2` of `2+ and 3+`, `30069` of `30069-30071`.
int leadingInteger(QByteArrayView value, int otherwise)
{
    const auto end = std::find_if(value.begin(), value.end(), [](char c) { return c < '0' || c > '9'; });
    bool isNumber = false;
    const int number = value.first(end - value.begin()).toInt(&isNumber);
    return isNumber ? number : otherwise;
}

class MgfFile : public SpectrumFile
{
public:
    MgfFile(const QString &path, std::unique_ptr<LineReader> lines) : m_path(path), m_lines(std::move(lines)) {}

    Error index();

    int spectrumCount() const override { return static_cast<int>(m_blocks.size()); }
    SpectrumIdentity identity(int index) const override { return m_blocks[index].identity; }
    Result<int> msLevel(int index) override { return m_blocks[index].msLevel; }
    Result<SpectrumOutcome> spectrum(int index) override;

private:
    struct Block
    {
        SpectrumIdentity identity;
        double precursorMz = 0;
        int precursorCharge = 0;
        int msLevel = 2;
        LineReader::Place place; // behind BEGIN IONS
    };

    Error indexBlock();
    Error readHeader(Block *block, QByteArrayView line) const;
    QByteArrayView line() const { return m_lines->line().trimmed(); }

    QString m_path;
    std::unique_ptr<LineReader> m_lines;
    QList<Block> m_blocks;
};

Error MgfFile::index()
{
    while (m_lines->next()) {
        if (line() != "BEGIN IONS")
            continue; // comments, and parameters for a search of the whole file
        if (Error error = indexBlock(); error.hasError())
            return error;
    }
    return m_lines->error();
}

Error MgfFile::indexBlock()
{
    Block block;
    block.place = m_lines->place();
    while (m_lines->next()) {
        if (line() == "END IONS") {
            m_blocks.append(block);
            return {};
        }
        if (line() == "BEGIN IONS")
            return m_lines->errorHere(QStringLiteral("BEGIN IONS before the END IONS of the spectrum above"));
        if (isHeader(line())) {
            if (Error error = readHeader(&block, line()); error.hasError())
                return error;
        }
    }
    if (m_lines->error().hasError())
        return m_lines->error();
    return m_lines->errorHere(QStringLiteral("the file ends within a spectrum (no END IONS)"));
}

Error MgfFile::readHeader(Block *block, QByteArrayView line) const
{
    const qsizetype equals = line.indexOf('=');
    const QByteArray key = line.first(equals).trimmed().toByteArray().toUpper();
    const QByteArray value = line.sliced(equals + 1).trimmed().toByteArray();
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
            return m_lines->errorHere(QStringLiteral("PEPMASS is not a number"));
    }
    return {};
}

Result<SpectrumOutcome> MgfFile::spectrum(int index)
{
    const Block &block = m_blocks[index];
    if (Error error = m_lines->seek(block.place); error.hasError())
        return error;
    ObservedSpectrum spectrum{block.identity.name, block.precursorMz, block.precursorCharge, {}};
    if (spectrum.title.isEmpty())
        spectrum.title = QFileInfo(m_path).fileName();
    while (m_lines->next()) {
        if (line() == "END IONS") {
            tidyPeaks(&spectrum.peaks);
            return SpectrumOutcome{spectrum, {}};
        }
        if (isComment(line()) || isHeader(line()))
            continue;
        const auto peak = parsePeakLine(line());
        if (!peak)
            return SpectrumOutcome{{}, m_lines->errorHere(QStringLiteral("expected m/z and intensity"))};
        spectrum.peaks.append(*peak);
    }
    return m_lines->error().hasError() ? m_lines->error() : hasChanged(inputName(m_path));
}

class PeakTableFile : public SpectrumFile
{
public:
    explicit PeakTableFile(ObservedSpectrum spectrum) : m_spectrum(std::move(spectrum)) {}

    int spectrumCount() const override { return 1; }
    SpectrumIdentity identity(int) const override { return {m_spectrum.title, -1}; }
    Result<int> msLevel(int) override { return 2; }
    Result<SpectrumOutcome> spectrum(int) override { return SpectrumOutcome{m_spectrum, {}}; }

private:
    ObservedSpectrum m_spectrum;
};

// A heading begins with a name; a number that cannot be read (`100,5`) is a mistake rather than a heading.
bool isHeading(QByteArrayView line)
{
    return !QByteArrayView("+-.0123456789").contains(line.front());
}

Error readPeaks(LineReader *lines, QList<QPointF> *peaks)
{
    for (bool mayBeHeading = true; lines->nextContent(); mayBeHeading = false) {
        if (const auto peak = parsePeakLine(lines->line()))
            peaks->append(*peak);
        else if (!mayBeHeading || !isHeading(lines->line().trimmed()))
            return lines->errorHere(QStringLiteral("expected m/z and intensity"));
    }
    return lines->error();
}

} // namespace

Result<std::unique_ptr<SpectrumFile>> openMgfFile(const QString &path, SpectraToRead wanted)
{
    Result<std::unique_ptr<ByteStream>> bytes = openSpectrumBytes(path, wanted);
    if (bytes.hasError())
        return bytes.error();
    auto lines = std::make_unique<LineReader>(std::move(bytes).value(), MAX_LINE_BYTES);
    auto file = std::make_unique<MgfFile>(path, std::move(lines));
    if (Error error = file->index(); error.hasError())
        return error;
    if (file->spectrumCount() == 0)
        return cannotRead(inputName(path), QStringLiteral("it holds no spectrum (no line BEGIN IONS)"));
    return std::unique_ptr<SpectrumFile>(std::move(file));
}

Result<std::unique_ptr<SpectrumFile>> readPeakTable(const QString &path)
{
    const Result<std::unique_ptr<LineReader>> lines = LineReader::open(path, MAX_LINE_BYTES);
    if (lines.hasError())
        return lines.error();
    ObservedSpectrum spectrum;
    spectrum.title = QFileInfo(path).fileName();
    if (Error error = readPeaks(lines.value().get(), &spectrum.peaks); error.hasError())
        return error;
    if (spectrum.peaks.isEmpty())
        return cannotRead(inputName(path), QStringLiteral("it holds no peaks"));
    tidyPeaks(&spectrum.peaks);
    return std::unique_ptr<SpectrumFile>(std::make_unique<PeakTableFile>(std::move(spectrum)));
}

} // namespace zav
