// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryEntry.h"
#include "TextBuffer.h"

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace zav {

/// The kinds of spectral library that can be written. Dlib, Blib and Pqp are SQLite files, the others
/// text.
enum class LibraryFileKind { Msp, Tsv, Mgf, MzSpecLib, Dlib, Blib, Pqp };

/// The kind by the ending of a file's name, letter case aside: `.msp`, `.tsv`, `.mgf`, `.mzSpecLib.txt`, `.dlib`,
/// `.blib`, `.pqp`. Nothing for any other.
std::optional<LibraryFileKind> libraryFileKindOfPath(const QString &path);

/// The kind by its name, letter case aside: one of `libraryFileKindNames`. Nothing for any other.
std::optional<LibraryFileKind> libraryFileKindOfName(const QString &name);

/// "msp", "tsv", "mgf", "mzspeclib", "dlib", "blib", "pqp": what `--format` takes.
QStringList libraryFileKindNames();

/// Whether the kind is written by a `SqliteLibrary` rather than by a `LibraryFormat`.
bool isSqlite(LibraryFileKind kind);

/// Whether the kind is a list of transitions, which holds monoisotopic b and y ions only.
bool isTransitionList(LibraryFileKind kind);

/// What a library says of itself. Nothing that changes between two runs may stand here: no date, machine or folder.
struct LibraryInfo
{
    QString name;    ///< of the library, one line, not empty; mzSpecLib and BLIB write it
    QString version; ///< of this program; mzSpecLib writes it
};

/// One text format of spectral libraries. A document is `opening`, the entries in order, `closing`.
///
/// Lines end with LF and numbers have a decimal point whatever the locale: m/z with 5 decimals, the last a reader can
/// use. Every function may be called from several threads at once.
class LibraryFormat
{
public:
    LibraryFormat() = default;
    virtual ~LibraryFormat();
    LibraryFormat(const LibraryFormat &) = delete;
    LibraryFormat &operator=(const LibraryFormat &) = delete;

    virtual QByteArray opening(const LibraryInfo &info) const;

    /// Appends the text of one entry; `index` is its position in the whole library, from 0. Appends nothing for an
    /// entry of which the format can hold no peak, as readers lose their place at spectra without peaks: such an entry
    /// is left out, and its index with it.
    virtual void addEntry(const LibraryEntry &entry, qint64 index, TextBuffer *text) const = 0;

    virtual QByteArray closing() const;

    /// Whether entries hold their index, in their first line. It is known only when the entry's turn has come: after it
    /// was formatted and, where libraries are merged, after it was written.
    virtual bool numbersEntries() const;

    /// Of a format that numbers entries: whether a line is the first of an entry.
    virtual bool isFirstLine(QByteArrayView line) const;

    /// Of a format that numbers entries: the first line of any entry with that index.
    virtual QByteArray firstLine(qint64 index) const;
};

/// The format of a text kind; null for a SQLite kind, which `makeSqliteLibrary` serves.
const LibraryFormat *textLibraryFormat(LibraryFileKind kind);

/// The text format of NIST's spectral libraries, with the peptide comments of NIST and SpectraST
/// (https://chemdata.nist.gov).
///
/// MW is the neutral monoisotopic mass. Modifications stand in the comment's `Mods` (positions from 0, those of a
/// terminus at the residue there) by Unimod's name; one known by its mass alone as the signed mass, which readers that
/// know names only refuse. OpenMS takes a modified first residue for a modified N-terminus and a modified last one for
/// a modified C-terminus. The comment's `Protein` and `Gene` list several with `;`, a decoy has `Remark=DECOY`. The
/// retention time is `iRT`, a calibrated one `RetentionTime` in seconds. Intensities are scaled so that 1 becomes
/// 10000; every peak has its ion, `"y7-H2O+i^2/0.0ppm"`, or `"?"`.
const LibraryFormat &mspLibraryFormat();

/// Mascot generic format (https://www.matrixscience.com/help/data_file_help.html): TITLE is `PEPTIDE/charge`, of a
/// variant with its modifications in ProForma, of a decoy `DECOY_PEPTIDE/charge`; PEPMASS the precursor's m/z;
/// intensities are scaled so that 1 becomes 10000.
///
/// A peak has two columns, as readers take a third one for a charge. The format has no place for proteins and
/// modifications. RTINSECONDS is optional: calibrated retention times are written, an iRT is not, which has no seconds.
const LibraryFormat &mgfLibraryFormat();

/// mzSpecLib 1.0 of HUPO-PSI, its text form (https://www.psidev.info/mzspeclib), with terms of the PSI-MS vocabulary.
///
/// The peptidoform stands in ProForma notation with its charge: `C[UNIMOD:4]`, a modification known by its mass alone
/// as `C[+12.345000]`. A decoy is an `unnatural peptidoform decoy spectrum`. Each protein is a group of attributes:
/// accession, entry name, gene. Intensities are relative to 1; every peak has its ion in mzPAF notation, isotopes among
/// them, or `?`. The precursor's m/z stands in the spectrum, where readers look for it, and as a theoretical one in the
/// analyte. An iRT is the `normalized retention time`, a calibrated time the `predicted retention time`, both in
/// minutes, as the vocabulary wants a unit. A spectrum's key is its index + 1.
const LibraryFormat &mzSpecLibFormat();

/// The transition list of OpenSWATH (TransitionTSVFile of OpenMS, https://openms.de) with the columns that DIA-NN
/// wants besides (https://github.com/vdemichev/DiaNN, README): a row a fragment.
///
/// `NormalizedRetentionTime`, which both require, holds the iRT or the calibrated time in minutes, 0 where there is
/// none. Intensities are relative to 1. Modifications stand as `C(UniMod:4)`, one known by its mass alone as
/// `C[+12.345000]`. Only monoisotopic b and y ions have rows: DIA-NN takes an a for a b, both take a second isotope of
/// an ion for the ion itself. The neutral loss stands in `FragmentLossType` for DIA-NN and within `Annotation` for
/// OpenMS, gene symbols in `Genes` for the one and in `GeneName` for the other. Several proteins or genes are listed
/// with `;`.
const LibraryFormat &tsvLibraryFormat();

} // namespace zav
