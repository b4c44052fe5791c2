// SPDX-License-Identifier: Apache-2.0
#include "PeptideMerge.h"

#include "RecordSorter.h"

#include <algorithm>
#include <utility>

namespace zav {

namespace {

// The parts that have a peptide left. They are few: the targets and some rounds of decoys.
class OpenParts
{
public:
    explicit OpenParts(std::vector<PeptidePages> *parts)
    {
        for (PeptidePages &part : *parts) {
            m_cursors.emplace_back(&part, PeptideCursor::Consume);
            advance(m_cursors.end() - 1);
        }
    }

    bool isEmpty() const { return m_cursors.empty() || m_error.hasError(); }
    Error error() const { return m_error; }

    Error passFirst(PeptideUniter *united)
    {
        const auto first = std::min_element(m_cursors.begin(), m_cursors.end(), [](const auto &a, const auto &b) {
            return compareBytes(a.peptide().sequence, b.peptide().sequence) < 0;
        });
        Error error = united->add(first->peptide());
        advance(first);
        return error;
    }

private:
    void advance(std::vector<PeptideCursor>::iterator cursor)
    {
        if (cursor->next())
            return;
        if (cursor->error().hasError())
            m_error = cursor->error();
        m_cursors.erase(cursor);
    }

    std::vector<PeptideCursor> m_cursors;
    Error m_error;
};

template <typename T>
void sortOnce(QList<T> *list)
{
    std::sort(list->begin(), list->end());
    list->erase(std::unique(list->begin(), list->end()), list->end());
}

} // namespace

Error PeptideUniter::add(const LibraryPeptide &peptide)
{
    if (m_holdsPeptide && peptide.sequence == m_sequence) {
        m_peptide.proteins.append(peptide.proteins);
        m_peptide.named.append(peptide.named);
        m_peptide.ends |= peptide.ends;
        m_peptide.isPlain = m_peptide.isPlain || peptide.isPlain;
        ++m_unitedCount;
        return {};
    }
    if (Error error = flush(); error.hasError())
        return error;
    m_holdsPeptide = true;
    m_sequence.resize(0);
    m_sequence.append(peptide.sequence);
    m_peptide = peptide;
    return {};
}

Error PeptideUniter::finish()
{
    if (Error error = flush(); error.hasError())
        return error;
    return m_pages->finish();
}

Error PeptideUniter::flush()
{
    if (!std::exchange(m_holdsPeptide, false))
        return {};
    sortOnce(&m_peptide.proteins);
    sortOnce(&m_peptide.named);
    m_peptide.sequence = m_sequence;
    return m_pages->append(m_peptide);
}

Result<PeptidePages> mergePeptides(std::vector<PeptidePages> parts, const SortingSpace &space,
                                   const DigestionHooks &hooks, qint64 *unitedCount)
{
    PeptidePages merged(space);
    PeptideUniter united(&merged);
    OpenParts open(&parts);
    while (!open.isEmpty()) {
        if (Error error = hooks.checkForInterrupt(); error.hasError())
            return error;
        if (Error error = open.passFirst(&united); error.hasError())
            return error;
    }
    if (open.error().hasError())
        return open.error();
    if (Error error = united.finish(); error.hasError())
        return error;
    *unitedCount = united.unitedCount();
    return merged;
}

} // namespace zav
