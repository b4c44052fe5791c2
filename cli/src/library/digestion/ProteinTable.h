// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// What a peptide's protein is called.
struct Protein
{
    QString accession;
    QString name; ///< UniProt's entry name, ALBU_HUMAN; empty where the file gives none
    QString gene; ///< empty where the file gives none

    bool operator==(const Protein &) const = default;
};

/// The same in UTF-8, as a table stores it.
struct ProteinNames
{
    QByteArray accession;
    QByteArray name;
    QByteArray gene;
};

/// Every protein once, by accession, with indices in the order of their first appearance. Needs about the length of
/// the three texts and 50 bytes a protein. Adding is for one thread, reading for any number.
class ProteinTable
{
public:
    struct Place
    {
        int index = 0;
        bool isNew = false;
    };

    /// The place of a protein, which is appended when its accession is not known yet. Of a known one, a name and a gene
    /// that were empty are filled in. Control characters are turned into blanks.
    Place add(const Protein &protein);

    int count() const { return static_cast<int>(m_rows.size()); }

    /// `index` within 0 to `count()` - 1. As a decoy's protein, accession, name and gene begin with `DECOY_` (empty
    /// ones stay empty): a decoy does not count for a gene, nor for a protein, of its targets.
    Protein protein(int index, bool ofDecoy = false) const;

    /// The same without a copy: valid as long as the table, until the next `add`.
    ProteinNames names(int index, bool ofDecoy = false) const;

private:
    int find(const QByteArray &accession) const;
    QByteArray accession(int index) const;
    qint64 store(const QByteArray &accession, const QString &name, const QString &gene);

    QByteArray m_text;                // accession, tab, name, tab, gene, line feed
    QList<qint64> m_rows;             // where each protein's text begins
    QMultiHash<size_t, int> m_hashes; // of the accessions
};

} // namespace zav
