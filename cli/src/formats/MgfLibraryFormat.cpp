// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"
#include "TextBuffer.h"

namespace zav {

namespace {

constexpr qsizetype ENTRY_SIZE = 200;
constexpr qsizetype PEAK_SIZE = 24;

class MgfLibraryFormat : public LibraryFormat
{
public:
    QByteArray entry(const LibraryEntry &entry, qint64 index) const override;
};

QByteArray MgfLibraryFormat::entry(const LibraryEntry &entry, qint64) const
{
    if (entry.peaks.isEmpty())
        return {};
    TextBuffer text(ENTRY_SIZE + PEAK_SIZE * entry.peaks.size());
    text.add("BEGIN IONS\nTITLE=").add(entry.isDecoy ? "DECOY_" : "");
    text.add(QStringView(entry.peptide)).add('/').addInteger(entry.charge);
    text.add("\nPEPMASS=").addFixed(entry.precursorMz, 5);
    text.add("\nCHARGE=").addInteger(entry.charge).add("+\n");
    for (const FragmentPeak &peak : entry.peaks)
        text.addFixed(peak.mz, 5).add(' ').addFixed(peak.intensity * 10000, 1).add('\n');
    return text.add("END IONS\n\n").take();
}

} // namespace

const LibraryFormat &mgfLibraryFormat()
{
    static const MgfLibraryFormat FORMAT;
    return FORMAT;
}

} // namespace zav
