// SPDX-License-Identifier: Apache-2.0
#include "FastaReader.h"

#include "PrintableText.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringConverter>
#include <QtCore/QStringList>

#include <algorithm>

namespace zav {

namespace {

// Four hundred times the longest known protein, so that a genome is told from a proteome.
constexpr qsizetype LONGEST_SEQUENCE = 1 << 24;

constexpr qsizetype MAX_LINE_BYTES = LONGEST_SEQUENCE;

bool isPassedOver(QByteArrayView line)
{
    return line.isEmpty() || line.front() == ';' || line.front() == '#';
}

bool isBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\r';
}

// Old files are in Latin-1, which is never by chance UTF-8 where it matters.
QString decoded(QByteArrayView bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

bool isSeparator(QChar character)
{
    return character.unicode() <= 0x20; // some databases merge headers, with a control character between
}

QString geneName(const QString &header)
{
    static const QRegularExpression gene(QStringLiteral("[\\x01-\\x20]GN=(.*?)\\s*(?=[\\x01-\\x20][A-Z]{2}=|$)"));
    return gene.match(header).captured(1).trimmed();
}

} // namespace

Protein readProteinIdentifier(const QString &identifier)
{
    const QStringList parts = identifier.split(QLatin1Char('|'));
    const bool isUniProt = (parts[0] == QLatin1String("sp") || parts[0] == QLatin1String("tr")) && parts.size() == 3;
    if (isUniProt && !parts[1].isEmpty())
        return {parts[1], parts[2], QString()};
    return {identifier, QString(), QString()};
}

Protein readFastaHeader(QByteArrayView header)
{
    const QString text = decoded(header).trimmed();
    const QString word = text.left(std::find_if(text.begin(), text.end(), isSeparator) - text.begin());
    Protein protein = readProteinIdentifier(word);
    protein.gene = geneName(text);
    return protein;
}

Error FastaReader::open()
{
    Result<std::unique_ptr<LineReader>> lines = LineReader::open(m_path, MAX_LINE_BYTES);
    if (lines.hasError())
        return lines.error();
    m_lines = std::move(lines).value();
    return {};
}

bool FastaReader::next()
{
    m_sequence.clear();
    if (m_error.hasError() || !(m_isAtHeader || findHeader()) || !readHeader())
        return false;
    m_isAtHeader = false;
    while (m_lines->next()) {
        const QByteArrayView line = m_lines->line();
        m_isAtHeader = line.startsWith('>');
        if (m_isAtHeader)
            break;
        if (!isPassedOver(line) && !appendResidues(line))
            return false;
    }
    if (m_lines->error().hasError())
        return fail(m_lines->error());
    while (m_sequence.endsWith('*'))
        m_sequence.chop(1);
    return true;
}

bool FastaReader::findHeader()
{
    while (m_lines->next()) {
        const QByteArrayView line = m_lines->line();
        if (line.startsWith('>'))
            return true;
        if (!isPassedOver(line) && !line.trimmed().isEmpty())
            return fail(m_lines->errorHere(QStringLiteral("expected a FASTA header that begins with '>', found '%1'")
                                               .arg(displayText(QString::fromLatin1(line), 30))));
    }
    return m_lines->error().hasError() ? fail(m_lines->error()) : false;
}

bool FastaReader::readHeader()
{
    m_protein = readFastaHeader(m_lines->line().sliced(1));
    if (m_protein.accession.isEmpty())
        return fail(m_lines->errorHere(QStringLiteral("the FASTA header names no protein")));
    return true;
}

bool FastaReader::appendResidues(QByteArrayView line)
{
    for (const char character : line) {
        const char upper = character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
        if ((upper >= 'A' && upper <= 'Z') || upper == '*' || upper == '-')
            m_sequence.append(upper);
        else if (!isBlank(upper))
            return fail(m_lines->errorHere(
                QStringLiteral("'%1' is not a residue").arg(displayText(QString(QLatin1Char(upper))))));
    }
    if (m_sequence.size() > LONGEST_SEQUENCE)
        return fail(m_lines->errorHere(QStringLiteral("the sequence is too long for a protein")));
    return true;
}

bool FastaReader::fail(const Error &error)
{
    m_error = error;
    m_sequence.clear();
    return false;
}

} // namespace zav
