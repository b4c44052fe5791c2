// SPDX-License-Identifier: Apache-2.0
#include "SqliteDatabase.h"
#include "SqliteLibrary.h"

#include <QtCore/QHash>

namespace zav {

namespace {

constexpr int MASS_DECIMALS = 5;

// Columns, their types and the fixed rows are those of BiblioSpec's own reference files.
constexpr char TABLES[] =
    "CREATE TABLE LibInfo (libLSID TEXT, createTime TEXT, numSpecs INTEGER, majorVersion INTEGER,"
    " minorVersion INTEGER);"
    "CREATE TABLE SpectrumSourceFiles (id INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, fileName VARCHAR(512),"
    " idFileName VARCHAR(512), cutoffScore REAL);"
    "CREATE TABLE ScoreTypes (id INTEGER PRIMARY KEY, scoreType VARCHAR(128), probabilityType VARCHAR(128));"
    "CREATE TABLE IonMobilityTypes (id INTEGER PRIMARY KEY, ionMobilityType VARCHAR(128));"
    "CREATE TABLE RefSpectra (id INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, peptideSeq VARCHAR(150),"
    " precursorMZ REAL, precursorCharge INTEGER, peptideModSeq VARCHAR(200), prevAA CHAR(1), nextAA CHAR(1),"
    " copies INTEGER, numPeaks INTEGER, ionMobility REAL, collisionalCrossSectionSqA REAL,"
    " ionMobilityHighEnergyOffset REAL, ionMobilityType TINYINT, retentionTime REAL, startTime REAL, endTime REAL,"
    " totalIonCurrent REAL, moleculeName VARCHAR(128), chemicalFormula VARCHAR(128), precursorAdduct VARCHAR(128),"
    " inchiKey VARCHAR(128), otherKeys VARCHAR(128), fileID INTEGER, SpecIDinFile VARCHAR(256), score REAL,"
    " scoreType TINYINT);"
    "CREATE TABLE RefSpectraPeaks (RefSpectraID INTEGER, peakMZ BLOB, peakIntensity BLOB);"
    "CREATE TABLE Modifications (id INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, RefSpectraID INTEGER,"
    " position INTEGER, mass REAL);"
    "CREATE TABLE Proteins (id INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, accession VARCHAR(200));"
    "CREATE TABLE RefSpectraProteins (RefSpectraId INTEGER NOT NULL, ProteinId INTEGER NOT NULL);"
    "INSERT INTO ScoreTypes VALUES (0, 'UNKNOWN', 'NOT_A_PROBABILITY_VALUE');"
    "INSERT INTO IonMobilityTypes VALUES (0, 'none'), (1, 'driftTime(msec)'), (2, 'inverseK0(Vsec/cm^2)'),"
    " (3, 'compensation(V)');"
    "INSERT INTO SpectrumSourceFiles VALUES (1, 'predicted', NULL, 0)";

constexpr char INDICES[] = "CREATE INDEX idxPeptide ON RefSpectra (peptideSeq, precursorCharge);"
                           "CREATE INDEX idxPeptideMod ON RefSpectra (peptideModSeq, precursorCharge);"
                           "CREATE INDEX idxRefIdPeaks ON RefSpectraPeaks (RefSpectraID)";

constexpr char INSERT_SPECTRUM[] =
    "INSERT INTO RefSpectra (id, peptideSeq, precursorMZ, precursorCharge, peptideModSeq, prevAA, nextAA, copies,"
    " numPeaks, ionMobility, collisionalCrossSectionSqA, ionMobilityHighEnergyOffset, ionMobilityType, retentionTime,"
    " totalIonCurrent, moleculeName, chemicalFormula, precursorAdduct, inchiKey, otherKeys, fileID, SpecIDinFile,"
    " score, scoreType)"
    " VALUES (?, ?, ?, ?, ?, '-', '-', 1, ?, 0, 0, 0, 0, ?, ?, '', '', '', '', '', 1, ?, 0, 0)";

constexpr char SELECT_SPECTRA[] =
    "SELECT s.id, s.peptideSeq, s.precursorMZ, s.precursorCharge, s.peptideModSeq, s.numPeaks, s.retentionTime,"
    " s.totalIonCurrent, p.peakMZ, p.peakIntensity FROM RefSpectra s JOIN RefSpectraPeaks p ON p.rowid = s.id ORDER BY "
    "s.id";
constexpr char SELECT_MODIFICATIONS[] = "SELECT RefSpectraID, position, mass FROM Modifications ORDER BY id";
constexpr char SELECT_PROTEINS[] = "SELECT l.RefSpectraId, p.accession FROM RefSpectraProteins l"
                                   " JOIN Proteins p ON p.id = l.ProteinId ORDER BY l.rowid";

constexpr char INSERT_INFO[] = "INSERT INTO LibInfo VALUES (?, 'Thu Jan 01 00:00:00 1970', ?, 1, 10)";

QByteArray packed(const QByteArray &array)
{
    QByteArray stream = compressed(array);
    return stream.size() < array.size() ? stream : array;
}

// Reads the entries of a library that `BlibLibrary` wrote, in order.
class BlibReader
{
public:
    // The reader has to go before the database.
    Error prepare(SqliteDatabase *database);

