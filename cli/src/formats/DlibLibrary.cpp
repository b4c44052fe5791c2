// SPDX-License-Identifier: Apache-2.0
#include "SqliteDatabase.h"
#include "SqliteLibrary.h"

#include <utility>

namespace zav {

namespace {

constexpr int MASS_DECIMALS = 6;
constexpr double UNKNOWN_TIME = -1;

constexpr char TABLES[] =
    "CREATE TABLE metadata (Key TEXT NOT NULL, Value TEXT NOT NULL);"
    "CREATE TABLE entries (PrecursorMz REAL NOT NULL, PrecursorCharge INT NOT NULL, PeptideModSeq TEXT NOT NULL,"
    " PeptideSeq TEXT NOT NULL, Copies INT NOT NULL, RTInSeconds REAL NOT NULL, Score REAL NOT NULL,"
    " MassEncodedLength INT NOT NULL, MassArray BLOB NOT NULL, IntensityEncodedLength INT NOT NULL,"
    " IntensityArray BLOB NOT NULL, CorrelationEncodedLength INT, CorrelationArray BLOB, RTInSecondsStart REAL,"
    " RTInSecondsStop REAL, MedianChromatogramEncodedLength INT, MedianChromatogramArray BLOB,"
    " SourceFile TEXT NOT NULL);"
    "CREATE TABLE peptidetoprotein (PeptideSeq TEXT NOT NULL, isDecoy BOOLEAN, ProteinAccession TEXT NOT NULL);"
    "INSERT INTO metadata VALUES ('version', '0.1.14');"
    "INSERT INTO metadata VALUES ('staleProteinMapping', 'true')";

constexpr char INDICES[] =
    "CREATE UNIQUE INDEX PeptideModSeq_PrecursorCharge_SourceFile_Entries_index"
    " ON entries (PeptideModSeq, PrecursorCharge, SourceFile);"
    "CREATE INDEX PeptideSeq_Entries_index ON entries (PeptideSeq);"
    "CREATE INDEX PrecursorMz_Entries_index ON entries (PrecursorMz);"
    "CREATE INDEX PeptideSeq_PeptideToProtein_index ON peptidetoprotein (PeptideSeq);"
    "CREATE INDEX ProteinAccession_PeptideToProtein_index ON peptidetoprotein (ProteinAccession)";

constexpr char INSERT_ENTRY[] =
    "INSERT INTO entries (PrecursorMz, PrecursorCharge, PeptideModSeq, PeptideSeq, Copies, RTInSeconds, Score,"
    " MassEncodedLength, MassArray, IntensityEncodedLength, IntensityArray, SourceFile)"
    " VALUES (?, ?, ?, ?, 1, ?, 0, ?, ?, ?, ?, 'predicted')";

constexpr char SELECT_ENTRIES[] = "SELECT PrecursorMz, PrecursorCharge, PeptideModSeq, PeptideSeq, RTInSeconds,"
                                  " MassEncodedLength, MassArray, IntensityArray FROM entries ORDER BY rowid";

EncodedEntry entryOfRow(const SqliteStatement &row)
{
    EncodedEntry entry;
    entry.precursorMz = row.real(0);
    entry.charge = static_cast<int>(row.integer(1));
    entry.modifiedPeptide = row.bytes(2);
    entry.peptide = row.bytes(3);
    entry.retentionTime = row.real(4);
    entry.peakCount = row.count(5, sizeof(double));
    entry.masses = row.bytes(6);
    entry.intensities = row.bytes(7);
    return entry;
}

Error readProteins(SqliteStatement *links, EncodedEntry *entry)
{
    links->ask(entry->peptide);
    for (;;) {
        const Result<bool> hasRow = links->next();
        if (hasRow.hasError())
            return hasRow.error();
        if (!hasRow.value())
            return {};
        entry->proteins.append(links->bytes(0));
        entry->isDecoy = links->integer(1) != 0;
    }
}

class DlibLibrary : public SqliteLibrary
{
public:
    EncodedEntry encode(const LibraryEntry &entry) const override;

protected:
    Error createTables(SqliteDatabase *database, const LibraryInfo &info) override;
    Error insert(const EncodedEntry &entry) override;
    Error insertEnd(SqliteDatabase *database) override;
    Error read(SqliteDatabase *other, const EntryTaker &take) const override;

private:
    Error insertProteins(const EncodedEntry &entry);

