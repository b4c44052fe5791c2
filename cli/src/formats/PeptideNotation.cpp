// SPDX-License-Identifier: Apache-2.0
#include "PeptideNotation.h"

#include "PeptideMasses.h"

#include <QtCore/QSet>

#include <algorithm>

namespace zav {

namespace {

constexpr int UNIMOD_DECIMALS = 6;
constexpr double UNIMOD_DIGITS = 1e6;
constexpr int TIME_DECIMALS = 3;

// More names than this are looked up rather than compared one by one.
constexpr qsizetype FEW_NAMES = 32;

// The residues, with `addTag` called where each modification stands: before the first residue for the N-terminus,
// behind its residue, behind the last for the C-terminus.
template <typename AddTag>
void addTagged(TextBuffer *text, const Peptidoform &peptidoform, const AddTag &addTag)
{
    const QStringView residues(peptidoform.sequence());
    qsizetype written = 0;
    for (const PlacedModification &placed : peptidoform.modifications()) {
        const qsizetype end = std::min<qsizetype>(placed.position, residues.size());
        text->add(residues.mid(written, end - written));
        written = end;
        addTag(placed);
    }
    text->add(residues.mid(written));
}

// That of a reagent for cysteines may have been given with fewer digits.
double exactMass(const Modification &modification)
{
    if (modification.isMassOnly())
        return modification.mass;
    return exactCysteineMass(std::round(modification.mass * UNIMOD_DIGITS) / UNIMOD_DIGITS);
}

// `opening`, the accession and `closing`, or the mass in brackets.
void addTag(TextBuffer *text, const Modification &modification, const char *opening, char closing)
{
    if (modification.isMassOnly()) {
        text->add('[');
        addSignedMass(text, modification.mass, UNIMOD_DECIMALS);
        text->add(']');
    } else {
        text->add(opening).addInteger(modification.unimodAccession).add(closing);
    }
}

template <typename IsKnown>
void addNames(TextBuffer *text, const QList<LibraryProtein> &proteins, QByteArray LibraryProtein::*name,
              const IsKnown &isKnown)
{
    bool isFirst = true;
    for (qsizetype i = 0; i < proteins.size(); ++i) {
        const QByteArray &one = proteins[i].*name;
        if (one.isEmpty() || isKnown(i, one))
            continue;
        if (!isFirst)
            text->add(';');
        text->add(one);
        isFirst = false;
    }
}

} // namespace

void addIonNotation(TextBuffer *text, const FragmentPeak &peak)
{
    if (peak.ionType.isNull()) {
        text->add('?');
        return;
    }
    text->add(QStringView(&peak.ionType, 1)).addInteger(peak.ionNumber).add(QStringView(peak.neutralLoss));
    if (peak.isotope == 1)
        text->add("+i");
    else if (peak.isotope > 1)
        text->add('+').addInteger(peak.isotope).add('i');
    if (peak.charge > 1)
        text->add('^').addInteger(peak.charge);
}

void addIonWithError(TextBuffer *text, const FragmentPeak &peak)
{
    addIonNotation(text, peak);
    if (!peak.ionType.isNull())
        text->add("/0.0ppm");
}

void addProForma(TextBuffer *text, const Peptidoform &peptidoform)
{
    addTagged(text, peptidoform, [&](const PlacedModification &placed) {
        if (placed.position > peptidoform.length())
            text->add('-');
        addTag(text, placed.modification, "[UNIMOD:", ']');
        if (placed.position == 0)
            text->add('-');
    });
}

void addOpenSwathNotation(TextBuffer *text, const Peptidoform &peptidoform)
{
    addTagged(text, peptidoform, [&](const PlacedModification &placed) {
        if (placed.position > peptidoform.length())
            text->add('.');
        addTag(text, placed.modification, "(UniMod:", ')');
    });
}

QList<ModifiedResidue> modifiedResidues(const Peptidoform &peptidoform)
{
    QList<ModifiedResidue> residues;
    for (const PlacedModification &placed : peptidoform.modifications()) {
        const int position = std::clamp(placed.position, 1, std::max(1, peptidoform.length()));
        if (residues.isEmpty() || residues.last().position != position)
            residues.append({position, 0.0});
        residues.last().mass += exactMass(placed.modification);
    }
    return residues;
}

void addMassNotation(TextBuffer *text, const Peptidoform &peptidoform, const QList<ModifiedResidue> &residues,
                     int decimals)
{
    const QStringView sequence(peptidoform.sequence());
    qsizetype written = 0;
    for (const ModifiedResidue &residue : residues) {
        text->add(sequence.mid(written, residue.position - written)).add('[');
        written = residue.position;
        addSignedMass(text, residue.mass, decimals);
        text->add(']');
    }
    text->add(sequence.mid(written));
}

void addPrecursorName(TextBuffer *text, const LibraryEntry &entry)
{
    if (entry.isDecoy)
        text->add("DECOY_");
    if (entry.isVariant)
        addOpenSwathNotation(text, entry.peptidoform);
    else
        text->add(QStringView(entry.peptidoform.sequence()));
    text->add('_').addInteger(entry.charge);
}

void addSpectrumName(TextBuffer *text, const LibraryEntry &entry)
{
    if (entry.isDecoy)
        text->add("DECOY_");
    if (entry.isVariant)
        addProForma(text, entry.peptidoform);
    else
        text->add(QStringView(entry.peptidoform.sequence()));
    text->add('/').addInteger(entry.charge);
}

bool isTransition(const FragmentPeak &peak)
{
    return peak.isotope == 0 && (peak.ionType == QLatin1Char('y') || peak.ionType == QLatin1Char('b'));
}

double neutralMass(const LibraryEntry &entry)
{
    return entry.charge * (entry.precursorMz - peptideMasses::PROTON);
}

void addSignedMass(TextBuffer *text, double mass, int decimals)
{
    if (mass > 0)
        text->add('+');
    text->addFixed(mass, decimals);
}

void addJoinedNames(TextBuffer *text, const QList<LibraryProtein> &proteins, QByteArray LibraryProtein::*name)
{
    if (proteins.size() > FEW_NAMES) {
        QSet<QByteArray> known;
        addNames(text, proteins, name, [&](qsizetype, const QByteArray &one) {
            const auto before = known.size();
            known.insert(one);
            return known.size() == before;
        });
        return;
    }
    addNames(text, proteins, name, [&](qsizetype i, const QByteArray &one) {
        return std::any_of(proteins.begin(), proteins.begin() + i,
                           [&](const LibraryProtein &earlier) { return earlier.*name == one; });
    });
}

void addRetentionTime(TextBuffer *text, double time)
{
    text->addFixed(time, TIME_DECIMALS);
}

} // namespace zav
