// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QFile>
#include <QtCore/QString>

#include <memory>
#include <optional>

class QTemporaryFile;

namespace zav {

/// What is said of an input that cannot be read, whoever reads it: "cannot read `name`: `reason`". A reason about the
/// input itself begins with "it": "it is empty".
Error cannotRead(const QString &name, const QString &reason);

/// `cannotRead` of a file whose content is no longer what it was when the file was looked through.
Error hasChanged(const QString &name);

/// What a file holds; with `most`, its first bytes. Errors name the file.
Result<QByteArray> fileBytes(const QString &path, std::optional<qint64> most = {});

/// The bytes of a file or of standard input, piece by piece. Gzipped content (RFC 1952, also of several members, as
/// bgzip writes them) is recognised by its first two bytes, whatever the file's name, and inflated on the way. Holds a
/// few pieces of 64 KiB.
class ByteStream
{
public:
    /// "-" is standard input. An error for what cannot be opened, for a folder and for gzip that is damaged at its
    /// start. A file without content is none.
    static Result<std::unique_ptr<ByteStream>> open(const QString &path);

    /// Likewise, for what is read in several places: every `seek` works and is quick. A pipe and gzipped content are
    /// first copied to a temporary file, inflated, which goes with this object.
    static Result<std::unique_ptr<ByteStream>> openSeekable(const QString &path);

    ~ByteStream();
    Q_DISABLE_COPY_MOVE(ByteStream)

    /// For messages, as `inputName` says.
    QString name() const { return m_name; }

    /// The bytes that the next `read` gives, without taking them; empty where nothing is left or reading fails.
    QByteArrayView peek() const { return m_next; }

    /// Puts the next piece into `piece`, empty at the end. The error names the file and comes back on every later call.
    Error read(QByteArray *piece);

    /// Goes to a place in the content, counted in bytes from its start; `read` goes on there. Gzipped content is
    /// inflated again up to the place. An error for what can be read only once, such as a pipe.
    Error seek(qint64 offset);

    /// How much of the file was read, within 0 to 1; 0 where its size is unknown.
    double fractionRead() const;

private:
    struct Gzip;

    explicit ByteStream(const QString &path);

    Error start();
    Error copyTo(QTemporaryFile *copy);
    Error readInstead(std::unique_ptr<QTemporaryFile> copy);
    Error refill();
    Error inflatePiece();
    Error readRaw(QByteArray *piece);

    QString m_name;
    std::unique_ptr<QFile> m_file;
    std::unique_ptr<Gzip> m_gzip; // only for gzipped content
    QByteArray m_next;            // what `read` gives next
    qint64 m_rawSize = 0;
    qint64 m_rawRead = 0;
    Error m_error;
};

} // namespace zav
