// SPDX-License-Identifier: Apache-2.0
//
// How long each format of spectral libraries takes for one entry of 40 peaks, of which all have a row in the transition
// list; for the SQLite formats what workers do, and what the one writer does. Refuses to time entries left out.
#include "LibraryFormat.h"
#include "SqliteLibrary.h"

#include <benchmark/benchmark.h>

#include <QtCore/QTemporaryDir>

namespace zav {
namespace {

constexpr int PEAK_COUNT = 40;

LibraryEntry example()
{
    LibraryEntry entry;
    entry.peptidoform =
        Peptidoform(QStringLiteral("LQSRPAAPPAPGPGQLCTLR"), {{17, modifications::findByAccession(4)->modification}});
    entry.charge = 2;
    entry.precursorMz = 1036.05321;
    entry.proteins = {{"P12345", "TEST", {}}, {"Q67890", "TEST2", {}}};
    for (int i = 0; i < PEAK_COUNT; ++i) {
        const QChar type = QLatin1Char(i % 2 == 0 ? 'y' : 'b');
        const QString loss = i % 5 == 0 ? QStringLiteral("-H2O") : QString();
        entry.peaks.append({175.11895 + 41.0371 * i, 1.0 / (i + 1), type, i / 2 + 1, i % 3 == 0 ? 2 : 1, loss, 0});
    }
    return entry;
}

void formatsText(benchmark::State &state, LibraryFileKind kind)
{
    const LibraryEntry entry = example();
    const LibraryFormat *format = textLibraryFormat(kind);
    TextBuffer text;
    format->addEntry(entry, 0, &text);
    if (text.view().count('\n') < PEAK_COUNT)
        state.SkipWithError("an entry without its peaks");
    state.counters["bytes"] = static_cast<double>(text.size());
    for (auto _ : state) {
        text.clear();
        format->addEntry(entry, 0, &text);
        benchmark::DoNotOptimize(text.view().data());
    }
}

void encodesRow(benchmark::State &state, LibraryFileKind kind)
{
    const LibraryEntry entry = example();
    const auto library = makeSqliteLibrary(kind);
    if (library->encode(entry).peakCount != PEAK_COUNT)
        state.SkipWithError("an entry without its peaks");
    for (auto _ : state)
        benchmark::DoNotOptimize(library->encode(entry));
}

void writesRow(benchmark::State &state, LibraryFileKind kind)
{
    const QTemporaryDir folder;
    const auto library = makeSqliteLibrary(kind);
    if (library->open(folder.filePath(QStringLiteral("library")), {QStringLiteral("benchmark"), {}}).hasError())
        state.SkipWithError("no file");
    EncodedEntry entry = library->encode(example());
    int number = 0;
    for (auto _ : state) {
        // Another peptide each time: one is stored once with a charge.
        entry.peptide = QByteArray::number(number++);
        entry.modifiedPeptide = entry.peptide;
        if (library->add(entry).hasError())
            state.SkipWithError("not written");
    }
}

BENCHMARK_CAPTURE(formatsText, msp, LibraryFileKind::Msp);
BENCHMARK_CAPTURE(formatsText, tsv, LibraryFileKind::Tsv);
BENCHMARK_CAPTURE(formatsText, mgf, LibraryFileKind::Mgf);
BENCHMARK_CAPTURE(formatsText, mzspeclib, LibraryFileKind::MzSpecLib);
BENCHMARK_CAPTURE(encodesRow, dlib, LibraryFileKind::Dlib);
BENCHMARK_CAPTURE(encodesRow, blib, LibraryFileKind::Blib);
BENCHMARK_CAPTURE(encodesRow, pqp, LibraryFileKind::Pqp);
BENCHMARK_CAPTURE(writesRow, dlib, LibraryFileKind::Dlib);
BENCHMARK_CAPTURE(writesRow, blib, LibraryFileKind::Blib);
BENCHMARK_CAPTURE(writesRow, pqp, LibraryFileKind::Pqp);

} // namespace
} // namespace zav

BENCHMARK_MAIN();
