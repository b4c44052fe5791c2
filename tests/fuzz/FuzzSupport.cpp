// SPDX-License-Identifier: Apache-2.0
#include "FuzzSupport.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <system_error>

namespace zav::fuzz {

namespace {

const QTemporaryDir &folder()
{
    static const QTemporaryDir ownFolder;
    return ownFolder;
}

} // namespace

void require(bool holds, const char *promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

QString pathOf(const char *name)
{
    return folder().filePath(QString::fromUtf8(name));
}

QByteArray numberText(double value)
{
    char text[32];
    const auto [end, problem] = std::to_chars(std::begin(text), std::end(text), value);
    require(problem == std::errc(), "a number has a short text");
    return QByteArray(text, end - text);
}

// Without Qt's buffers: a target writes a file or two for every input.
QString fileWith(const char *name, const QByteArray &content)
{
    const QString path = pathOf(name);
    const int file = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    require(file >= 0 && ::write(file, content.constData(), static_cast<std::size_t>(content.size())) == content.size(),
            "the input's file can be written");
    ::close(file);
    return path;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    require(file.open(QIODevice::ReadOnly), "the written file can be opened");
    return file.readAll();
}

QByteArray gzipped(const QByteArray &content)
{
    // A small window and little memory: allocating more takes longer than compressing.
    constexpr int GZIP_WINDOW_BITS = 9 + 16;
    constexpr int LEAST_MEMORY = 1;
    z_stream stream{};
    require(deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, GZIP_WINDOW_BITS, LEAST_MEMORY, Z_DEFAULT_STRATEGY) == Z_OK,
            "zlib starts");
    QByteArray out(static_cast<qsizetype>(deflateBound(&stream, static_cast<uLong>(content.size()))), '\0');
    QByteArray in = content;
    stream.next_in = reinterpret_cast<Bytef *>(in.data());
    stream.avail_in = static_cast<uInt>(in.size());
    stream.next_out = reinterpret_cast<Bytef *>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    require(deflate(&stream, Z_FINISH) == Z_STREAM_END, "zlib compresses");
    out.truncate(out.size() - stream.avail_out);
    deflateEnd(&stream);
    return out;
}

bool isGzip(const QByteArray &content)
{
    return content.startsWith("\x1f\x8b");
}

qsizetype placeWithin(const QByteArray &content)
{
    quint64 hash = 14695981039346656037U; // FNV-1a
    for (const char character : content)
        hash = (hash ^ static_cast<unsigned char>(character)) * 1099511628211U;
    return static_cast<qsizetype>(hash % (static_cast<quint64>(content.size()) + 1));
}

Reading readBothWays(const char *name, const QByteArray &content, const Reader &reader)
{
    Reading plain = reader(fileWith(name, content));
    if (!isGzip(content) && !content.isEmpty())
        require(reader(fileWith(name, gzipped(content))) == plain, "plain and gzipped content read the same");
    return plain;
}

bool beginsLike(const Reading &whole, const Reading &cut, qsizetype uncertain)
{
    const qsizetype certain = std::max<qsizetype>(cut.parts.size() - uncertain, 0);
    return certain <= whole.parts.size() &&
           std::equal(cut.parts.begin(), cut.parts.begin() + certain, whole.parts.begin());
}

} // namespace zav::fuzz

namespace {

void saySilently(QtMsgType, const QMessageLogContext &, const QString &) {}

} // namespace

// Messages of damaged files would be most of what a run prints.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(saySilently);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    zav::fuzz::tryInput(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    return 0;
}
