// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

#include <limits>
#include <memory>
#include <optional>

namespace zav {

/// What a file says of the precursor that a trace belongs to.
struct TraceOrigin
{
    QString group;              ///< the name of its group; empty where the file does not say
    double isolationTarget = 0; ///< m/z; 0 where the file does not say
    QString peptide;            ///< everything that names the peptide; empty where the file does not say
    char polarity = 0;          ///< '+', '-', or 0 where the file does not say
};

/// One trace of intensity over retention time.
struct Chromatogram
{
    QString id;            ///< the file's own id; in a file without ids "1", "2" and so on, by order; never empty
    QList<QPointF> points; ///< (time, intensity) in acquisition order, all finite; may be empty
    QString timeUnit;      ///< "min" or "s", rarely another symbol; empty where the file does not say
    QString intensityUnit; ///< e.g. "counts"; empty where the file does not say
    TraceOrigin origin = {};
};

/// Where a trace stands in its file.
struct TracePlace
{
    qint64 offset = 0; ///< in bytes of the text
    qint64 line = 0;   ///< number of the line before it
    qint64 order = 0;  ///< number of traces before it
};

/// A trace, or why it could not be read.
struct TraceOutcome
{
    Chromatogram chromatogram; ///< with a problem, only its id counts
    Error problem;             ///< of this trace alone; its message names file and trace, or file and line
    TracePlace place;          ///< for `ChromatogramSource::seek`
};

/// The chromatograms of one file, in the file's order, one in memory at a time. One thread at a time per object.
class ChromatogramSource
{
public:
    virtual ~ChromatogramSource() = default;

    /// How many outcomes `next` yields in all, -1 where only reading tells. For stored chromatograms of an mzML file it
    /// is what the file declares, which may be wrong: good for showing progress.
    virtual qint64 count() const = 0;

    /// The next one; an empty optional at the end, from then on always.
    ///
    /// A trace that is broken (arrays of unequal length, damaged or non-finite values) is an outcome with a problem;
    /// the next call goes on behind it. An error is of the file: nothing more can be read, and every later call returns
    /// it again. What was yielded before it stays valid.
    virtual Result<std::optional<TraceOutcome>> next() = 0;

    /// Goes to a trace that `next` has yielded: `next` yields it again, then those behind it. Only for a source that
    /// was opened with `readsGroups`.
    virtual Error seek(const TracePlace &place) = 0;
};

/// What to extract from the MS1 spectra of an mzML file: the summed intensity around one m/z over time.
struct ExtractionTarget
{
    QString id;      ///< of the chromatogram that it becomes
    double mz = 0;   ///< above 0
    double ppm = 10; ///< half the width of the window: m/z * (1 +- ppm * 1e-6), both ends within it
    double rtFrom = -std::numeric_limits<double>::infinity(); ///< in the file's unit of time, included
    double rtTo = std::numeric_limits<double>::infinity();    ///< likewise
    QString group = {};                                       ///< of the targets of one precursor; may be empty
};

/// What to read.
struct ChromatogramRequest
{
    QString path;                    ///< "-" is standard input
    QString format;                  ///< "mzml", "tsv", "jsonl"; empty: by the ending, for standard input by its start
    QList<ExtractionTarget> targets; ///< empty: the chromatograms as they are stored
    bool readsGroups = false;        ///< read the column `group` of text too, and allow `seek`
};

/// Opens a file by its ending: .mzML; .tsv or .txt; .jsonl or .ndjson; each of them also with .gz behind. Text that is
/// gzipped is recognised by its content, on standard input too.
///
/// **mzML**: every stored chromatogram counts, whatever its kind, those of the total ion current and of the base peak
/// too: a run without others is often looked at through them. Units are those of the time and intensity arrays. One
/// without points is yielded as such. One without a time or an intensity array is broken. An index is not read: a wrong
/// or missing one does no harm.
///
/// **mzML with targets**: one chromatogram a target, in the order of the targets, with one point for each MS1 spectrum
/// in the target's range of time, 0 where the spectrum has nothing in the window, profile or centroided as stored. The
/// file is read once for all targets; spectra of other levels are passed over without decoding their peaks. `next`
/// reads until a spectrum lies behind the range of the next target, or to the end of the file, and then gives its
/// points away: memory holds the targets that are open and those that stand behind an open one in the list, 8 bytes a
/// point. `Failure` for a file without MS1 spectra; for a damaged one, since every trace would have a hole there; and
/// for one whose time goes back into the range of a trace that was yielded.
///
/// **TSV**: a heading with the columns `rt`, `intensity` and optionally `id`, in any order and among others, separated
/// by tabs; empty lines and lines that begin with `#` are passed over. The rows of an id follow each other; an id that
/// comes back later is an error of the file. Without `id` the file is one trace. No units. A
/// trace of more than 16,777,216 points is broken.
///
/// **JSON lines**: an object a line, `{"id": "a", "rt": [1, 2], "intensity": [5, 7], "rt_unit": "min"}`; `id` (text or
/// number) and `rt_unit` ("min" or "s") may be missing. A line may have 16 MiB.
///
/// **With `readsGroups`** a TSV file may have a column `group`, the same in all rows of a trace, and a JSON object a
/// `group` (text or number). Gzipped content and standard input are copied to a temporary file, inflated: `seek` needs
/// to go to and fro. So damage behind the end of a gzipped mzML document is an error there, and is not seen otherwise.
/// Extracted traces stay in memory until the source is gone.
///
/// Messages name the file, or "standard input". `InvalidInput` for an unknown ending or format and for targets with a
/// file that is not mzML; `Failure` for a file that cannot be read as what its ending says or that holds no
/// chromatogram.
Result<std::unique_ptr<ChromatogramSource>> openChromatograms(const ChromatogramRequest &request);

} // namespace zav
