// SPDX-License-Identifier: Apache-2.0
#include "BlibReader.h"

namespace zav {

namespace {

constexpr char SELECT_SPECTRA[] =
    "SELECT s.id, s.peptideSeq, s.precursorMZ, s.precursorCharge, s.peptideModSeq, s.numPeaks, s.totalIonCurrent,"
    " p.peakMZ, p.peakIntensity FROM RefSpectra s JOIN RefSpectraPeaks p ON p.rowid = s.id ORDER BY s.id";
constexpr char SELECT_MODIFICATIONS[] = "SELECT RefSpectraID, mass FROM Modifications ORDER BY id";
constexpr char SELECT_PROTEINS[] = "SELECT l.RefSpectraId, p.accession FROM RefSpectraProteins l"
                                   " JOIN Proteins p ON p.id = l.ProteinId ORDER BY l.rowid";

} // namespace

Error BlibReader::prepare(SqliteDatabase *database)
{
    if (Error error = m_spectra.prepare(database, SELECT_SPECTRA); error.hasError())
        return error;
    if (Error error = m_modifications.rows.prepare(database, SELECT_MODIFICATIONS); error.hasError())
        return error;
    if (Error error = m_proteins.rows.prepare(database, SELECT_PROTEINS); error.hasError())
        return error;
    if (Error error = advance(&m_modifications); error.hasError())
        return error;
    return advance(&m_proteins);
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
    entry->peakCount = static_cast<int>(m_spectra.integer(5));
    entry->totalIonCurrent = m_spectra.real(6);
    entry->masses = m_spectra.bytes(7);
    entry->intensities = m_spectra.bytes(8);
    if (Error error = readSides(m_spectra.integer(0), entry); error.hasError())
        return error;
    return true;
}

Error BlibReader::readSides(qint64 spectrum, EncodedEntry *entry)
{
    while (m_modifications.hasRow && m_modifications.rows.integer(0) == spectrum) {
        entry->cysteineMass = m_modifications.rows.real(1);
        if (Error error = advance(&m_modifications); error.hasError())
            return error;
    }
    while (m_proteins.hasRow && m_proteins.rows.integer(0) == spectrum) {
        entry->proteins.append(m_proteins.rows.bytes(1));
        if (Error error = advance(&m_proteins); error.hasError())
            return error;
    }
    return {};
}

Error BlibReader::advance(Side *side)
{
    const Result<bool> hasRow = side->rows.next();
    if (hasRow.hasError())
        return hasRow.error();
    side->hasRow = hasRow.value();
    return {};
}

} // namespace zav
