// SPDX-License-Identifier: Apache-2.0
#include "LibraryPeptidoforms.h"

#include "PeptideMasses.h"

#include <zav/PeptidoformSpectrumPredictor.h>

#include <QtCore/QLocale>

#include <algorithm>

namespace zav {

namespace {

constexpr qint64 READ_AT_ONCE = 4096;

QString grouped(qint64 count)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(count);
}

} // namespace

QString PeptidoformCounts::text() const
{
    return QStringLiteral("%1 peptides, %2 peptidoforms, %3 precursors")
        .arg(grouped(peptides), grouped(peptidoforms), grouped(precursors));
}

QList<LibraryPeptidoform> LibraryPeptidoforms::of(const LibraryPeptide &peptide) const
{
    QList<LibraryPeptidoform> all;
    if (peptide.isPlain) {
        for (const Peptidoform &peptidoform : m_maker.make(peptide.sequence, peptide.ends))
            all.append({peptidoform, !all.isEmpty()});
    }
    for (const QByteArray &text : peptide.named) {
        const Result<Peptidoform> named = Peptidoform::fromProForma(QString::fromLatin1(text));
        if (named.hasError())
            continue; // the list's reader lets none through
        const Peptidoform whole = m_maker.withFixed(named.value());
        const bool isThere = std::any_of(all.cbegin(), all.cend(),
                                         [&](const LibraryPeptidoform &other) { return other.peptidoform == whole; });
        if (!isThere)
            all.append({whole, whole != m_maker.withFixed(Peptidoform(whole.sequence()))});
    }
    return all;
}

Result<PeptidoformCounts> LibraryPeptidoforms::count(PeptideSet *peptides, qint64 first, qint64 end,
                                                     const std::function<bool()> &isInterrupted) const
{
    PeptidoformCounts counts;
    PeptideBlock block;
    for (qint64 begin = first; begin < end; begin += READ_AT_ONCE) {
        if (isInterrupted())
            return Error(Failure, QStringLiteral("interrupted"));
        if (Error error = peptides->read(begin, std::min(begin + READ_AT_ONCE, end), &block); error.hasError())
            return error;
        for (const LibraryPeptide &peptide : block)
            add(peptide, &counts);
    }
    return counts;
}

void LibraryPeptidoforms::add(const LibraryPeptide &peptide, PeptidoformCounts *counts) const
{
    const double plainMass = peptideMasses::neutralMass(QString::fromLatin1(peptide.sequence), 0.0);
    const QList<double> added = addedMasses(peptide);
    ++counts->peptides;
    counts->peptidoforms += added.size();
    if (peptide.isPlain && m_maker.count(peptide.sequence, peptide.ends) > PeptidoformMaker::MOST_OF_A_PEPTIDE)
        ++counts->cutPeptides;
    if (peptide.sequence.size() > PeptidoformSpectrumPredictor::LONGEST_PEPTIDE)
        return;
    for (const int charge : m_options.charges) {
        counts->precursors += std::count_if(added.begin(), added.end(), [&](double mass) {
            const double mz = (plainMass + mass) / charge + peptideMasses::PROTON;
            return mz >= m_options.lowestPrecursorMz && mz <= m_options.highestPrecursorMz;
        });
    }
}

/// What each peptidoform weighs more than the plain peptide, Da.
QList<double> LibraryPeptidoforms::addedMasses(const LibraryPeptide &peptide) const
{
    if (peptide.named.isEmpty())
        return m_maker.addedMasses(peptide.sequence, peptide.ends);
    QList<double> masses;
    for (const LibraryPeptidoform &one : of(peptide)) {
        double mass = 0.0;
        for (const PlacedModification &placed : one.peptidoform.modifications())
            mass += placed.modification.mass;
        masses.append(mass);
    }
    return masses;
}

} // namespace zav
