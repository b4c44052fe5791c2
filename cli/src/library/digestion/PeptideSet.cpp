// SPDX-License-Identifier: Apache-2.0
#include "PeptideSet.h"

namespace zav {

Error PeptideSet::read(qint64 first, qint64 end, PeptideBlock *out)
{
    out->clear();
    if (first < 0 || end < first || end > count())
        return {InvalidInput,
                QStringLiteral("peptides %1 to %2 of %3 were asked for").arg(first).arg(end).arg(count())};
    const qint64 firstPage = first / PeptidePages::PEPTIDES_IN_PAGE;
    PeptideBlock pages;
    for (qint64 page = firstPage; page * PeptidePages::PEPTIDES_IN_PAGE < end; ++page) {
        if (Error error = m_pages.readPage(page, &pages); error.hasError())
            return error;
    }
    const qint64 offset = firstPage * PeptidePages::PEPTIDES_IN_PAGE;
    pages.trim(first - offset, end - first);
    *out = std::move(pages);
    return {};
}

} // namespace zav
