// SPDX-License-Identifier: Apache-2.0
#include "DecoyMaker.h"

#include "SplitMix64.h"

#include <zav/Peptidoform.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace zav {

namespace {

// FNV-1a with 64 bits (Fowler, Noll, Vo).
quint64 hashOf(QByteArrayView bytes)
{
    quint64 hash = 0xCBF29CE484222325;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    return hash;
}

// Seed, attempt and sequence each go through the generator, so that neighbouring ones share nothing.
SplitMix64 generatorOf(quint64 seed, int attempt, QByteArrayView target)
{
    const quint64 ofSeed = SplitMix64(seed).next();
    const quint64 ofAttempt = SplitMix64(ofSeed + static_cast<quint64>(attempt)).next();
    return SplitMix64(ofAttempt ^ hashOf(target));
}

// The algorithm of Fisher and Yates, from the last place down; the standard library's differs between platforms.
template <typename T>
void shuffle(T *items, qsizetype count, SplitMix64 *generator)
{
    for (qsizetype i = count - 1; i > 0; --i)
        std::swap(items[i], items[generator->below(static_cast<quint64>(i) + 1)]);
}

bool isTooSimilar(QByteArrayView decoy, QByteArrayView target)
{
    qsizetype same = 0;
    for (qsizetype i = 0; i < target.size(); ++i)
        same += decoy[i] == target[i] ? 1 : 0;
    return 10 * same > 7 * target.size();
}

} // namespace

QByteArray DecoyMaker::make(QByteArrayView target, int attempt) const
{
    QByteArray decoy = target.toByteArray();
    rearrange(decoy.data(), target, attempt);
    return decoy;
}

/// Puts as many things as the target has residues in the decoy's order.
template <typename T>
void DecoyMaker::rearrange(T *items, QByteArrayView target, int attempt) const
{
    if (target.size() < 2)
        return;
    T *movable = items + (m_fixedEnd == FirstResidue ? 1 : 0);
    const qsizetype count = target.size() - 1;
    if (m_options.kind == DecoyKind::Shuffled) {
        SplitMix64 generator = generatorOf(m_options.seed, attempt, target);
        shuffle(movable, count, &generator);
    } else {
        std::reverse(movable, movable + count);
    }
}

QByteArray DecoyMaker::makeNamed(const QByteArray &target, int attempt) const
{
    const Result<Peptidoform> peptidoform = Peptidoform::fromProForma(QString::fromLatin1(target));
    if (peptidoform.hasError())
        return {}; // the list's reader lets none through
    const QByteArray sequence = peptidoform.value().sequence().toLatin1();
    QList<int> positions(sequence.size()); // of the target's residues, in the decoy's order
    std::iota(positions.begin(), positions.end(), 1);
    rearrange(positions.data(), sequence, attempt);

    QList<PlacedModification> placed = peptidoform.value().modifications();
    for (PlacedModification &modification : placed) {
        const qsizetype moved = positions.indexOf(modification.position);
        if (moved >= 0) // a terminus stays
            modification.position = static_cast<int>(moved) + 1;
    }
    return Peptidoform(QString::fromLatin1(make(sequence, attempt)), placed).toProForma().toLatin1();
}

std::optional<QByteArray> DecoyMaker::makeAcceptable(QByteArrayView target, int *attempt) const
{
    for (; *attempt < attemptCount(); ++*attempt) {
        QByteArray decoy = make(target, *attempt);
        if (m_options.kind == DecoyKind::Reversed || !isTooSimilar(decoy, target))
            return decoy;
    }
    return std::nullopt;
}

} // namespace zav
