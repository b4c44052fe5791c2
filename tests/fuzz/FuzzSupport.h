// SPDX-License-Identifier: Apache-2.0
//
// What the fuzzing targets share. A target defines `tryInput`; libFuzzer calls it with one input after the other.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QDataStream>
#include <QtCore/QIODevice>
#include <QtCore/QList>
#include <QtCore/QString>

#include <functional>

namespace zav::fuzz {

/// What a target does with one input. Defined by the target.
void tryInput(const QByteArray &input);

/// Reports a finding, and ends the program, where `holds` is false. `promise` is what should have been.
void require(bool holds, const char *promise);

/// Puts the content into the file of that name and returns its path: the ending of the name tells readers the format.
/// The file stands in a folder of this process within TMPDIR, which `scripts/fuzz` puts into memory.
QString fileWith(const char *name, const QByteArray &content);

/// The path of a file that need not exist.
QString pathOf(const char *name);

QByteArray contentOf(const QString &path);

/// The content as one gzip member (RFC 1952).
QByteArray gzipped(const QByteArray &content);

/// Whether the content would be taken for gzip.
bool isGzip(const QByteArray &content);

/// A place within the content, within 0 to its size, that depends on the content alone.
qsizetype placeWithin(const QByteArray &content);

/// The shortest text that reads as this number. Qt's own drops the sign of zero.
QByteArray numberText(double value);

template <typename Value>
void put(QDataStream *stream, const Value &value)
{
    *stream << value;
}

/// A null text is an empty one.
inline void put(QDataStream *stream, const QByteArray &bytes)
{
    *stream << bytes.size();
    stream->writeRawData(bytes.constData(), static_cast<int>(bytes.size()));
}

inline void put(QDataStream *stream, const QString &text)
{
    put(stream, text.toUtf8());
}

/// The values as bytes: two are equal where all bits of all values are.
template <typename... Values>
QByteArray bits(const Values &...values)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    (put(&stream, values), ...);
    return bytes;
}

/// What a reader made of a file: the parts that it gave one after the other, and how it ended.
struct Reading
{
    QList<QByteArray> parts;
    QString error; ///< the message of the error at the end; empty at the end of the file

    bool operator==(const Reading &) const = default;
};

using Reader = std::function<Reading(const QString &path)>;

/// Reads the content from a file of that name, plain and gzipped, which must make no difference. Returns the reading.
Reading readBothWays(const char *name, const QByteArray &content, const Reader &reader);

/// Whether all parts of `cut` but the last `uncertain` stand in the same place in `whole`.
bool beginsLike(const Reading &whole, const Reading &cut, qsizetype uncertain);

} // namespace zav::fuzz
