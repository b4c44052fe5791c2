// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "GzipDecoder.h"

#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QFile>
#include <QtCore/QString>

#include <memory>
#include <optional>

namespace zav {

/// The bytes of a file or of standard input from first to last, piece by piece. Gzipped content is recognised by its
/// first bytes and inflated on the way.
class ByteStream
{
public:
    /// "-" is standard input. An error for what cannot be opened, is a folder or is empty.
    static Result<std::unique_ptr<ByteStream>> open(const QString &path);

    /// For messages: the path, or "standard input".
    QString name() const { return m_name; }

    /// The bytes that the next `read` gives, without taking them; empty where nothing is left or reading fails.
    QByteArrayView peek();

    /// Puts the next piece into `piece`, empty at the end. The error names the file and comes back on every later call.
    Error read(QByteArray *piece);

private:
    explicit ByteStream(const QString &path);

    Error start();
    Error refill();
    Error decode();
    Error readRaw(QByteArray *piece);
    Error failure(const QString &what) const;

    QString m_name;
    QFile m_file;
    std::optional<GzipDecoder> m_decoder;
    QByteArray m_next; // what `read` gives next
    Error m_error;
};

} // namespace zav
