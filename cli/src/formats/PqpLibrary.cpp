// SPDX-License-Identifier: Apache-2.0
#include "SqliteDatabase.h"
#include "SqliteLibrary.h"

#include <QtCore/QHash>

#include <utility>

namespace zav {

namespace {

// Tables and columns as OpenMS creates them.
constexpr char TABLES[] =
    "CREATE TABLE VERSION (ID INT NOT NULL);"
    "CREATE TABLE GENE (ID INT PRIMARY KEY NOT NULL, GENE_NAME TEXT NOT NULL, DECOY INT NOT NULL);"
    "CREATE TABLE PEPTIDE_GENE_MAPPING (PEPTIDE_ID INT NOT NULL, GENE_ID INT NOT NULL);"
    "CREATE TABLE PROTEIN (ID INT PRIMARY KEY NOT NULL, PROTEIN_ACCESSION TEXT NOT NULL, DECOY INT NOT NULL);"
    "CREATE TABLE PEPTIDE_PROTEIN_MAPPING (PEPTIDE_ID INT NOT NULL, PROTEIN_ID INT NOT NULL);"
    "CREATE TABLE PEPTIDE (ID INT PRIMARY KEY NOT NULL, UNMODIFIED_SEQUENCE TEXT NOT NULL,"
    " MODIFIED_SEQUENCE TEXT NOT NULL, DECOY INT NOT NULL);"
    "CREATE TABLE PRECURSOR_PEPTIDE_MAPPING (PRECURSOR_ID INT NOT NULL, PEPTIDE_ID INT NOT NULL);"
    "CREATE TABLE COMPOUND (ID INT PRIMARY KEY NOT NULL, COMPOUND_NAME TEXT NOT NULL, SUM_FORMULA TEXT NOT NULL,"
    " SMILES TEXT NOT NULL, ADDUCTS TEXT NOT NULL, DECOY INT NOT NULL);"
    "CREATE TABLE PRECURSOR_COMPOUND_MAPPING (PRECURSOR_ID INT NOT NULL, COMPOUND_ID INT NOT NULL);"
    "CREATE TABLE PRECURSOR (ID INT PRIMARY KEY NOT NULL, TRAML_ID TEXT NULL, GROUP_LABEL TEXT NULL,"
    " PRECURSOR_MZ REAL NOT NULL, CHARGE INT NULL, LIBRARY_INTENSITY REAL NULL, LIBRARY_RT REAL NULL,"
    " LIBRARY_DRIFT_TIME REAL NULL, DECOY INT NOT NULL);"
    "CREATE TABLE TRANSITION_PRECURSOR_MAPPING (TRANSITION_ID INT NOT NULL, PRECURSOR_ID INT NOT NULL);"
    "CREATE TABLE TRANSITION_PEPTIDE_MAPPING (TRANSITION_ID INT NOT NULL, PEPTIDE_ID INT NOT NULL);"
    "CREATE TABLE TRANSITION (ID INT PRIMARY KEY NOT NULL, TRAML_ID TEXT NULL, PRODUCT_MZ REAL NOT NULL,"
    " CHARGE INT NULL, TYPE CHAR(1) NULL, ANNOTATION TEXT NULL, ORDINAL INT NULL, DETECTING INT NOT NULL,"
    " IDENTIFYING INT NOT NULL, QUANTIFYING INT NOT NULL, LIBRARY_INTENSITY REAL NULL, DECOY INT NOT NULL);"
    "INSERT INTO VERSION VALUES (3)";

constexpr char INSERT_PRECURSOR[] =
    "INSERT INTO PRECURSOR (ID, TRAML_ID, GROUP_LABEL, PRECURSOR_MZ, CHARGE, LIBRARY_RT, LIBRARY_DRIFT_TIME, DECOY)"
    " VALUES (?, ?, '', ?, ?, ?, -1, ?)";
constexpr char INSERT_TRANSITION[] = "INSERT INTO TRANSITION VALUES (?, ?, ?, ?, ?, ?, ?, 1, 0, 1, ?, ?)";

// A precursor has one row in the mapping to its peptide, and a transition one in that to its precursor: their rows were
// written side by side.
constexpr char SELECT_PRECURSORS[] =
    "SELECT p.ID, p.TRAML_ID, p.PRECURSOR_MZ, p.CHARGE, p.LIBRARY_RT, p.DECOY, q.ID, q.UNMODIFIED_SEQUENCE,"
    " q.MODIFIED_SEQUENCE FROM PRECURSOR p JOIN PRECURSOR_PEPTIDE_MAPPING m ON m.rowid = p.rowid"
    " JOIN PEPTIDE q ON q.ID = m.PEPTIDE_ID ORDER BY p.rowid";
constexpr char SELECT_TRANSITIONS[] =
    "SELECT m.PRECURSOR_ID, t.PRODUCT_MZ, t.LIBRARY_INTENSITY, t.TYPE, t.ORDINAL, t.CHARGE, t.ANNOTATION"
    " FROM TRANSITION t JOIN TRANSITION_PRECURSOR_MAPPING m ON m.rowid = t.rowid ORDER BY t.rowid";
constexpr char SELECT_PROTEINS[] = "SELECT m.PEPTIDE_ID, p.PROTEIN_ACCESSION FROM PEPTIDE_PROTEIN_MAPPING m"
                                   " JOIN PROTEIN p ON p.ID = m.PROTEIN_ID ORDER BY m.rowid";
constexpr char SELECT_GENES[] = "SELECT m.PEPTIDE_ID, g.GENE_NAME FROM PEPTIDE_GENE_MAPPING m"
                                " JOIN GENE g ON g.ID = m.GENE_ID ORDER BY m.rowid";

// OpenMS reads only peptides that have a protein and a gene; it writes this gene where none is known.
constexpr char NO_GENE[] = "NA";

// Reads the entries of a library that `PqpLibrary` wrote, in order.
class PqpReader
{
public:
    // The reader has to go before the database.
    Error prepare(SqliteDatabase *database);