    SqliteStatement m_entry;
    SqliteStatement m_protein;
    QByteArray m_lastPeptide;
    // Those of the last peptide. The N-terminus and the first residue are one place to this format, and so are the ends
    // of the other side, but it takes a precursor only once.
    QList<std::pair<QByteArray, int>> m_precursors;
};

EncodedEntry DlibLibrary::encode(const LibraryEntry &entry) const
{
    EncodedEntry encoded = encodedPeptide(entry);
    encodeModifications(entry, MASS_DECIMALS, &encoded);
    encoded.retentionTime = entry.hasRetentionTime() ? entry.secondsOfTime() : UNKNOWN_TIME;
    encoded.masses = compressed(massArray(entry.peaks, QSysInfo::BigEndian));
    encoded.intensities = compressed(intensityArray(entry.peaks, QSysInfo::BigEndian));
    return encoded;
}

Error DlibLibrary::createTables(SqliteDatabase *database, const LibraryInfo &)
{
    if (Error error = database->run(TABLES); error.hasError())
        return error;
    if (Error error = m_entry.prepare(database, INSERT_ENTRY); error.hasError())
        return error;
    return m_protein.prepare(database, "INSERT INTO peptidetoprotein VALUES (?, ?, ?)");
}

Error DlibLibrary::insert(const EncodedEntry &entry)
{
    // Its proteins belong to the peptide, not to each of its charges and peptidoforms.
    const bool isNewPeptide = entry.peptide != m_lastPeptide;
    if (isNewPeptide)
        m_precursors.clear();
    std::pair precursor(entry.modifiedPeptide, entry.charge);
    if (m_precursors.contains(precursor))
        return {};
    m_precursors.append(std::move(precursor));
    const int massLength = entry.peakCount * int(sizeof(double));
    const int intensityLength = entry.peakCount * int(sizeof(float));
    if (Error error =
            m_entry.run(entry.precursorMz, entry.charge, entry.modifiedPeptide, entry.peptide, entry.retentionTime,
                        massLength, SqliteBlob{entry.masses}, intensityLength, SqliteBlob{entry.intensities});
        error.hasError())
        return error;
    m_lastPeptide = entry.peptide;
    return isNewPeptide ? insertProteins(entry) : Error();
}

Error DlibLibrary::insertProteins(const EncodedEntry &entry)
{
    for (const QByteArray &accession : entry.proteins) {
        if (Error error = m_protein.run(entry.peptide, int(entry.isDecoy), accession); error.hasError())
            return error;
    }
    return {};
}

Error DlibLibrary::insertEnd(SqliteDatabase *database)
{
    m_entry.release();
    m_protein.release();
    return database->run(INDICES);
}

Error DlibLibrary::read(SqliteDatabase *other, const EntryTaker &take) const
{
    SqliteStatement entries;
    SqliteStatement links;
    if (Error error = entries.prepare(other, SELECT_ENTRIES); error.hasError())
        return error;
    if (Error error = links.prepare(other, "SELECT ProteinAccession, isDecoy FROM peptidetoprotein"
                                           " WHERE PeptideSeq = ? ORDER BY rowid");
        error.hasError())
        return error;
    for (;;) {
        const Result<bool> hasRow = entries.next();
        if (hasRow.hasError())
            return hasRow.error();
        if (!hasRow.value())
            return {};
        EncodedEntry entry = entryOfRow(entries);
        if (Error error = readProteins(&links, &entry); error.hasError())
            return error;
        if (Error error = take(entry); error.hasError())
            return error;
    }
}

} // namespace

std::unique_ptr<SqliteLibrary> makeDlibLibrary()
{
    return std::make_unique<DlibLibrary>();
}

} // namespace zav
