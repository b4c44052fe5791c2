// SPDX-License-Identifier: Apache-2.0
#include "Digester.h"

#include <algorithm>

namespace zav {

Result<Digester> Digester::create(const DigestionOptions &options)
{
    if (Error error = options.checkForParameterErrors(); error.hasError())
        return error;
    const bool hasPattern = !options.cleavagePattern.isEmpty();
    const auto enzyme = hasPattern ? Enzyme::withPattern(options.cleavagePattern) : Enzyme::named(options.enzyme);
    return Digester(options, enzyme.value());
}

Error Digester::digest(QByteArrayView protein, const Visitor &visit)
{
    if (protein.isEmpty())
        return {};
    if (Error error = m_enzyme.findSites(protein, &m_boundaries); error.hasError())
        return error;
    m_boundaries.prepend(0);
    m_boundaries.append(static_cast<int>(protein.size()));
    const bool anywhere = m_options.semiSpecific || m_enzyme.isUnspecific();
    return anywhere ? digestAnywhere(protein, visit) : digestBetweenSites(protein, visit);
}

Error Digester::digestBetweenSites(QByteArrayView protein, const Visitor &visit) const
{
    for (qsizetype i = 0; i + 1 < m_boundaries.size(); ++i) {
        if (Error error = visitFrom(protein, m_boundaries[i], i + 1, visit); error.hasError())
            return error;
        // Where 1 is a site, the next round starts there anyway.
        if (i > 0 || !losesMethionine(protein) || m_boundaries[1] == 1)
            continue;
        if (Error error = visitFrom(protein, 1, 1, visit); error.hasError())
            return error;
    }
    return {};
}

Error Digester::visitFrom(QByteArrayView protein, int begin, qsizetype nextBoundary, const Visitor &visit) const
{
    for (int missed = 0; missed <= m_options.missedCleavages && nextBoundary < m_boundaries.size(); ++missed) {
        const int length = m_boundaries[nextBoundary++] - begin;
        if (length > m_options.maximumLength)
            break;
        if (length < m_options.minimumLength)
            continue;
        if (Error error = visit(protein.sliced(begin, length), endsOf(protein, begin, length)); error.hasError())
            return error;
    }
    return {};
}

Error Digester::digestAnywhere(QByteArrayView protein, const Visitor &visit) const
{
    qsizetype nextBoundary = 1;
    for (int begin = 0; begin < protein.size(); ++begin) {
        if (m_boundaries[nextBoundary] <= begin)
            ++nextBoundary;
        if (Error error = visitEveryEnd(protein, begin, nextBoundary, visit); error.hasError())
            return error;
    }
    return {};
}

Error Digester::visitEveryEnd(QByteArrayView protein, int begin, qsizetype nextBoundary, const Visitor &visit) const
{
    const bool beginsAtSite = m_boundaries[nextBoundary - 1] == begin || (begin == 1 && losesMethionine(protein));
    const int last = static_cast<int>(std::min<qsizetype>(protein.size(), qsizetype(begin) + m_options.maximumLength));
    int missed = 0;
    for (int end = begin + 1; end <= last && missed <= m_options.missedCleavages; ++end) {
        const bool endsAtSite = m_boundaries[nextBoundary] == end;
        const bool isPeptide = beginsAtSite || endsAtSite || m_enzyme.isUnspecific();
        if (isPeptide && end - begin >= m_options.minimumLength) {
            const int length = end - begin;
            if (Error error = visit(protein.sliced(begin, length), endsOf(protein, begin, length)); error.hasError())
                return error;
        }
        if (endsAtSite && end < last) {
            ++missed; // by every peptide that ends further on
            ++nextBoundary;
        }
    }
    return {};
}

ProteinEnds Digester::endsOf(QByteArrayView protein, int begin, int length) const
{
    return {begin == 0 || (begin == 1 && losesMethionine(protein)), begin + length == protein.size()};
}

bool Digester::losesMethionine(QByteArrayView protein) const
{
    return m_options.removesMethionine && protein.size() > 1 && protein.front() == 'M';
}

} // namespace zav
