// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Peptidoform.h>

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringView>

namespace zav {

/// Reads one text of ProForma 2.0 from front to back, as `Peptidoform::fromProForma` promises.
class ProFormaReader
{
public:
    /// `text` has to outlive the reader.
    explicit ProFormaReader(QStringView text) : m_text(text) {}

    Result<Peptidoform> read();

private:
    /// Where a fixed modification is: at a residue wherever it stands, or at a terminus of any residue or of one.
    struct FixedSite
    {
        enum Kind { Residue, NTerminus, CTerminus };

        Kind kind = Residue;
        QChar residue; ///< null: any, of a terminus
    };

    /// `<[Carbamidomethyl]@C>`
    struct FixedModification
    {
        Modification modification;
        QList<FixedSite> sites;
        qsizetype begin = 0; ///< index of its `<`
    };

    Error checkLength();
    Error readFixedModifications();
    Error readNTerminus();
    Error readResidues();
    Error readCTerminus();
    Error placeFixedModifications();

    Error readFixedSites(FixedModification *fixed);
    static Error readFixedSite(QStringView site, qsizetype begin, FixedModification *fixed);
    Error placeFixed(const FixedModification &fixed, const FixedSite &site);
    Error readBrackets(Modification *modification);

    bool isAt(QChar character) const { return m_at < m_text.size() && m_text[m_at] == character; }
    QString secondModification(int position) const;
    Error unexpected(qsizetype index) const;

    QStringView m_text;
    qsizetype m_at = 0; // index of the next character
    QList<FixedModification> m_fixed;
    QString m_sequence;
    QMap<int, Modification> m_placed; // by position
};

} // namespace zav