    // Whether there was another entry, which `entry` then holds.
    Result<bool> next(EncodedEntry *entry);

private:
    Error readPeptide(EncodedEntry *entry);
    Error readTransitions(EncodedEntry *entry);

    SqliteStatement m_precursors;
    SqliteDetails m_transitions;
    SqliteDetails m_proteinRows;
    SqliteDetails m_geneRows;
    qint64 m_peptide = -1;
    QList<QByteArray> m_proteins; // of that peptide
    QList<QByteArray> m_genes;
};

// Texts of a table that stand there once, with their ids from 0.
class PqpNames
{
public:
    Error prepare(SqliteDatabase *database, const char *insertName, const char *insertLink);
    void release();

    // Links the peptide to the names, of which new ones get a row.
    Error link(qint64 peptide, const QList<QByteArray> &names, bool isDecoy);

private:
    SqliteStatement m_insertName;
    SqliteStatement m_insertLink;
    QHash<QByteArray, qint64> m_ids;
};

class PqpLibrary : public SqliteLibrary
{
public:
    EncodedEntry encode(const LibraryEntry &entry) const override;

protected:
    Error createTables(SqliteDatabase *database, const LibraryInfo &info) override;
    Error insert(const EncodedEntry &entry) override;
    Error insertEnd(SqliteDatabase *database) override;
    Error read(SqliteDatabase *other, const EntryTaker &take) const override;

private:
    Error insertPeptide(const EncodedEntry &entry);
    Error insertTransition(const EncodedEntry &entry, const EncodedTransition &transition);

