// SPDX-License-Identifier: Apache-2.0
#include "ProteinTable.h"

namespace zav {

namespace {

QByteArray withoutControls(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    for (char &byte : bytes) {
        if (static_cast<unsigned char>(byte) < 0x20)
            byte = ' ';
    }
    return bytes;
}

QString decoyText(const QString &text)
{
    return text.isEmpty() ? text : QStringLiteral("DECOY_") + text;
}

} // namespace

ProteinTable::Place ProteinTable::add(const Protein &protein)
{
    const QByteArray key = withoutControls(protein.accession);
    const int known = find(key);
    if (known < 0) {
        m_rows.append(store(key, protein.name, protein.gene));
        m_hashes.insert(qHash(key), count() - 1);
        return {count() - 1, true};
    }
    const Protein before = this->protein(known);
    const bool bringsName = before.name.isEmpty() && !protein.name.isEmpty();
    const bool bringsGene = before.gene.isEmpty() && !protein.gene.isEmpty();
    if (bringsName || bringsGene)
        m_rows[known] = store(key, bringsName ? protein.name : before.name, bringsGene ? protein.gene : before.gene);
    return {known, false};
}

Protein ProteinTable::protein(int index, bool ofDecoy) const
{
    const qint64 begin = m_rows[index];
    const QString row = QString::fromUtf8(m_text.mid(begin, m_text.indexOf('\n', begin) - begin));
    const QStringList cells = row.split(QLatin1Char('\t'));
    if (ofDecoy)
        return {decoyText(cells[0]), decoyText(cells[1]), decoyText(cells[2])};
    return {cells[0], cells[1], cells[2]};
}

int ProteinTable::find(const QByteArray &accession) const
{
    const auto [begin, end] = m_hashes.equal_range(qHash(accession));
    for (auto hash = begin; hash != end; ++hash) {
        if (this->accession(*hash) == accession)
            return *hash;
    }
    return -1;
}

QByteArray ProteinTable::accession(int index) const
{
    const qint64 begin = m_rows[index];
    return m_text.mid(begin, m_text.indexOf('\t', begin) - begin);
}

qint64 ProteinTable::store(const QByteArray &accession, const QString &name, const QString &gene)
{
    const qint64 begin = m_text.size();
    m_text += accession + '\t' + withoutControls(name) + '\t' + withoutControls(gene) + '\n';
    return begin;
}

} // namespace zav
