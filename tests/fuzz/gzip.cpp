// SPDX-License-Identifier: Apache-2.0
//
// Door: bytes that may be gzipped, and their lines.
// Promises: an error comes back; what was compressed in any number of members reads as it was; `seek` goes anywhere;
// lines are those of a plain search for line ends.
#include "ByteStream.h"
#include "FuzzSupport.h"
#include "LineReader.h"

#include <algorithm>

namespace zav::fuzz {
namespace {

constexpr char NAME[] = "input";
constexpr qsizetype LONGEST_LINE = 200;

/// All pieces in one; an error where `error` is not empty afterwards.
QByteArray readOn(ByteStream *stream, QString *error)
{
    QByteArray all;
    for (;;) {
        QByteArray piece;
        const Error failure = stream->read(&piece);
        if (failure.hasError()) {
            *error = failure.message();
            require(!error->isEmpty() && stream->read(&piece).message() == *error, "an error comes back");
            return all;
        }
        if (piece.isEmpty())
            return all;
        all += piece;
    }
}

/// The content in members that end at places of its own, zeros between.
QByteArray inMembers(const QByteArray &content)
{
    const qsizetype first = placeWithin(content);
    const qsizetype second = placeWithin(content.sliced(first));
    return gzipped(content.first(first)) + QByteArray(second % 3, '\0') + gzipped(content.sliced(first, second)) +
           gzipped(content.sliced(first + second)) + QByteArray(first % 5, '\0');
}

void requireSeeking(const QString &path, const QByteArray &content)
{
    auto opened = ByteStream::openSeekable(path);
    require(!opened.hasError(), "what can be read can be opened for seeking");
    for (const qsizetype offset : {content.size(), placeWithin(content), qsizetype(0)}) {
        QString error;
        require(!opened.value()->seek(offset).hasError(), "every place is found");
        require(readOn(opened.value().get(), &error) == content.sliced(offset) && error.isEmpty(),
                "reading goes on from a place");
    }
}

QList<QByteArray> linesOf(QByteArray content)
{
    if (content.isEmpty())
        return {};
    if (content.endsWith('\n'))
        content.chop(1);
    QList<QByteArray> lines = content.split('\n');
    for (QByteArray &line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
    }
    if (lines.first().startsWith("\xEF\xBB\xBF"))
        lines.first().remove(0, 3);
    return lines;
}

void requireLines(const QString &path, const QByteArray &content)
{
    const QList<QByteArray> expected = linesOf(content);
    auto lines = LineReader::open(path, LONGEST_LINE);
    require(!lines.hasError(), "the lines of what can be read can be read");
    LineReader &reader = *lines.value();
    qsizetype count = 0;
    while (reader.next()) {
        require(count < expected.size() && reader.line() == expected[count], "a line is what stands between two ends");
        require(reader.number() == ++count, "lines are counted from 1");
    }
    const bool isLong = std::any_of(expected.begin(), expected.end(),
                                    [](const QByteArray &line) { return line.size() + 4 > LONGEST_LINE; });
    require(reader.error().hasError() ? isLong : count == expected.size(), "only long lines stop a reader");
}

} // namespace

void tryInput(const QByteArray &input)
{
    const QString path = fileWith(NAME, input);
    auto opened = ByteStream::open(path);
    require(opened.hasError() == !opened.error().message().isEmpty(), "a failure to open says why");
    if (!opened.hasError()) {
        QString error;
        const QByteArray content = readOn(opened.value().get(), &error);
        require(isGzip(input) || (content == input && error.isEmpty()), "plain bytes are read as they are");
        if (error.isEmpty()) {
            requireSeeking(path, content);
            requireLines(path, content);
        }
    }
    const QString compressed = fileWith("input.gz", inMembers(input));
    auto stream = ByteStream::open(compressed);
    QString error;
    require(!stream.hasError() && readOn(stream.value().get(), &error) == input && error.isEmpty(),
            "members are read one after the other");
    requireSeeking(compressed, input);
}

} // namespace zav::fuzz
