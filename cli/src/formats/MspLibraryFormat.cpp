// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"
#include "PeptideMasses.h"
#include "PeptideNotation.h"

namespace zav {

namespace {

constexpr qsizetype ENTRY_SIZE = 300;
constexpr qsizetype PEAK_SIZE = 44;

void addModifications(TextBuffer *text, const LibraryEntry &entry)
{
    const qsizetype count = isCysteineModified(entry.cysteineMass) ? entry.peptide.count(QLatin1Char('C')) : 0;
    text->add(" Mods=").addInteger(count);
    if (count == 0)
        return;
    const CysteineModification *known = knownCysteineModification(entry.cysteineMass);
    const QByteArray name = known ? QByteArray(known->name) : signedMass(entry.cysteineMass, 5);
    for (qsizetype i = 0; i < entry.peptide.size(); ++i) {
        if (entry.peptide[i] == QLatin1Char('C'))
            text->add('/').addInteger(i).add(",C,").add(name);
    }
}

// The comment's fields end at a blank, unless they are quoted.
void addNames(TextBuffer *text, QByteArrayView key, const QStringList &names)
{
    const QByteArray joined = joinedNames(names);
    if (joined.contains(' '))
        text->add(key).add('"').add(joined).add('"');
    else if (!joined.isEmpty())
        text->add(key).add(joined);
}

void addComment(TextBuffer *text, const LibraryEntry &entry)
{
    text->add("\nComment: Parent=").addFixed(entry.precursorMz, 5);
    addModifications(text, entry);
    addNames(text, " Protein=", entry.proteins);
    addNames(text, " Gene=", entry.genes);
    if (entry.isDecoy)
        text->add(" Remark=DECOY");
}

class MspLibraryFormat : public LibraryFormat
{
public:
    QByteArray entry(const LibraryEntry &entry, qint64 index) const override;
};

QByteArray MspLibraryFormat::entry(const LibraryEntry &entry, qint64) const
{
    if (entry.peaks.isEmpty())
        return {};
    TextBuffer text(ENTRY_SIZE + PEAK_SIZE * entry.peaks.size());
    text.add("Name: ").add(QStringView(entry.peptide)).add('/').addInteger(entry.charge);
    text.add("\nMW: ").addFixed(peptideMasses::neutralMass(entry.peptide, entry.cysteineMass), 5);
    text.add("\nPrecursorMZ: ").addFixed(entry.precursorMz, 5);
    text.add("\nCharge: ").addInteger(entry.charge);
    addComment(&text, entry);
    text.add("\nNum peaks: ").addInteger(entry.peaks.size()).add('\n');
    for (const FragmentPeak &peak : entry.peaks) {
        text.addFixed(peak.mz, 5).add('\t').addFixed(peak.intensity * 10000, 1).add("\t\"");
        addIonWithError(&text, peak);
        text.add("\"\n");
    }
    return text.add('\n').take();
}

} // namespace

const LibraryFormat &mspLibraryFormat()
{
    static const MspLibraryFormat FORMAT;
    return FORMAT;
}

} // namespace zav
