// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Peptidoform.h>
#include <zav/Result.h>

#include <QtCore/QString>

namespace zav {

/// Reads a peptide as users write it, plain or as ProForma.
///
/// The cysteines of a text without brackets are carbamidomethylated, as in nearly all samples that are digested. A text
/// that names a modification is taken as it stands: its other cysteines are free. Errors are those of
/// `Peptidoform::fromProForma`.
Result<Peptidoform> readPeptidoform(const QString &text);

} // namespace zav
