// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileDigest.h"
#include "OutputFile.h"
#include "ReportPage.h"

#include <zav/Error.h>

#include <nlohmann/json_fwd.hpp>

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zav {

/// Writes a report: one HTML file that any browser shows without the network. It has a table of the entries, the
/// picture of the chosen one, and a mark and a note for each, which the page saves.
///
/// Entries are written in blocks as they come; memory holds one block, about 256 KiB and its last entry. The page reads
/// the bytes of a block when it shows one of its entries. As other output, the file appears only with `finish`, and
/// nothing is opened before the first entry. Equal entries make equal files.
class ReportFile
{
public:
    /// `path` "-": standard output. `heading` is a JSON object of what holds for the whole report.
    ReportFile(const QString &path, ReportKind kind, const nlohmann::ordered_json &heading);

    /// Adds what the table says of an entry, a JSON object, and what its picture needs, in the form that the page reads
    /// (`packedPoints`, `packedJson`). The error is one of writing.
    Error add(nlohmann::ordered_json entry, const QByteArray &bytes);

    /// Completes the file; nothing may be added afterwards.
    Error finish();

private:
    Error open();
    Error endBlock();

    ReportKind m_kind;
    QByteArray m_heading; ///< JSON
    OutputFile m_file;
    bool m_isOpen = false;
    QByteArray m_rows;  ///< of the block: JSON, without its brackets
    QByteArray m_bytes; ///< of the block
    Sha256 m_digest;    ///< of the data: by it the page knows its marks again
};

/// A JSON text of an entry in the form that the page reads: its length in bytes (4 bytes, little-endian) and the text.
QByteArray packedJson(const nlohmann::ordered_json &value);

// Text as JSON strings.
nlohmann::ordered_json jsonText(const QString &text);
nlohmann::ordered_json jsonTexts(const QStringList &texts);

} // namespace zav
