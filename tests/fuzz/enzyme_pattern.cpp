// SPDX-License-Identifier: Apache-2.0
//
// Door: a cleavage pattern (up to the first line feed) and a protein behind it.
// Promises: sites lie between two residues and ascend, or a message says why the pattern is none.
#include "Enzyme.h"
#include "FuzzSupport.h"

namespace zav::fuzz {

void tryInput(const QByteArray &input)
{
    const qsizetype end = input.indexOf('\n');
    const QString text = QString::fromUtf8(end < 0 ? input : input.first(end));
    const Result<Enzyme> named = Enzyme::named(text);
    require(named.hasError() == !named.error().message().isEmpty(), "an enzyme or a message");
    const Result<Enzyme> enzyme = Enzyme::withPattern(text);
    require(enzyme.hasError() == !enzyme.error().message().isEmpty(), "a pattern or a message");
    if (enzyme.hasError())
        return;
    QByteArray protein;
    for (const char character : end < 0 ? QByteArray() : input.sliced(end + 1))
        protein.append(static_cast<char>('A' + static_cast<unsigned char>(character) % 26));
    QList<int> sites = {7, 7};
    if (enzyme.value().findSites(protein, &sites).hasError())
        return;
    int last = 0;
    for (const int site : sites) {
        require(site > last && site < protein.size(), "sites ascend between the residues");
        last = site;
    }
}

} // namespace zav::fuzz
