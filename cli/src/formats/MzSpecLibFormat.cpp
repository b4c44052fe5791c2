// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"
#include "PeptideNotation.h"

namespace zav {

namespace {

constexpr char FIRST_LINE[] = "<Spectrum=";

// The vocabulary wants a unit of any retention time. An iRT has none and counts as minutes.
void addTime(TextBuffer *text, const LibraryEntry &entry)
{
    if (!entry.hasRetentionTime())
        return;
    const bool isIrt = entry.timeScale == TimeScale::Irt;
    text->add(isIrt ? "[1]MS:1000896|normalized retention time=" : "[1]MS:1000897|predicted retention time=");
    addRetentionTime(text, entry.retentionTime);
    text->add("\n[1]UO:0000000|unit=UO:0000031|minute\n");
}

void addSpectrum(TextBuffer *text, const LibraryEntry &entry)
{
    text->add("MS:1003061|library spectrum name=");
    addSpectrumName(text, entry);
    text->add("\nMS:1003072|spectrum origin type=");
    text->add(entry.isDecoy ? "MS:1003195|unnatural peptidoform decoy spectrum" : "MS:1003074|predicted spectrum");
    text->add("\nMS:1003065|spectrum aggregation type=MS:1003074|predicted spectrum");
    text->add("\nMS:1000041|charge state=").addInteger(entry.charge);
    text->add("\nMS:1003208|experimental precursor monoisotopic m/z=").addFixed(entry.precursorMz, 5).add('\n');
    addTime(text, entry);
    text->add("MS:1003059|number of peaks=").addInteger(entry.peaks.size()).add('\n');
}

void addProteinAttribute(TextBuffer *text, qsizetype protein, QByteArrayView term, const QByteArray &value)
{
    if (!value.isEmpty())
        text->add('[').addInteger(protein + 1).add(']').add(term).add(value).add('\n');
}

void addAnalyte(TextBuffer *text, const LibraryEntry &entry)
{
    text->add("<Analyte=1>\nMS:1003270|proforma peptidoform ion notation=");
    addProForma(text, entry.peptidoform);
    text->add('/').addInteger(entry.charge);
    text->add("\nMS:1000888|stripped peptide sequence=").add(QStringView(entry.peptidoform.sequence()));
    text->add("\nMS:1001117|theoretical neutral mass=").addFixed(neutralMass(entry), 5);
    text->add("\nMS:1003053|theoretical monoisotopic m/z=").addFixed(entry.precursorMz, 5).add('\n');
    for (qsizetype i = 0; i < entry.proteins.size(); ++i) {
        addProteinAttribute(text, i, "MS:1000885|protein accession=", entry.proteins[i].accession);
        addProteinAttribute(text, i, "MS:1000886|protein name=", entry.proteins[i].name);
        addProteinAttribute(text, i, "MS:1000934|gene name=", entry.proteins[i].gene);
    }
}

class MzSpecLibFormat : public LibraryFormat
{
public:
    QByteArray opening(const LibraryInfo &info) const override;
    void addEntry(const LibraryEntry &entry, qint64 index, TextBuffer *text) const override;
    bool numbersEntries() const override { return true; }
    bool isFirstLine(QByteArrayView line) const override { return line.startsWith(FIRST_LINE); }
    QByteArray firstLine(qint64 index) const override { return FIRST_LINE + QByteArray::number(index + 1) + ">\n"; }
};

QByteArray MzSpecLibFormat::opening(const LibraryInfo &info) const
{
    return "<mzSpecLib>\nMS:1003186|library format version=1.0\nMS:1003188|library name=" + info.name.toUtf8() +
           "\nMS:1003189|library description=Fragment spectra predicted by zav " + info.version.toUtf8() + "\n\n";
}

void MzSpecLibFormat::addEntry(const LibraryEntry &entry, qint64 index, TextBuffer *text) const
{
    if (entry.peaks.isEmpty())
        return;
    text->add(firstLine(index));
    addSpectrum(text, entry);
    addAnalyte(text, entry);
    text->add("<Peaks>\n");
    for (const FragmentPeak &peak : entry.peaks) {
        text->addFixed(peak.mz, 5).add('\t').addFixed(peak.intensity, 6).add('\t');
        addIonWithError(text, peak);
        text->add('\n');
    }
    text->add('\n');
}

} // namespace

const LibraryFormat &mzSpecLibFormat()
{
    static const MzSpecLibFormat FORMAT;
    return FORMAT;
}

} // namespace zav
