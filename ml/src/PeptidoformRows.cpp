// SPDX-License-Identifier: Apache-2.0
#include "PeptidoformRows.h"

#include "PeptideVocabulary.h"

#include <algorithm>
#include <array>

namespace zav::peptidoformRows {

namespace {

constexpr int FIRST_RESIDUE_COLUMN = 1;  // of the composition of a residue's modification
constexpr int FIRST_TERMINUS_COLUMN = 7; // of that of a terminal modification

// Unimod's accessions.
constexpr int PYROGLUTAMATE_OF_GLUTAMATE = 27;
constexpr int PYROGLUTAMATE_OF_GLUTAMINE = 28;

using LetterNumbers = std::array<float, 128>;

LetterNumbers tabulateLetters()
{
    LetterNumbers numbers{};
    for (auto letter = peptideVocabulary::aminoAcidIndex.cbegin(); letter != peptideVocabulary::aminoAcidIndex.cend();
         ++letter)
        numbers[letter.key().unicode()] = static_cast<float>(letter.value());
    return numbers;
}

/// 0 for any character that is not one of the 20 residues.
float numberOf(QChar residue)
{
    // Built on first use: the vocabulary's table has to exist by then.
    static const LetterNumbers numbers = tabulateLetters();
    return residue.unicode() < numbers.size() ? numbers[residue.unicode()] : 0.0F;
}

void addComposition(const ElementalComposition &change, float *columns)
{
    const std::array<int, 6> counts{change.carbon + change.carbon13,
                                    change.hydrogen + change.deuterium,
                                    change.nitrogen + change.nitrogen15,
                                    change.oxygen + change.oxygen18,
                                    change.phosphorus,
                                    change.sulfur};
    std::transform(counts.begin(), counts.end(), columns, columns,
                   [](int count, float before) { return before + static_cast<float>(count); });
}

} // namespace

int networkPosition(const PlacedModification &placed)
{
    const int accession = placed.modification.unimodAccession;
    const bool isRing = accession == PYROGLUTAMATE_OF_GLUTAMATE || accession == PYROGLUTAMATE_OF_GLUTAMINE;
    return placed.position == 1 && isRing ? 0 : placed.position;
}

QString problemOf(const Peptidoform &peptidoform)
{
    const int length = peptidoform.length();
    if (length < FEWEST_RESIDUES || length > ROW_COUNT)
        return QStringLiteral("has %1 residues, not %2 to %3")
            .arg(QString::number(length), QString::number(FEWEST_RESIDUES), QString::number(ROW_COUNT));
    for (const QChar residue : peptidoform.sequence()) {
        if (numberOf(residue) == 0.0F)
            return QStringLiteral("has the residue %1, which is not one of the 20 standard ones").arg(residue);
    }
    for (const PlacedModification &placed : peptidoform.modifications()) {
        if (placed.position < 0 || placed.position > length + 1)
            return QStringLiteral("has a modification at position %1, not 0 to %2")
                .arg(placed.position)
                .arg(length + 1);
    }
    return {};
}

QString unreadableRemark(const Peptidoform &peptidoform)
{
    const QString name = peptidoform.length() == 0 ? QStringLiteral("An empty peptidoform") : peptidoform.toProForma();
    return QStringLiteral("%1 %2: not predicted").arg(name, problemOf(peptidoform));
}

void write(const Peptidoform &peptidoform, float *rows)
{
    float *row = rows;
    for (const QChar residue : peptidoform.sequence()) {
        *row = numberOf(residue);
        row += COLUMN_COUNT;
    }
    const int length = peptidoform.length();
    for (const PlacedModification &placed : peptidoform.modifications()) {
        const int position = networkPosition(placed);
        const bool isTerminal = position == 0 || position > length;
        const int residue = std::clamp(position, 1, length);
        addComposition(placed.modification.composition,
                       rows + std::ptrdiff_t{residue - 1} * COLUMN_COUNT +
                           (isTerminal ? FIRST_TERMINUS_COLUMN : FIRST_RESIDUE_COLUMN));
    }
}

} // namespace zav::peptidoformRows
