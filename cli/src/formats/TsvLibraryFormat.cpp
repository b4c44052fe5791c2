// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"
#include "PeptideNotation.h"

namespace zav {

namespace {

// A part of a text that is written once more.
struct Piece
{
    qsizetype begin = 0;
    qsizetype size = 0;
};

template <typename Add>
Piece addedBy(TextBuffer *text, const Add &add)
{
    const qsizetype begin = text->size();
    add();
    return {begin, text->size() - begin};
}

void repeat(TextBuffer *text, const Piece &piece)
{
    text->repeat(piece.begin, piece.size);
}

// The columns behind the numbers, from NormalizedRetentionTime on, up to the precursor's name in TransitionId.
void addPrecursorColumns(TextBuffer *text, const LibraryEntry &entry)
{
    text->add('\t');
    if (entry.hasRetentionTime())
        addRetentionTime(text, entry.retentionTime);
    else
        text->add('0');
    text->add('\t');
    addJoinedNames(text, entry.proteins, &LibraryProtein::accession);
    text->add('\t');
    const Piece genes = addedBy(text, [&] { addJoinedNames(text, entry.proteins, &LibraryProtein::gene); });
    text->add('\t');
    repeat(text, genes);
    text->add('\t').add(QStringView(entry.peptidoform.sequence())).add('\t');
    addOpenSwathNotation(text, entry.peptidoform);
    text->add('\t').addInteger(entry.charge).add(entry.isDecoy ? "\t1\t" : "\t0\t");
    const Piece name = addedBy(text, [&] { addPrecursorName(text, entry); });
    text->add('\t');
    repeat(text, name);
}

// The rest of TransitionId and the columns behind it.
void addFragmentColumns(TextBuffer *text, const FragmentPeak &peak)
{
    text->add('_');
    const Piece ion = addedBy(text, [&] { addIonNotation(text, peak); });
    text->add('\t').addInteger(peak.charge).add('\t').add(QStringView(&peak.ionType, 1));
    text->add('\t').addInteger(peak.ionNumber).add('\t');
    if (peak.neutralLoss.isEmpty())
        text->add("noloss");
    else
        text->add(QStringView(peak.neutralLoss).mid(1));
    text->add('\t');
    repeat(text, ion);
    text->add('\n');
}

class TsvLibraryFormat : public LibraryFormat
{
public:
    QByteArray opening(const LibraryInfo &info) const override;
    void addEntry(const LibraryEntry &entry, qint64 index, TextBuffer *text) const override;
};

QByteArray TsvLibraryFormat::opening(const LibraryInfo &) const
{
    return "PrecursorMz\tProductMz\tLibraryIntensity\tNormalizedRetentionTime\tProteinId\tGenes\tGeneName\t"
           "PeptideSequence\tModifiedPeptideSequence\tPrecursorCharge\tDecoy\tTransitionGroupId\tTransitionId\t"
           "FragmentCharge\tFragmentType\tFragmentSeriesNumber\tFragmentLossType\tAnnotation\n";
}

// What is the same in each row is made for the first one and repeated from there.
void TsvLibraryFormat::addEntry(const LibraryEntry &entry, qint64, TextBuffer *text) const
{
    Piece mz;
    Piece columns;
    for (const FragmentPeak &peak : entry.peaks) {
        if (!isTransition(peak))
            continue;
        const bool isFirst = mz.size == 0;
        if (isFirst)
            mz = addedBy(text, [&] { text->addFixed(entry.precursorMz, 5).add('\t'); });
        else
            repeat(text, mz);
        text->addFixed(peak.mz, 5).add('\t').addFixed(peak.intensity, 6);
        if (isFirst)
            columns = addedBy(text, [&] { addPrecursorColumns(text, entry); });
        else
            repeat(text, columns);
        addFragmentColumns(text, peak);
    }
}

} // namespace

const LibraryFormat &tsvLibraryFormat()
{
    static const TsvLibraryFormat FORMAT;
    return FORMAT;
}

} // namespace zav
