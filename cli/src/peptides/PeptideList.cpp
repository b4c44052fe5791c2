// SPDX-License-Identifier: Apache-2.0
#include "PeptideList.h"

#include "LineReader.h"
#include "PrintableText.h"
#include "TableHeading.h"

#include <cmath>

namespace zav {

namespace {

// Other columns may be long, such as a list of proteins.
constexpr qsizetype MAX_LINE_BYTES = 1 << 24;

constexpr char PEPTIDE[] = "peptide";
constexpr char SEQUENCE[] = "sequence";
constexpr char CHARGE[] = "charge";
constexpr char ENERGY[] = "energy";
constexpr char SCAN[] = "scan";

/// Where peptide, charge, energy and scan stand.
class PeptideColumns
{
public:
    /// Whether `line` is a header; if it is none, the columns are the first two.
    bool readHeader(QByteArrayView line)
    {
        m_heading.look(line, {PEPTIDE, SEQUENCE, CHARGE, ENERGY, SCAN});
        const qsizetype peptide = m_heading.column(PEPTIDE);
        const qsizetype sequence = m_heading.column(SEQUENCE);
        const bool isSequence = sequence >= 0 && (peptide < 0 || sequence < peptide); // the first of the two counts
        m_peptide = isSequence ? SEQUENCE : PEPTIDE;
        const bool isHeader = m_heading.has(m_peptide) && m_heading.has(CHARGE);
        if (!isHeader) {
            m_peptide = PEPTIDE;
            m_heading.assume({PEPTIDE, CHARGE});
        }
        return isHeader;
    }

    PeptideListRow readRow(QByteArrayView line) const
    {
        PeptideListRow row;
        row.precursor.peptide = m_heading.text(line, m_peptide);
        row.scan = m_heading.text(line, SCAN);
        const QString charge = m_heading.text(line, CHARGE);
        bool isNumber = false;
        row.precursor.charge = charge.toInt(&isNumber);
        if (charge.isEmpty())
            row.problem = QStringLiteral("the charge is missing");
        else if (!isNumber)
            row.problem = QStringLiteral("charge '%1' is not a whole number").arg(displayText(charge, 20));
        else
            readEnergy(line, &row);
        return row;
    }

private:
    void readEnergy(QByteArrayView line, PeptideListRow *row) const
    {
        const QString energy = m_heading.text(line, ENERGY);
        if (energy.isEmpty())
            return;
        bool isNumber = false;
        row->precursor.collisionEnergy = energy.toDouble(&isNumber);
        if (!isNumber || std::isnan(row->precursor.collisionEnergy))
            row->problem = QStringLiteral("energy '%1' is not a number").arg(displayText(energy, 20));
    }

    TableHeading m_heading{TableHeading::TabOrBlanks};
    const char *m_peptide = PEPTIDE;
};

} // namespace

Result<QList<PeptideListRow>> readPeptideList(const QString &path)
{
    const Result<std::unique_ptr<LineReader>> opened = LineReader::open(path, MAX_LINE_BYTES);
    if (opened.hasError())
        return opened.error();
    LineReader &lines = *opened.value();
    PeptideColumns columns;
    QList<PeptideListRow> rows;
    for (bool mayBeHeader = true; lines.nextContent(); mayBeHeader = false) {
        if (mayBeHeader && columns.readHeader(lines.line()))
            continue;
        rows.append(columns.readRow(lines.line()));
        rows.last().line = static_cast<int>(lines.number());
    }
    if (lines.error().hasError())
        return lines.error();
    return rows;
}

} // namespace zav
