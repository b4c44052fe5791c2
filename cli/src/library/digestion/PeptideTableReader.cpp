// SPDX-License-Identifier: Apache-2.0
#include "PeptideTableReader.h"

#include "FastaHeader.h"

#include <algorithm>
#include <utility>

namespace zav {

namespace {

QStringList trimmedParts(const QString &text, QChar separator)
{
    QStringList parts = text.split(separator);
    for (QString &part : parts)
        part = part.trimmed();
    return parts;
}

qsizetype columnNamed(const QStringList &cells, const char *name)
{
    const auto cell = std::find_if(cells.begin(), cells.end(), [name](const QString &candidate) {
        return candidate.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    });
    return cell == cells.end() ? -1 : cell - cells.begin();
}

QString firstWord(const QString &line)
{
    return line.trimmed().section(QLatin1Char('\t'), 0, 0).section(QLatin1Char(' '), 0, 0);
}

} // namespace

Error PeptideTableReader::open()
{
    return m_lines.open();
}

bool PeptideTableReader::next()
{
    m_peptide.clear();
    m_proteins.clear();
    while (!m_error.hasError() && m_lines.next()) {
        const QString line = QString::fromUtf8(m_lines.line());
        if (line.trimmed().isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const bool isHeader = std::exchange(m_isFirstLine, false) && readHeader(trimmedParts(line, QLatin1Char('\t')));
        if (!isHeader && !m_error.hasError())
            return readRow(line);
    }
    return m_error.hasError() || !m_lines.error().hasError() ? false : fail(m_lines.error());
}

bool PeptideTableReader::readHeader(const QStringList &cells)
{
    m_peptideColumn = columnNamed(cells, "peptide");
    if (m_peptideColumn < 0)
        m_peptideColumn = columnNamed(cells, "sequence");
    m_proteinColumn = columnNamed(cells, "protein");
    m_geneColumn = columnNamed(cells, "gene");
    const bool namesMore = m_proteinColumn >= 0 || m_geneColumn >= 0 || columnNamed(cells, "charge") >= 0;
    m_isTable = m_peptideColumn >= 0 && (namesMore || cells[m_peptideColumn] != QLatin1String("PEPTIDE"));
    if (!m_isTable && m_proteinColumn >= 0)
        return fail(m_lines.errorHere(QStringLiteral("the header names no column 'peptide'")));
    return m_isTable;
}

bool PeptideTableReader::readRow(const QString &line)
{
    if (!m_isTable) {
        m_peptide = firstWord(line).toUtf8().toUpper();
        return true;
    }
    const QStringList cells = trimmedParts(line, QLatin1Char('\t'));
    m_peptide = cells.value(m_peptideColumn).toUtf8().toUpper();
    return readProteins(cells.value(m_proteinColumn), cells.value(m_geneColumn));
}

bool PeptideTableReader::readProteins(const QString &proteins, const QString &genes)
{
    if (proteins.isEmpty())
        return true;
    const QStringList identifiers = trimmedParts(proteins, QLatin1Char(';'));
    const QStringList geneNames = trimmedParts(genes, QLatin1Char(';'));
    if (geneNames.size() != 1 && geneNames.size() != identifiers.size())
        return fail(m_lines.errorHere(QStringLiteral("%1 proteins and %2 genes cannot be told to each other")
                                          .arg(identifiers.size())
                                          .arg(geneNames.size())));
    for (qsizetype i = 0; i < identifiers.size(); ++i) {
        if (identifiers[i].isEmpty())
            continue;
        Protein protein = readProteinIdentifier(identifiers[i]);
        protein.gene = geneNames.size() == 1 ? geneNames[0] : geneNames[i];
        m_proteins.append(protein);
    }
    return true;
}

bool PeptideTableReader::fail(const Error &error)
{
    m_error = error;
    m_peptide.clear();
    m_proteins.clear();
    return false;
}

} // namespace zav
