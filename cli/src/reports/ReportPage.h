// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>

namespace zav {

/// What the entries of a report are.
enum class ReportKind { Traces, Spectra };

/// The page of a report without its data: `opening`, the elements of data, `closing`.
///
/// The page holds everything that it needs. A Content-Security-Policy lets only its own style and script run, by their
/// SHA-256, and forbids it the network.
struct ReportPage
{
    static QByteArray opening(ReportKind kind);
    static QByteArray closing(ReportKind kind);
};

/// An element of data that the page's script reads; `name` is its class.
///
/// `json` is a JSON text in UTF-8. It may hold whatever a file says: the characters `<`, `>` and `&`, which HTML gives
/// a meaning, are written as escapes of JSON. They stand in its strings only, so that its value stays the same.
QByteArray jsonElement(const char *name, const QByteArray &json);

/// The same for bytes: deflated (RFC 1950), in Base64. std::bad_alloc when there is not enough memory.
QByteArray bytesElement(const char *name, const QByteArray &bytes);

} // namespace zav
