// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>

namespace zav {

/// How an array of numbers is stored in an mzML file.
struct ArrayEncoding
{
    bool isCompressed = false;  ///< by zlib
    bool isFloat32 = false;     ///< else 64 bits
    QByteArray parameters = {}; ///< XML in place of the parameters that say so, e.g. a reference to a group of them
};

/// A `<binaryDataArray>` of mzML 1.1.
QByteArray dataArray(const QByteArray &accession, const QByteArray &name, const QList<double> &values,
                     const ArrayEncoding &encoding = {}, const QByteArray &unitAccession = QByteArray());

/// An mzML document around a run's content; `beforeRun` stands in front of the run.
QByteArray mzMlDocument(const QByteArray &runContent, const QByteArray &beforeRun = QByteArray());

/// The document in the wrapper of an indexed file. `index` holds the `<index>` elements; an empty `indexOffset` is
/// right.
QByteArray indexedMzMl(const QByteArray &document, const QByteArray &index,
                       const QByteArray &indexOffset = QByteArray());

/// The content as a gzip file.
QByteArray gzip(const QByteArray &content);

} // namespace zav
