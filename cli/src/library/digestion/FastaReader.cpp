// SPDX-License-Identifier: Apache-2.0
#include "FastaReader.h"

#include "FastaHeader.h"
#include "PrintableText.h"

namespace zav {

namespace {

// Four hundred times the longest known protein, so that a genome is told from a proteome.
constexpr qsizetype LONGEST_SEQUENCE = 1 << 24;

bool isPassedOver(QByteArrayView line)
{
    return line.isEmpty() || line.front() == ';' || line.front() == '#';
}

bool isBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\r';
}

} // namespace

Error FastaReader::open()
{
    return m_lines.open();
}

bool FastaReader::next()
{
    m_sequence.clear();
    if (m_error.hasError() || !(m_isAtHeader || findHeader()) || !readHeader())
        return false;
    m_isAtHeader = false;
    while (m_lines.next()) {
        const QByteArrayView line = m_lines.line();
        m_isAtHeader = line.startsWith('>');
        if (m_isAtHeader)
            break;
        if (!isPassedOver(line) && !appendResidues(line))
            return false;
    }
    if (m_lines.error().hasError())
        return fail(m_lines.error());
    while (m_sequence.endsWith('*'))
        m_sequence.chop(1);
    return true;
}

bool FastaReader::findHeader()
{
    while (m_lines.next()) {
        const QByteArrayView line = m_lines.line();
        if (line.startsWith('>'))
            return true;
        if (!isPassedOver(line) && !line.trimmed().isEmpty())
            return fail(m_lines.errorHere(QStringLiteral("expected a FASTA header that begins with '>', found '%1'")
                                              .arg(displayText(QString::fromLatin1(line), 30))));
    }
    return m_lines.error().hasError() ? fail(m_lines.error()) : false;
}

bool FastaReader::readHeader()
{
    m_protein = readFastaHeader(m_lines.line().sliced(1));
    if (m_protein.accession.isEmpty())
        return fail(m_lines.errorHere(QStringLiteral("the FASTA header names no protein")));
    return true;
}

bool FastaReader::appendResidues(QByteArrayView line)
{
    for (const char character : line) {
        const char upper = character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
        if ((upper >= 'A' && upper <= 'Z') || upper == '*' || upper == '-')
            m_sequence.append(upper);
        else if (!isBlank(upper))
            return fail(m_lines.errorHere(
                QStringLiteral("'%1' is no residue of a protein").arg(displayText(QString(QLatin1Char(upper))))));
    }
    if (m_sequence.size() > LONGEST_SEQUENCE)
        return fail(m_lines.errorHere(QStringLiteral("the sequence is too long for a protein")));
    return true;
}

bool FastaReader::fail(const Error &error)
{
    m_error = error;
    m_sequence.clear();
    return false;
}

} // namespace zav
