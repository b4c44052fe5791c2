// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

#include <optional>

namespace zav {

enum class DecoyKind { None, Reversed, Shuffled };

/// Which decoys a library gets beside its targets.
struct DecoyOptions
{
    DecoyKind kind = DecoyKind::None;

    /// Of `Shuffled`: another seed, other decoys. Any value.
    quint64 seed = 1;
};

/// Turns a target's sequence into that of a decoy.
///
/// The residue at which the enzyme cuts keeps its place, so that decoys look like peptides of that enzyme: the last
/// one, or for enzymes that cut before their residue (Lys-N, Asp-N) the first. Peptides that no enzyme made (none,
/// unspecific, a pattern, a list) keep the last one as well.
///
/// `Reversed` reverses the order of the others (the "pseudo-reversed" peptides of Elias and Gygi, Nat. Methods 4,
/// 207, 2007). `Shuffled` puts them in a random order that depends on the seed, the sequence and the number of the
/// attempt alone: not on what else is in the library, nor on the platform.
class DecoyMaker
{
public:
    enum FixedEnd { FirstResidue, LastResidue };

    DecoyMaker(const DecoyOptions &options, FixedEnd fixedEnd) : m_options(options), m_fixedEnd(fixedEnd) {}

    /// How many decoys of a target are worth trying: 1 for `Reversed`, 10 for `Shuffled`.
    int attemptCount() const { return m_options.kind == DecoyKind::Shuffled ? 10 : 1; }

    /// The decoy of an attempt, from 0.
    QByteArray make(QByteArrayView target, int attempt) const;

    /// The first decoy that is not too similar to its target, from the attempt `*attempt` on; `*attempt` is then the
    /// one that made it. None when no attempt is left.
    ///
    /// A shuffled decoy is too similar when more than 7 in 10 of its residues equal its target's at the same place. A
    /// reversed one never is.
    std::optional<QByteArray> makeAcceptable(QByteArrayView target, int *attempt) const;

    /// The decoy of a peptidoform in ProForma, whose modifications go with their residues and termini.
    QByteArray makeNamed(const QByteArray &target, int attempt) const;

private:
    template <typename T>
    void rearrange(T *items, QByteArrayView target, int attempt) const;

    DecoyOptions m_options;
    FixedEnd m_fixedEnd;
};

} // namespace zav
