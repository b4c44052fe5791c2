// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Peptidoform.h>

#include <QtCore/QRectF>
#include <QtCore/QSet>

class QPainter;

namespace zav {

/// A peptide with the bonds marked at which fragments were found: b ions by hooks that point down and to the
/// N-terminus, y ions by hooks that point up and to the C-terminus, after the notation of Roepstorff and Fohlman
/// (Biomed. Mass Spectrom. 11, 601, 1984). Modified residues have a colour of their own and, above them, the mass that
/// was added, rounded to whole Da; that of a modified terminus stands beside it.
struct PeptideDiagram
{
    Peptidoform peptidoform;
    QSet<int> bIons; ///< ion numbers, 1 to the peptide's length - 1; others are not drawn
    QSet<int> yIons;

    /// Draws it in the middle of the area, the letters as large as fit.
    void paint(QPainter *painter, const QRectF &area) const;
};

} // namespace zav
