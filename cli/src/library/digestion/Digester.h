// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Digestion.h"
#include "Enzyme.h"
#include "ModificationRule.h"

#include <zav/Result.h>

#include <functional>

namespace zav {

/// Cuts one protein after the other.
class Digester
{
public:
    /// `InvalidInput` for options out of their ranges.
    static Result<Digester> create(const DigestionOptions &options);

    using Visitor = std::function<Error(QByteArrayView peptide, ProteinEnds ends)>;

    /// Shows every peptide of an upper-case sequence to `visit`, in the order of their beginnings, then of their ends;
    /// one that the protein contains at several places comes as often, each time with the ends of the protein at which
    /// it stands there. Its residues are not checked. Stops with an error of `visit` and returns it.
    Error digest(QByteArrayView protein, const Visitor &visit);

    const Enzyme &enzyme() const { return m_enzyme; }
    const DigestionOptions &options() const { return m_options; }

private:
    Digester(const DigestionOptions &options, const Enzyme &enzyme) : m_options(options), m_enzyme(enzyme) {}

    Error digestBetweenSites(QByteArrayView protein, const Visitor &visit) const;
    Error visitFrom(QByteArrayView protein, int begin, qsizetype nextBoundary, const Visitor &visit) const;
    Error digestAnywhere(QByteArrayView protein, const Visitor &visit) const;
    Error visitEveryEnd(QByteArrayView protein, int begin, qsizetype nextBoundary, const Visitor &visit) const;
    ProteinEnds endsOf(QByteArrayView protein, int begin, int length) const;
    bool losesMethionine(QByteArrayView protein) const;

    DigestionOptions m_options;
    Enzyme m_enzyme;
    QList<int> m_boundaries; // of the protein: 0, its sites, its length
};

} // namespace zav
