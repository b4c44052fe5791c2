// SPDX-License-Identifier: Apache-2.0
#include "PeptideMerge.h"

#include "PeptideCursor.h"
#include "PeptideUniter.h"
#include "RecordStream.h"

#include <algorithm>

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

} // namespace

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
