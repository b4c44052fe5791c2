// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"
#include "PeptideMasses.h"
#include "PeptideNotation.h"

namespace zav {

namespace {

constexpr qsizetype ENTRY_SIZE = 800;
constexpr qsizetype PEAK_SIZE = 44;
constexpr char FIRST_LINE[] = "<Spectrum=";

QByteArray cysteineTag(double mass)
{
    if (!isCysteineModified(mass))
        return {};
    const CysteineModification *known = knownCysteineModification(mass);
    return '[' + (known ? "UNIMOD:" + QByteArray::number(known->unimod) : signedMass(mass, 6)) + ']';
}

void addSpectrum(TextBuffer *text, const LibraryEntry &entry)
{
    text->add("MS:1003061|library spectrum name=");
    text->add(entry.isDecoy ? "DECOY_" : "").add(QStringView(entry.peptide)).add('/').addInteger(entry.charge);
    text->add("\nMS:1003072|spectrum origin type=");
    text->add(entry.isDecoy ? "MS:1003195|unnatural peptidoform decoy spectrum" : "MS:1003074|predicted spectrum");
    text->add("\nMS:1003065|spectrum aggregation type=MS:1003074|predicted spectrum");
    text->add("\nMS:1000041|charge state=").addInteger(entry.charge);
    text->add("\nMS:1003208|experimental precursor monoisotopic m/z=").addFixed(entry.precursorMz, 5);
    text->add("\nMS:1003059|number of peaks=").addInteger(entry.peaks.size()).add('\n');
}

void addProteinAttribute(TextBuffer *text, qsizetype protein, QByteArrayView term, const QStringList &values)
{
    const QString value = values.value(protein);
    if (!value.isEmpty())
        text->add('[').addInteger(protein + 1).add(']').add(term).add(QStringView(value)).add('\n');
}

void addAnalyte(TextBuffer *text, const LibraryEntry &entry)
{
    text->add("<Analyte=1>\nMS:1003270|proforma peptidoform ion notation=");
    text->add(taggedPeptide(entry, cysteineTag(entry.cysteineMass))).add('/').addInteger(entry.charge);
    text->add("\nMS:1000888|stripped peptide sequence=").add(QStringView(entry.peptide));
    text->add("\nMS:1001117|theoretical neutral mass=");
    text->addFixed(peptideMasses::neutralMass(entry.peptide, entry.cysteineMass), 5);
    text->add("\nMS:1003053|theoretical monoisotopic m/z=").addFixed(entry.precursorMz, 5).add('\n');
    for (qsizetype i = 0; i < entry.proteins.size(); ++i) {
        addProteinAttribute(text, i, "MS:1000885|protein accession=", entry.proteins);
        addProteinAttribute(text, i, "MS:1000886|protein name=", entry.proteinNames);
        addProteinAttribute(text, i, "MS:1000934|gene name=", entry.genes);
    }
}

class MzSpecLibFormat : public LibraryFormat
{
public:
    QByteArray opening(const LibraryInfo &info) const override;
    QByteArray entry(const LibraryEntry &entry, qint64 index) const override;
    bool numbersEntries() const override { return true; }
    bool isFirstLine(QByteArrayView line) const override { return line.startsWith(FIRST_LINE); }
    QByteArray firstLine(qint64 index) const override { return FIRST_LINE + QByteArray::number(index + 1) + ">\n"; }
};

QByteArray MzSpecLibFormat::opening(const LibraryInfo &info) const
{
    return "<mzSpecLib>\nMS:1003186|library format version=1.0\nMS:1003188|library name=" + info.name.toUtf8() +
           "\nMS:1003189|library description=Fragment spectra predicted by zav " + info.version.toUtf8() + "\n\n";
}

QByteArray MzSpecLibFormat::entry(const LibraryEntry &entry, qint64 index) const
{
    if (entry.peaks.isEmpty())
        return {};
    TextBuffer text(ENTRY_SIZE + PEAK_SIZE * entry.peaks.size());
    text.add(firstLine(index));
    addSpectrum(&text, entry);
    addAnalyte(&text, entry);
    text.add("<Peaks>\n");
    for (const FragmentPeak &peak : entry.peaks) {
        text.addFixed(peak.mz, 5).add('\t').addFixed(peak.intensity, 6).add('\t');
        addIonWithError(&text, peak);
        text.add('\n');
    }
    return text.add('\n').take();
}

} // namespace

const LibraryFormat &mzSpecLibFormat()
{
    static const MzSpecLibFormat FORMAT;
    return FORMAT;
}

} // namespace zav
