// SPDX-License-Identifier: Apache-2.0
//
// Door: proteins of a FASTA file.
// Promises: residues are letters, `*` or `-`; plain and gzipped content read the same; a file that is cut gives the
// proteins before the cut; what is read and written reads the same.
#include "FastaReader.h"
#include "FuzzSupport.h"

#include <algorithm>

namespace zav::fuzz {
namespace {

constexpr char NAME[] = "input.fasta";

bool isResidue(char character)
{
    return (character >= 'A' && character <= 'Z') || character == '*' || character == '-';
}

struct Entry
{
    QString accession;
    QByteArray sequence;
};

Reading readProteins(const QString &path, QList<Entry> *entries)
{
    FastaReader reader(path);
    if (Error error = reader.open(); error.hasError())
        return {{}, error.message()};
    Reading reading;
    while (reader.next()) {
        const QByteArray sequence = reader.sequence().toByteArray();
        const Protein &protein = reader.protein();
        require(!protein.accession.isEmpty(), "every protein has an accession");
        require(std::all_of(sequence.begin(), sequence.end(), isResidue) && !sequence.endsWith('*'),
                "a sequence consists of residues");
        require(reader.fractionRead() >= 0 && reader.fractionRead() <= 1, "the fraction lies within 0 to 1");
        reading.parts.append(bits(protein.accession, protein.name, protein.gene, sequence));
        entries->append({protein.accession, sequence});
    }
    reading.error = reader.error().message();
    require(reader.error().hasError() == !reading.error.isEmpty() && !reader.next(),
            "an error ends a file and says why");
    return reading;
}

Reading read(const QString &path)
{
    QList<Entry> ignored;
    return readProteins(path, &ignored);
}

void requireSameWhenWritten(const QList<Entry> &entries)
{
    QByteArray fasta;
    for (const Entry &entry : entries)
        fasta += "> sp|" + entry.accession.toUtf8() + "|NAME\n" + entry.sequence.toLower() + "*\n";
    QList<Entry> again;
    require(readProteins(fileWith(NAME, fasta), &again).error.isEmpty() && again.size() == entries.size(),
            "written proteins are all read");
    for (qsizetype i = 0; i < entries.size(); ++i)
        require(again[i].accession == entries[i].accession && again[i].sequence == entries[i].sequence,
                "a written protein reads the same");
}

} // namespace

void tryInput(const QByteArray &input)
{
    const Reading whole = readBothWays(NAME, input, read);
    if (isGzip(input))
        return;
    require(beginsLike(whole, read(fileWith(NAME, input.first(placeWithin(input)))), 1),
            "a cut file gives what stands before the cut");
    QList<Entry> entries;
    readProteins(fileWith(NAME, input), &entries);
    const bool areNames = std::all_of(entries.begin(), entries.end(),
                                      [](const Entry &entry) { return !entry.accession.contains(QLatin1Char('|')); });
    if (areNames)
        requireSameWhenWritten(entries);
}

} // namespace zav::fuzz