    SqliteStatement m_precursor;
    SqliteStatement m_peptide;
    SqliteStatement m_peptideLink;
    SqliteStatement m_transition;
    SqliteStatement m_transitionLink;
    PqpNames m_proteins;
    PqpNames m_genes;
    QByteArray m_lastPeptide;
    qint64 m_precursorCount = 0;
    qint64 m_peptideCount = 0;
    qint64 m_transitionCount = 0;
};

Error PqpReader::prepare(SqliteDatabase *database)
{
    if (Error error = m_precursors.prepare(database, SELECT_PRECURSORS); error.hasError())
        return error;
    if (Error error = m_transitions.prepare(database, SELECT_TRANSITIONS); error.hasError())
        return error;
    if (Error error = m_proteinRows.prepare(database, SELECT_PROTEINS); error.hasError())
        return error;
    return m_geneRows.prepare(database, SELECT_GENES);
}

Result<bool> PqpReader::next(EncodedEntry *entry)
{
    const Result<bool> hasRow = m_precursors.next();
    if (hasRow.hasError())
        return hasRow.error();
    if (!hasRow.value())
        return false;
    entry->name = m_precursors.bytes(1);
    entry->precursorMz = m_precursors.real(2);
    entry->charge = static_cast<int>(m_precursors.integer(3));
    entry->retentionTime = m_precursors.real(4);
    entry->isDecoy = m_precursors.integer(5) != 0;
    entry->peptide = m_precursors.bytes(7);
    entry->modifiedPeptide = m_precursors.bytes(8);
    if (Error error = readPeptide(entry); error.hasError())
        return error;
    if (Error error = readTransitions(entry); error.hasError())
        return error;
    return true;
}

Error PqpReader::readPeptide(EncodedEntry *entry)
{
    const qint64 peptide = m_precursors.integer(6);
    if (peptide != std::exchange(m_peptide, peptide)) {
        m_proteins.clear();
        m_genes.clear();
        const auto addProtein = [this](const SqliteStatement &row) { m_proteins.append(row.bytes(1)); };
        if (Error error = m_proteinRows.visit(peptide, addProtein); error.hasError())
            return error;
        const auto addGene = [this](const SqliteStatement &row) { m_genes.append(row.bytes(1)); };
        if (Error error = m_geneRows.visit(peptide, addGene); error.hasError())
            return error;
    }
    entry->proteins = m_proteins;
    entry->genes = m_genes;
    return {};
}

Error PqpReader::readTransitions(EncodedEntry *entry)
{
    const auto addTransition = [entry](const SqliteStatement &row) {
        entry->transitions.append({row.real(1), row.real(2), row.character(3), static_cast<int>(row.integer(4)),
                                   static_cast<int>(row.integer(5)), row.bytes(6)});
    };
    Error error = m_transitions.visit(m_precursors.integer(0), addTransition);
    entry->peakCount = static_cast<int>(entry->transitions.size());
    return error;
}

Error PqpNames::prepare(SqliteDatabase *database, const char *insertName, const char *insertLink)
{
    if (Error error = m_insertName.prepare(database, insertName); error.hasError())
        return error;
    return m_insertLink.prepare(database, insertLink);
}

void PqpNames::release()
{
    m_insertName.release();
    m_insertLink.release();
}

Error PqpNames::link(qint64 peptide, const QList<QByteArray> &names, bool isDecoy)
{
    for (const QByteArray &name : names) {
        auto id = m_ids.constFind(name);
        if (id == m_ids.cend()) {
            id = m_ids.insert(name, m_ids.size());
            if (Error error = m_insertName.run(*id, name, int(isDecoy)); error.hasError())
                return error;
        }
        if (Error error = m_insertLink.run(peptide, *id); error.hasError())
            return error;
    }
    return {};
}

EncodedEntry PqpLibrary::encode(const LibraryEntry &entry) const
{
    EncodedEntry encoded = encodedPeptide(entry);
    TextBuffer text;
    addPrecursorName(&text, entry);
    encoded.name = text.take();
    addOpenSwathNotation(&text, entry.peptidoform);
    encoded.modifiedPeptide = text.take();
    encoded.retentionTime = entry.hasRetentionTime() ? entry.retentionTime : 0.0;
    for (const FragmentPeak &peak : entry.peaks) {
        if (!isTransition(peak))
            continue;
        addIonNotation(&text, peak);
        encoded.transitions.append(
            {peak.mz, peak.intensity, peak.ionType.toLatin1(), peak.ionNumber, peak.charge, text.take()});
    }
    encoded.peakCount = static_cast<int>(encoded.transitions.size());
    if (encoded.proteins.isEmpty())
        encoded.proteins.append(QByteArray(""));
    for (const LibraryProtein &protein : entry.proteins) {
        if (!protein.gene.isEmpty() && !encoded.genes.contains(protein.gene))
            encoded.genes.append(protein.gene);
    }
    if (encoded.genes.isEmpty())
        encoded.genes.append(NO_GENE);
    return encoded;
}

Error PqpLibrary::createTables(SqliteDatabase *database, const LibraryInfo &)
{
    if (Error error = database->run(TABLES); error.hasError())
        return error;
    const std::pair<SqliteStatement *, const char *> statements[] = {
        {&m_precursor, INSERT_PRECURSOR},
        {&m_peptide, "INSERT INTO PEPTIDE VALUES (?, ?, ?, ?)"},
        {&m_peptideLink, "INSERT INTO PRECURSOR_PEPTIDE_MAPPING VALUES (?, ?)"},
        {&m_transition, INSERT_TRANSITION},
        {&m_transitionLink, "INSERT INTO TRANSITION_PRECURSOR_MAPPING VALUES (?, ?)"}};
    for (const auto &[statement, sql] : statements) {
        if (Error error = statement->prepare(database, sql); error.hasError())
            return error;
    }
    if (Error error = m_proteins.prepare(database, "INSERT INTO PROTEIN VALUES (?, ?, ?)",
                                         "INSERT INTO PEPTIDE_PROTEIN_MAPPING VALUES (?, ?)");
        error.hasError())
        return error;
    return m_genes.prepare(database, "INSERT INTO GENE VALUES (?, ?, ?)",
                           "INSERT INTO PEPTIDE_GENE_MAPPING VALUES (?, ?)");
}

Error PqpLibrary::insert(const EncodedEntry &entry)
{
    if (entry.modifiedPeptide != m_lastPeptide) {
        if (Error error = insertPeptide(entry); error.hasError())
            return error;
    }
    if (Error error = m_precursor.run(m_precursorCount, entry.name, entry.precursorMz, entry.charge,
                                      entry.retentionTime, int(entry.isDecoy));
        error.hasError())
        return error;
    if (Error error = m_peptideLink.run(m_precursorCount, m_peptideCount - 1); error.hasError())
        return error;
    for (const EncodedTransition &transition : entry.transitions) {
        if (Error error = insertTransition(entry, transition); error.hasError())
            return error;
    }
    ++m_precursorCount;
    return {};
}

Error PqpLibrary::insertPeptide(const EncodedEntry &entry)
{
    m_lastPeptide = entry.modifiedPeptide;
    const qint64 id = m_peptideCount++;
    if (Error error = m_peptide.run(id, entry.peptide, entry.modifiedPeptide, int(entry.isDecoy)); error.hasError())
        return error;
    if (Error error = m_proteins.link(id, entry.proteins, entry.isDecoy); error.hasError())
        return error;
    return m_genes.link(id, entry.genes, entry.isDecoy);
}

Error PqpLibrary::insertTransition(const EncodedEntry &entry, const EncodedTransition &transition)
{
    const qint64 id = m_transitionCount++;
    if (Error error = m_transition.run(id, entry.name + '_' + transition.annotation, transition.mz, transition.charge,
                                       QByteArray(1, transition.ionType), transition.annotation, transition.ionNumber,
                                       transition.intensity, int(entry.isDecoy));
        error.hasError())
        return error;
    return m_transitionLink.run(id, m_precursorCount);
}

Error PqpLibrary::insertEnd(SqliteDatabase *)
{
    for (SqliteStatement *statement : {&m_precursor, &m_peptide, &m_peptideLink, &m_transition, &m_transitionLink})
        statement->release();
    m_proteins.release();
    m_genes.release();
    return {};
}

Error PqpLibrary::read(SqliteDatabase *other, const EntryTaker &take) const
{
    return takeAll<PqpReader>(other, take);
}

} // namespace

std::unique_ptr<SqliteLibrary> makePqpLibrary()
{
    return std::make_unique<PqpLibrary>();
}

} // namespace zav
