// SPDX-License-Identifier: Apache-2.0
#include "RetentionTable.h"

#include "PeptidoformText.h"

namespace zav {

namespace {

// Other columns may be long, such as a list of proteins.
constexpr qsizetype MAX_LINE_BYTES = 1 << 24;

constexpr char PEPTIDE[] = "peptide";
constexpr char SEQUENCE[] = "sequence";

constexpr int IRT_DECIMALS = 3;
constexpr int TIME_DECIMALS = 4; // the times may be hours

} // namespace

Error PeptidoformList::open(const QString &path)
{
    Result<std::unique_ptr<LineReader>> opened = LineReader::open(path, MAX_LINE_BYTES);
    if (opened.hasError())
        return opened.error();
    m_lines = std::move(opened).value();
    return {};
}

/// Whether the present line is a heading. If it is none, the peptides are in the first column.
bool PeptidoformList::readHeading()
{
    m_heading.look(m_lines->line(), {PEPTIDE, SEQUENCE});
    m_column = m_heading.has(PEPTIDE) ? PEPTIDE : SEQUENCE;
    if (m_heading.has(m_column))
        return true;
    m_heading.assume({m_column});
    return false;
}

Result<QList<RetentionRow>> PeptidoformList::next(qsizetype count)
{
    QList<RetentionRow> rows;
    while (rows.size() < count && m_lines->nextContent()) {
        if (m_column == nullptr && readHeading())
            continue;
        const QString text = m_heading.text(m_lines->line(), m_column);
        rows.append({text, m_lines->number(), readPeptidoform(text)});
    }
    if (m_lines->error().hasError())
        return m_lines->error();
    return rows;
}

void RetentionTable::add(const QString &peptide, double irt, double rt)
{
    m_rows.add(QStringView(peptide)).add('\t').addFixed(irt, IRT_DECIMALS);
    if (m_isCalibrated)
        m_rows.add('\t').addFixed(rt, TIME_DECIMALS);
    m_rows.add('\n');
}

Error RetentionTable::flush()
{
    if (m_rows.isEmpty())
        return {};
    if (!m_isOpen) {
        m_isOpen = true;
        if (Error error = m_file.open(); error.hasError())
            return error;
        const QByteArray heading = m_isCalibrated ? "peptide\tirt\trt\n" : "peptide\tirt\n";
        if (Error error = m_file.write(heading); error.hasError())
            return error;
    }
    return m_file.write(m_rows.take());
}

Error RetentionTable::finish()
{
    if (Error error = flush(); error.hasError() || !m_isOpen)
        return error;
    return m_file.commit();
}

} // namespace zav
