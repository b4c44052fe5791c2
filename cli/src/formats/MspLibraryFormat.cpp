// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"
#include "PeptideNotation.h"

#include <algorithm>

namespace zav {

namespace {

// Positions count from 0; the modification of a terminus stands at the residue there.
void addModifications(TextBuffer *text, const Peptidoform &peptidoform)
{
    text->add(" Mods=").addInteger(peptidoform.modifications().size());
    for (const PlacedModification &placed : peptidoform.modifications()) {
        const int position = std::clamp(placed.position - 1, 0, peptidoform.length() - 1);
        text->add('/').addInteger(position).add(',');
        text->add(QStringView(peptidoform.sequence()).mid(position, 1)).add(',');
        if (placed.modification.isMassOnly())
            addSignedMass(text, placed.modification.mass, 5);
        else
            text->add(QStringView(placed.modification.name));
    }
}

// The comment's fields end at a blank, unless they are quoted.
void addNames(TextBuffer *text, QByteArrayView key, const QList<LibraryProtein> &proteins,
              QByteArray LibraryProtein::*name)
{
    const auto isNamed = [name](const LibraryProtein &protein) { return !(protein.*name).isEmpty(); };
    const auto hasBlank = [name](const LibraryProtein &protein) { return (protein.*name).contains(' '); };
    if (std::none_of(proteins.begin(), proteins.end(), isNamed))
        return;
    const QByteArrayView quote(std::any_of(proteins.begin(), proteins.end(), hasBlank) ? "\"" : "");
    text->add(key).add(quote);
    addJoinedNames(text, proteins, name);
    text->add(quote);
}

void addTime(TextBuffer *text, const LibraryEntry &entry)
{
    if (!entry.hasRetentionTime())
        return;
    const bool isIrt = entry.timeScale == TimeScale::Irt;
    text->add(isIrt ? " iRT=" : " RetentionTime=");
    addRetentionTime(text, isIrt ? entry.retentionTime : entry.secondsOfTime());
}

void addComment(TextBuffer *text, const LibraryEntry &entry)
{
    text->add("\nComment: Parent=").addFixed(entry.precursorMz, 5);
    addModifications(text, entry.peptidoform);
    addNames(text, " Protein=", entry.proteins, &LibraryProtein::accession);
    addNames(text, " Gene=", entry.proteins, &LibraryProtein::gene);
    addTime(text, entry);
    if (entry.isDecoy)
        text->add(" Remark=DECOY");
}

class MspLibraryFormat : public LibraryFormat
{
public:
    void addEntry(const LibraryEntry &entry, qint64 index, TextBuffer *text) const override;
};

void MspLibraryFormat::addEntry(const LibraryEntry &entry, qint64, TextBuffer *text) const
{
    if (entry.peaks.isEmpty())
        return;
    text->add("Name: ").add(QStringView(entry.peptidoform.sequence())).add('/').addInteger(entry.charge);
    text->add("\nMW: ").addFixed(neutralMass(entry), 5);
    text->add("\nPrecursorMZ: ").addFixed(entry.precursorMz, 5);
    text->add("\nCharge: ").addInteger(entry.charge);
    addComment(text, entry);
    text->add("\nNum peaks: ").addInteger(entry.peaks.size()).add('\n');
    for (const FragmentPeak &peak : entry.peaks) {
        text->addFixed(peak.mz, 5).add('\t').addFixed(peak.intensity * 10000, 1).add("\t\"");
        addIonWithError(text, peak);
        text->add("\"\n");
    }
    text->add('\n');
}

} // namespace

const LibraryFormat &mspLibraryFormat()
{
    static const MspLibraryFormat FORMAT;
    return FORMAT;
}

} // namespace zav
