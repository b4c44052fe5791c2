// SPDX-License-Identifier: Apache-2.0
#include "PeptideNotation.h"

namespace zav {

void addIonNotation(TextBuffer *text, const FragmentPeak &peak)
{
    if (peak.ionType.isNull()) {
        text->add('?');
        return;
    }
    text->add(QStringView(&peak.ionType, 1)).addInteger(peak.ionNumber).add(QStringView(peak.neutralLoss));
    if (peak.isotope == 1)
        text->add("+i");
    else if (peak.isotope > 1)
        text->add('+').addInteger(peak.isotope).add('i');
    if (peak.charge > 1)
        text->add('^').addInteger(peak.charge);
}

void addIonWithError(TextBuffer *text, const FragmentPeak &peak)
{
    addIonNotation(text, peak);
    if (!peak.ionType.isNull())
        text->add("/0.0ppm");
}

QByteArray taggedPeptide(const LibraryEntry &entry, const QByteArray &cysteine)
{
    QByteArray text = entry.peptide.toUtf8();
    return cysteine.isEmpty() ? text : text.replace("C", "C" + cysteine);
}

QByteArray signedMass(double mass, int decimals)
{
    TextBuffer text;
    if (mass > 0)
        text.add('+');
    return text.addFixed(mass, decimals).take();
}

QByteArray joinedNames(const QStringList &names)
{
    QStringList known = names;
    known.removeAll(QString());
    known.removeDuplicates();
    return known.join(QLatin1Char(';')).toUtf8();
}

} // namespace zav
