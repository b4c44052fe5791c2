// SPDX-License-Identifier: Apache-2.0
#include "PeptideDigest.h"

#include "Digester.h"
#include "FastaReader.h"
#include "PeptideCollector.h"
#include "PeptideTableReader.h"

#include <zav/Peptidoform.h>

namespace zav {

namespace {

DecoyMaker::FixedEnd fixedEnd(const Enzyme &enzyme)
{
    return enzyme.cutsBeforeItsResidue() ? DecoyMaker::FirstResidue : DecoyMaker::LastResidue;
}

void report(const DigestionHooks &hooks, double fraction)
{
    if (hooks.progress)
        hooks.progress(fraction);
}

Error addProtein(const FastaReader &fasta, Digester *digester, PeptideCollector *collector)
{
    const ProteinTable::Place place = collector->proteins().add(fasta.protein());
    DigestionCounts &counts = collector->counts();
    ++counts.proteins;
    counts.repeatedAccessions += place.isNew ? 0 : 1;
    counts.emptyProteins += fasta.sequence().isEmpty() ? 1 : 0;
    return digester->digest(fasta.sequence(), [&](QByteArrayView peptide, ProteinEnds ends) {
        return collector->add(peptide, {place.index, ends, {}});
    });
}

/// `text` is a row's: residues, or ProForma, which has brackets.
Error addPeptide(const QByteArray &text, std::optional<int> protein, const DigestionOptions &options,
                 PeptideCollector *collector)
{
    QByteArray peptide = text;
    QByteArray named;
    if (text.contains('[')) {
        const Result<Peptidoform> peptidoform = Peptidoform::fromProForma(QString::fromUtf8(text));
        if (peptidoform.hasError())
            return collector->skipUnreadable(text, protein, peptidoform.error().message());
        peptide = peptidoform.value().sequence().toLatin1();
        if (!peptidoform.value().modifications().isEmpty())
            named = peptidoform.value().toProForma().toLatin1();
    }
    if (peptide.size() >= options.minimumLength && peptide.size() <= options.maximumLength)
        return collector->add(peptide, {protein, {}, named});
    return collector->skip(text, protein,
                           QStringLiteral("%1 residues, not %2 to %3")
                               .arg(peptide.size())
                               .arg(options.minimumLength)
                               .arg(options.maximumLength));
}

Error addRow(const PeptideTableReader &table, const DigestionOptions &options, PeptideCollector *collector)
{
    if (table.proteins().isEmpty())
        return addPeptide(table.peptide(), std::nullopt, options, collector);
    for (const Protein &protein : table.proteins()) {
        const int index = collector->proteins().add(protein).index;
        if (Error error = addPeptide(table.peptide(), index, options, collector); error.hasError())
            return error;
    }
    return {};
}

} // namespace

Result<DigestedPeptides> digestFasta(const QString &path, const PeptideRequest &request, const DigestionHooks &hooks)
{
    Result<Digester> digester = Digester::create(request.digestion);
    if (digester.hasError())
        return digester.error();
    Digester cutter = std::move(digester).value();
    FastaReader fasta(path);
    if (Error error = fasta.open(); error.hasError())
        return error;
    PeptideCollector collector(request, fixedEnd(cutter.enzyme()), hooks);
    while (fasta.next()) {
        if (Error error = addProtein(fasta, &cutter, &collector); error.hasError())
            return error;
        report(hooks, fasta.fractionRead());
    }
    if (fasta.error().hasError())
        return fasta.error();
    if (collector.counts().proteins == 0)
        return cannotRead(fasta.name(), QStringLiteral("it holds no protein (no line that begins with '>')"));
    return collector.finish();
}

Result<DigestedPeptides> readPeptideTable(const QString &path, const PeptideRequest &request,
                                          const DigestionHooks &hooks)
{
    const Result<Digester> digester = Digester::create(request.digestion);
    if (digester.hasError())
        return digester.error();
    PeptideTableReader table(path);
    if (Error error = table.open(); error.hasError())
        return error;
    PeptideCollector collector(request, fixedEnd(digester.value().enzyme()), hooks);
    while (table.next()) {
        if (Error error = addRow(table, request.digestion, &collector); error.hasError())
            return error;
        report(hooks, table.fractionRead());
    }
    if (table.error().hasError())
        return table.error();
    collector.counts().proteins = collector.proteins().count();
    return collector.finish();
}

} // namespace zav
