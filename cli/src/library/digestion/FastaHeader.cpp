// SPDX-License-Identifier: Apache-2.0
#include "FastaHeader.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringConverter>
#include <QtCore/QStringList>

#include <algorithm>

namespace zav {

namespace {

// Old files are in Latin-1, which is never by chance UTF-8 where it matters.
QString decoded(QByteArrayView bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

bool isSeparator(QChar character)
{
    return character.unicode() <= 0x20; // some databases part the headers that they merged with a control character
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

} // namespace zav
