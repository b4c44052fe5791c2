// SPDX-License-Identifier: Apache-2.0
//
// Door: a list of precursors.
// Promises: every row is a precursor or says why not; plain and gzipped content read the same; what is read and written
// reads the same; what passes `checkPrecursor` can be weighed.
#include "FuzzSupport.h"
#include "PeptideList.h"
#include "PeptideMasses.h"

#include <cmath>

namespace zav::fuzz {
namespace {

constexpr char NAME[] = "input.tsv";

QByteArray bitsOf(const Precursor &precursor)
{
    return bits(precursor.peptide, precursor.charge, precursor.collisionEnergy);
}

Reading read(const QString &path)
{
    const Result<QList<PeptideListRow>> rows = readPeptideList(path);
    Reading reading{{}, rows.error().message()};
    require(rows.hasError() == !reading.error.isEmpty(), "a failure says why");
    if (rows.hasError())
        return reading;
    for (const PeptideListRow &row : rows.value())
        reading.parts.append(bits(row.line, row.problem, row.scan) + bitsOf(row.precursor));
    return reading;
}

void requireMass(const Precursor &precursor)
{
    displayName(precursor);
    if (checkPrecursor(precursor, [](int charge) { return charge >= 1 && charge <= 5 ? 50 : 0; }).hasError())
        return;
    const Result<Peptidoform> peptidoform = peptidoformOf(precursor.peptide, 57.02146);
    require(!peptidoform.hasError(), "a precursor that passed has a peptidoform");
    require(std::isfinite(peptideMasses::precursorMz(peptidoform.value(), precursor.charge)),
            "a precursor that passed has a mass");
}

} // namespace

void tryInput(const QByteArray &input)
{
    readBothWays(NAME, input, read);
    const Result<QList<PeptideListRow>> rows = readPeptideList(fileWith(NAME, input));
    if (rows.hasError())
        return;
    QByteArray table = "peptide\tcharge\tenergy\tscan\n";
    QList<QByteArray> expected;
    for (const PeptideListRow &row : rows.value()) {
        requireMass(row.precursor);
        // Rows whose first cell is empty or a comment are none when they stand alone.
        const QString &peptide = row.precursor.peptide;
        if (!row.problem.isEmpty() || peptide.startsWith(QLatin1Char('#')))
            continue;
        table += peptide.toUtf8() + '\t' + QByteArray::number(row.precursor.charge) + '\t';
        if (!std::isnan(row.precursor.collisionEnergy))
            table += numberText(row.precursor.collisionEnergy);
        table += '\t' + row.scan.toUtf8() + '\n';
        expected.append(bitsOf(row.precursor) + bits(row.scan));
    }
    const Result<QList<PeptideListRow>> again = readPeptideList(fileWith(NAME, table));
    require(!again.hasError() && again.value().size() == expected.size(), "written rows are all read");
    for (qsizetype i = 0; i < expected.size(); ++i)
        require(bitsOf(again.value()[i].precursor) + bits(again.value()[i].scan) == expected[i],
                "a written row reads the same");
}

} // namespace zav::fuzz
