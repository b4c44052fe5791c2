// SPDX-License-Identifier: Apache-2.0
#include "ProteinTable.h"

#include <utility>

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

// The cell up to `separator`, behind which `*from` moves.
QByteArray takeCell(const QByteArray &text, qint64 *from, char separator, bool ofDecoy)
{
    const qint64 end = text.indexOf(separator, *from);
    const char *begin = text.constData() + std::exchange(*from, end + 1);
    const QByteArray cell = QByteArray::fromRawData(begin, text.constData() + end - begin);
    return ofDecoy && !cell.isEmpty() ? "DECOY_" + cell : cell;
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
    const ProteinNames names = this->names(index, ofDecoy);
    return {QString::fromUtf8(names.accession), QString::fromUtf8(names.name), QString::fromUtf8(names.gene)};
}

ProteinNames ProteinTable::names(int index, bool ofDecoy) const
{
    qint64 from = m_rows[index];
    ProteinNames names;
    names.accession = takeCell(m_text, &from, '\t', ofDecoy);
    names.name = takeCell(m_text, &from, '\t', ofDecoy);
    names.gene = takeCell(m_text, &from, '\n', ofDecoy);
    return names;
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
