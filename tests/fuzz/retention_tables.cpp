// SPDX-License-Identifier: Apache-2.0
//
// Door: lists of peptides to predict retention times for, and tables of observed times.
// Promises: every row is a peptide or says why not; times are finite; plain and gzipped content read the same, in
// blocks of any size.
#include "FuzzSupport.h"
#include "ObservedTimes.h"
#include "RetentionTable.h"

#include <cmath>

namespace zav::fuzz {
namespace {

constexpr char NAME[] = "input.tsv";

Reading readList(const QString &path, qsizetype blockSize)
{
    PeptidoformList list;
    if (Error error = list.open(path); error.hasError())
        return {{}, error.message()};
    Reading reading;
    for (;;) {
        const Result<QList<RetentionRow>> rows = list.next(blockSize);
        reading.error = rows.error().message();
        require(rows.hasError() == !reading.error.isEmpty(), "a failure says why");
        if (rows.hasError() || rows.value().isEmpty())
            return reading;
        require(rows.value().size() <= blockSize, "a block is no larger than asked for");
        for (const RetentionRow &row : rows.value()) {
            const bool isRead = !row.peptidoform.hasError();
            reading.parts.append(bits(row.text, row.line, row.peptidoform.error().message(),
                                      isRead ? row.peptidoform.value().toProForma() : QString()));
        }
    }
}

Reading readObserved(const QString &path)
{
    const Result<ObservedTimes> observed = readObservedTimes(path);
    Reading reading{{}, observed.error().message()};
    require(observed.hasError() == !reading.error.isEmpty(), "a failure says why");
    if (observed.hasError())
        return reading;
    for (const ObservedRetentionTime &pair : observed.value().pairs) {
        require(std::isfinite(pair.time) && pair.peptidoform.length() > 0, "a pair is a peptide and a time");
        reading.parts.append(bits(pair.peptidoform.toProForma(), pair.time));
    }
    reading.parts.append(bits(observed.value().problems));
    return reading;
}

} // namespace

void tryInput(const QByteArray &input)
{
    const Reading list = readBothWays(NAME, input, [](const QString &path) { return readList(path, 1000); });
    const QString path = fileWith(NAME, input);
    const Reading oneByOne = readList(path, 1);
    require(oneByOne.error == list.error, "the size of the blocks makes no difference to an error");
    require(!list.error.isEmpty() || oneByOne.parts == list.parts, "the size of the blocks makes no difference");
    readBothWays(NAME, input, readObserved);
}

} // namespace zav::fuzz
