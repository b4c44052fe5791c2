// SPDX-License-Identifier: Apache-2.0
#include "PeptideTableReader.h"

#include "FastaReader.h"

#include <QtCore/QStringList>

#include <utility>

namespace zav {

namespace {

constexpr qsizetype MAX_LINE_BYTES = 1 << 24;

constexpr char PEPTIDE[] = "peptide";
constexpr char SEQUENCE[] = "sequence";
constexpr char PROTEIN[] = "protein";
constexpr char GENE[] = "gene";
constexpr char CHARGE[] = "charge";

QStringList trimmedParts(const QString &text, QChar separator)
{
    QStringList parts = text.split(separator);
    for (QString &part : parts)
        part = part.trimmed();
    return parts;
}

QString firstWord(const QString &line)
{
    return line.trimmed().section(QLatin1Char('\t'), 0, 0).section(QLatin1Char(' '), 0, 0);
}

/// The names and masses in the brackets of ProForma stay as they are.
QByteArray withResiduesInUpperCase(const QByteArray &text)
{
    if (!text.contains('['))
        return text.toUpper();
    QByteArray upper = text;
    bool isInSquare = false;
    bool isInAngle = false;
    for (char &character : upper) {
        isInSquare = character == '[' || (isInSquare && character != ']');
        if (!isInSquare)
            isInAngle = character == '<' || (isInAngle && character != '>');
        if (!isInSquare && !isInAngle && character >= 'a' && character <= 'z')
            character = static_cast<char>(character - 'a' + 'A');
    }
    return upper;
}

} // namespace

Error PeptideTableReader::open()
{
    Result<std::unique_ptr<LineReader>> lines = LineReader::open(m_path, MAX_LINE_BYTES);
    if (lines.hasError())
        return lines.error();
    m_lines = std::move(lines).value();
    return {};
}

bool PeptideTableReader::next()
{
    m_peptide.clear();
    m_proteins.clear();
    while (!m_error.hasError() && m_lines->nextContent()) {
        const QByteArrayView line = m_lines->line();
        const bool isHeader = std::exchange(m_isFirstLine, false) && readHeader(line);
        if (!isHeader && !m_error.hasError())
            return readRow(line);
    }
    return m_error.hasError() || !m_lines->error().hasError() ? false : fail(m_lines->error());
}

bool PeptideTableReader::readHeader(QByteArrayView line)
{
    m_heading.look(line, {PEPTIDE, SEQUENCE, PROTEIN, GENE, CHARGE});
    m_peptideColumn = m_heading.has(PEPTIDE) ? PEPTIDE : SEQUENCE;
    const bool namesMore = m_heading.has(PROTEIN) || m_heading.has(GENE) || m_heading.has(CHARGE);
    m_isTable = m_heading.has(m_peptideColumn) &&
                (namesMore || m_heading.text(line, m_peptideColumn) != QLatin1String("PEPTIDE"));
    if (!m_isTable && m_heading.has(PROTEIN))
        return fail(m_lines->errorHere(QStringLiteral("the header names no column 'peptide'")));
    return m_isTable;
}

bool PeptideTableReader::readRow(QByteArrayView line)
{
    if (!m_isTable) {
        m_peptide = withResiduesInUpperCase(firstWord(QString::fromUtf8(line)).toUtf8());
        return true;
    }
    m_peptide = withResiduesInUpperCase(m_heading.text(line, m_peptideColumn).toUtf8());
    return readProteins(m_heading.text(line, PROTEIN), m_heading.text(line, GENE));
}

bool PeptideTableReader::readProteins(const QString &proteins, const QString &genes)
{
    if (proteins.isEmpty())
        return true;
    const QStringList identifiers = trimmedParts(proteins, QLatin1Char(';'));
    const QStringList geneNames = trimmedParts(genes, QLatin1Char(';'));
    if (geneNames.size() != 1 && geneNames.size() != identifiers.size())
        return fail(m_lines->errorHere(QStringLiteral("%1 proteins and %2 genes cannot be matched")
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
