// SPDX-License-Identifier: Apache-2.0
#include "SkippedList.h"

namespace zav {

SkippedList::SkippedList(const QString &path) : m_file(path.isEmpty() ? nullptr : std::make_unique<OutputFile>(path)) {}

Error SkippedList::open()
{
    if (!m_file)
        return {};
    Error error = m_file->open();
    return error.hasError() ? error : m_file->write("protein\tpeptide\tcharge\treason\n");
}

Error SkippedList::add(const SkippedPeptide &skipped)
{
    return addRow(skipped.protein, skipped.peptide, QString(), skipped.reason);
}

Error SkippedList::add(const UnpredictedPrecursor &precursor, const ProteinTable &proteins)
{
    if (!m_file)
        return {};
    const LibraryPeptide &peptide = precursor.peptide;
    QStringList accessions;
    for (const int index : peptide.proteins)
        accessions.append(proteins.protein(index, peptide.isDecoy).accession);
    return addRow(accessions.join(QLatin1Char(';')), QString::fromLatin1(peptide.sequence),
                  QString::number(precursor.charge),
                  QStringLiteral("%1 residues, more than the %2 that are predicted")
                      .arg(peptide.sequence.size())
                      .arg(precursor.maximumLength));
}

Error SkippedList::commit()
{
    return m_file ? m_file->commit() : Error();
}

Error SkippedList::addRow(const QString &protein, const QString &peptide, const QString &charge, const QString &reason)
{
    if (!m_file)
        return {};
    return m_file->write(QStringList{protein, peptide, charge, reason}.join(QLatin1Char('\t')).toUtf8() + '\n');
}

} // namespace zav
