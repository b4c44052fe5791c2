// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"
#include "PeptideNotation.h"

namespace zav {

namespace {

class MgfLibraryFormat : public LibraryFormat
{
public:
    void addEntry(const LibraryEntry &entry, qint64 index, TextBuffer *text) const override;
};

void MgfLibraryFormat::addEntry(const LibraryEntry &entry, qint64, TextBuffer *text) const
{
    if (entry.peaks.isEmpty())
        return;
    text->add("BEGIN IONS\nTITLE=");
    addSpectrumName(text, entry);
    text->add("\nPEPMASS=").addFixed(entry.precursorMz, 5);
    text->add("\nCHARGE=").addInteger(entry.charge).add("+\n");
    if (entry.hasRetentionTime() && entry.timeScale == TimeScale::Minutes) {
        text->add("RTINSECONDS=");
        addRetentionTime(text, entry.secondsOfTime());
        text->add('\n');
    }
    for (const FragmentPeak &peak : entry.peaks)
        text->addFixed(peak.mz, 5).add(' ').addFixed(peak.intensity * 10000, 1).add('\n');
    text->add("END IONS\n\n");
}

} // namespace

const LibraryFormat &mgfLibraryFormat()
{
    static const MgfLibraryFormat FORMAT;
    return FORMAT;
}

} // namespace zav
