// SPDX-License-Identifier: Apache-2.0
#include "DecoyMaker.h"

#include "SplitMix64.h"

#include <algorithm>
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
void shuffle(char *letters, qsizetype count, SplitMix64 *generator)
{
    for (qsizetype i = count - 1; i > 0; --i)
        std::swap(letters[i], letters[generator->below(static_cast<quint64>(i) + 1)]);
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
    if (decoy.size() < 2)
        return decoy;
    char *movable = decoy.data() + (m_fixedEnd == FirstResidue ? 1 : 0);
    const qsizetype count = decoy.size() - 1;
    if (m_options.kind == DecoyKind::Shuffled) {
        SplitMix64 generator = generatorOf(m_options.seed, attempt, target);
        shuffle(movable, count, &generator);
    } else {
        std::reverse(movable, movable + count);
    }
    return decoy;
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
