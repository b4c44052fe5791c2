// SPDX-License-Identifier: Apache-2.0
#include "PeptideCursor.h"

namespace zav {

bool PeptideCursor::next()
{
    if (m_index + 1 < m_block.size()) {
        ++m_index;
        return true;
    }
    return readPage();
}

bool PeptideCursor::readPage()
{
    m_block.clear();
    m_index = 0;
    if (m_error.hasError() || m_page == m_pages->pageCount())
        return false;
    m_error = m_pages->readPage(m_page, &m_block);
    if (m_use == Consume)
        m_pages->release(m_page);
    ++m_page;
    return !m_error.hasError();
}

} // namespace zav
