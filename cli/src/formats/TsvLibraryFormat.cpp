// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"
#include "PeptideMasses.h"
#include "PeptideNotation.h"

#include <algorithm>

namespace zav {

namespace {

constexpr qsizetype NUMBERS_SIZE = 80;

bool isWritten(const FragmentPeak &peak)
{
    return peak.isotope == 0 && (peak.ionType == QLatin1Char('y') || peak.ionType == QLatin1Char('b'));
}

QByteArray cysteineTag(double mass)
{
    if (!isCysteineModified(mass))
        return {};
    const CysteineModification *known = knownCysteineModification(mass);
    return known ? "(UniMod:" + QByteArray::number(known->unimod) + ')' : '[' + signedMass(mass, 6) + ']';
}

// Unique: a decoy is never equal to a target, and a library has a precursor once.
QByteArray groupId(const LibraryEntry &entry)
{
    return (entry.isDecoy ? "DECOY_" : "") + entry.peptide.toUtf8() + '_' + QByteArray::number(entry.charge);
}

// The columns of the precursor, the same in each row of an entry, from ProteinId to TransitionGroupId.
QByteArray precursorColumns(const LibraryEntry &entry, const QByteArray &group)
{
    const QByteArray genes = joinedNames(entry.genes);
    TextBuffer text(NUMBERS_SIZE + 4 * entry.peptide.size() + 2 * genes.size());
    text.add('\t').add(joinedNames(entry.proteins)).add('\t').add(genes).add('\t').add(genes);
    text.add('\t').add(QStringView(entry.peptide));
    text.add('\t').add(taggedPeptide(entry, cysteineTag(entry.cysteineMass)));
    text.add('\t').addInteger(entry.charge).add(entry.isDecoy ? "\t1\t" : "\t0\t");
    return text.add(group).add('\t').take();
}

void addFragmentColumns(TextBuffer *text, const FragmentPeak &peak)
{
    text->add('\t').addInteger(peak.charge).add('\t').add(QStringView(&peak.ionType, 1));
    text->add('\t').addInteger(peak.ionNumber).add('\t');
    if (peak.neutralLoss.isEmpty())
        text->add("noloss");
    else
        text->add(QStringView(peak.neutralLoss).mid(1));
    text->add('\t');
    addIonNotation(text, peak);
    text->add('\n');
}

class TsvLibraryFormat : public LibraryFormat
{
public:
    QByteArray opening(const LibraryInfo &info) const override;
    QByteArray entry(const LibraryEntry &entry, qint64 index) const override;
};

QByteArray TsvLibraryFormat::opening(const LibraryInfo &) const
{
    return "PrecursorMz\tProductMz\tLibraryIntensity\tNormalizedRetentionTime\tProteinId\tGenes\tGeneName\t"
           "PeptideSequence\tModifiedPeptideSequence\tPrecursorCharge\tDecoy\tTransitionGroupId\tTransitionId\t"
           "FragmentCharge\tFragmentType\tFragmentSeriesNumber\tFragmentLossType\tAnnotation\n";
}

QByteArray TsvLibraryFormat::entry(const LibraryEntry &entry, qint64) const
{
    const auto count = std::count_if(entry.peaks.begin(), entry.peaks.end(), isWritten);
    if (count == 0)
        return {};
    const QByteArray group = groupId(entry);
    const QByteArray columns = precursorColumns(entry, group);
    TextBuffer text(count * (NUMBERS_SIZE + columns.size() + group.size()));
    for (const FragmentPeak &peak : entry.peaks) {
        if (!isWritten(peak))
            continue;
        text.addFixed(entry.precursorMz, 5).add('\t').addFixed(peak.mz, 5);
        text.add('\t').addFixed(peak.intensity, 6).add("\t0").add(columns);
        text.add(group).add('_');
        addIonNotation(&text, peak);
        addFragmentColumns(&text, peak);
    }
    return text.take();
}

} // namespace

const LibraryFormat &tsvLibraryFormat()
{
    static const TsvLibraryFormat FORMAT;
    return FORMAT;
}

} // namespace zav