    // Whether there was another entry, which `entry` then holds.
    Result<bool> next(EncodedEntry *entry);

private:
    Error readDetails(qint64 spectrum, EncodedEntry *entry);

    SqliteStatement m_spectra;
    SqliteDetails m_modifications;
    SqliteDetails m_proteins;
};

class BlibLibrary : public SqliteLibrary
{
public:
    EncodedEntry encode(const LibraryEntry &entry) const override;

protected:
    Error createTables(SqliteDatabase *database, const LibraryInfo &info) override;
    Error insert(const EncodedEntry &entry) override;
    Error insertEnd(SqliteDatabase *database) override;
    Error read(SqliteDatabase *other, const EntryTaker &take) const override;

private:
    Error insertModifications(const EncodedEntry &entry);
    Error insertProteins(const EncodedEntry &entry);

    SqliteStatement m_spectrum;
    SqliteStatement m_peaks;
    SqliteStatement m_modification;
    SqliteStatement m_protein;
    SqliteStatement m_proteinLink;
    QByteArray m_identifier;
    QHash<QByteArray, qint64> m_proteinIds;
    qint64 m_count = 0;
};

Error BlibReader::prepare(SqliteDatabase *database)
{
    if (Error error = m_spectra.prepare(database, SELECT_SPECTRA); error.hasError())
        return error;
    if (Error error = m_modifications.prepare(database, SELECT_MODIFICATIONS); error.hasError())
        return error;
    return m_proteins.prepare(database, SELECT_PROTEINS);
}

Result<bool> BlibReader::next(EncodedEntry *entry)
{
    const Result<bool> hasRow = m_spectra.next();
    if (hasRow.hasError())
        return hasRow.error();
    if (!hasRow.value())
        return false;
    entry->peptide = m_spectra.bytes(1);
    entry->precursorMz = m_spectra.real(2);
    entry->charge = static_cast<int>(m_spectra.integer(3));
    entry->modifiedPeptide = m_spectra.bytes(4);
    entry->peakCount = m_spectra.count(5);
    entry->retentionTime = m_spectra.real(6);
    entry->totalIonCurrent = m_spectra.real(7);
    entry->masses = m_spectra.bytes(8);
    entry->intensities = m_spectra.bytes(9);
    if (Error error = readDetails(m_spectra.integer(0), entry); error.hasError())
        return error;
    return true;
}

Error BlibReader::readDetails(qint64 spectrum, EncodedEntry *entry)
{
    const auto addModification = [entry](const SqliteStatement &row) {
        entry->modifications.append({static_cast<int>(row.integer(1)), row.real(2)});
    };
    if (Error error = m_modifications.visit(spectrum, addModification); error.hasError())
        return error;
    return m_proteins.visit(spectrum, [entry](const SqliteStatement &row) { entry->proteins.append(row.bytes(1)); });
}

EncodedEntry BlibLibrary::encode(const LibraryEntry &entry) const
{
    EncodedEntry encoded = encodedPeptide(entry);
    encodeModifications(entry, MASS_DECIMALS, &encoded);
    encoded.retentionTime = entry.hasRetentionTime() ? entry.retentionTime : 0.0;
    encoded.totalIonCurrent = storedIntensity(entry.peaks);
    encoded.masses = packed(massArray(entry.peaks, QSysInfo::LittleEndian));
    encoded.intensities = packed(intensityArray(entry.peaks, QSysInfo::LittleEndian));
    return encoded;
}

Error BlibLibrary::createTables(SqliteDatabase *database, const LibraryInfo &info)
{
    m_identifier = "urn:lsid:proteome.gs.washington.edu:spectral_library:bibliospec:nr:" + info.name.toUtf8();
    if (Error error = database->run(TABLES); error.hasError())
        return error;
    if (Error error = m_spectrum.prepare(database, INSERT_SPECTRUM); error.hasError())
        return error;
    if (Error error = m_peaks.prepare(database, "INSERT INTO RefSpectraPeaks VALUES (?, ?, ?)"); error.hasError())
        return error;
    if (Error error = m_modification.prepare(database, "INSERT INTO Modifications (RefSpectraID, position, mass)"
                                                       " VALUES (?, ?, ?)");
        error.hasError())
        return error;
    if (Error error = m_protein.prepare(database, "INSERT INTO Proteins VALUES (?, ?)"); error.hasError())
        return error;
    return m_proteinLink.prepare(database, "INSERT INTO RefSpectraProteins VALUES (?, ?)");
}

Error BlibLibrary::insert(const EncodedEntry &entry)
{
    ++m_count;
    if (Error error =
            m_spectrum.run(m_count, entry.peptide, entry.precursorMz, entry.charge, entry.modifiedPeptide,
                           entry.peakCount, entry.retentionTime, entry.totalIonCurrent, QByteArray::number(m_count));
        error.hasError())
        return error;
    if (Error error = m_peaks.run(m_count, SqliteBlob{entry.masses}, SqliteBlob{entry.intensities}); error.hasError())
        return error;
    if (Error error = insertModifications(entry); error.hasError())
        return error;
    return insertProteins(entry);
}

Error BlibLibrary::insertModifications(const EncodedEntry &entry)
{
    for (const ModifiedResidue &residue : entry.modifications) {
        if (Error error = m_modification.run(m_count, residue.position, residue.mass); error.hasError())
            return error;
    }
    return {};
}

Error BlibLibrary::insertProteins(const EncodedEntry &entry)
{
    for (const QByteArray &accession : entry.proteins) {
        qint64 &id = m_proteinIds[accession];
        if (id == 0) {
            id = m_proteinIds.size();
            if (Error error = m_protein.run(id, accession); error.hasError())
                return error;
        }
        if (Error error = m_proteinLink.run(m_count, id); error.hasError())
            return error;
    }
    return {};
}

Error BlibLibrary::insertEnd(SqliteDatabase *database)
{
    for (SqliteStatement *statement : {&m_spectrum, &m_peaks, &m_modification, &m_protein, &m_proteinLink})
        statement->release();
    SqliteStatement info;
    if (Error error = info.prepare(database, INSERT_INFO); error.hasError())
        return error;
    if (Error error = info.run(m_identifier, m_count); error.hasError())
        return error;
    return database->run(INDICES);
}

Error BlibLibrary::read(SqliteDatabase *other, const EntryTaker &take) const
{
    return takeAll<BlibReader>(other, take);
}

} // namespace

std::unique_ptr<SqliteLibrary> makeBlibLibrary()
{
    return std::make_unique<BlibLibrary>();
}

} // namespace zav
