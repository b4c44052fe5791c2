// SPDX-License-Identifier: Apache-2.0
#include "LineReader.h"

#include "MzMlText.h"
#include "TemporaryFiles.h"

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <sys/ioctl.h>
#include <unistd.h>

namespace zav {
namespace {

using Strings = std::vector<std::string>;

constexpr qsizetype LONGEST = 1 << 16;

struct LineReading : testing::Test
{
    TemporaryFiles files;

    std::unique_ptr<LineReader> open(const QByteArray &content, qsizetype longest = LONGEST) const
    {
        Result<std::unique_ptr<LineReader>> lines = LineReader::open(files.write("a.txt", content), longest);
        EXPECT_FALSE(lines.hasError()) << lines.error().toString().toStdString();
        return std::move(lines).value();
    }

    static Strings rest(LineReader *lines)
    {
        Strings found;
        while (lines->next())
            found.push_back(std::to_string(lines->number()) + ':' + lines->line().toByteArray().toStdString());
        return found;
    }

    std::string failure(const QByteArray &content, qsizetype longest) const
    {
        const std::unique_ptr<LineReader> lines = open(content, longest);
        while (lines->next()) {
        }
        EXPECT_FALSE(lines->next());
        return files.withoutFolder(lines->error().message());
    }
};

// Lines of 0 to 199 digits, 100 of them in about ten thousand bytes.
QByteArray manyLines(int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += QByteArray::number(i).leftJustified(i % 200, '.', true) + '\n';
    return text;
}

TEST_F(LineReading, LinesEndWithLfOrCrLfOrTheFile)
{
    EXPECT_EQ(rest(open("\xEF\xBB\xBF"
                        "a\r\n\n b \nc")
                       .get()),
              (Strings{"1:a", "2:", "3: b ", "4:c"}));
    EXPECT_EQ(rest(open("a\n").get()), (Strings{"1:a"}));
    EXPECT_EQ(rest(open("").get()), Strings());
}

TEST_F(LineReading, ContentIsWhatIsNeitherBlankNorAComment)
{
    const std::unique_ptr<LineReader> lines = open("# one\n \t\n  # two\n a #b\n#\n");
    ASSERT_TRUE(lines->nextContent());
    EXPECT_EQ(lines->number(), 4);
    EXPECT_EQ(lines->line(), " a #b");
    EXPECT_FALSE(lines->nextContent());
    EXPECT_FALSE(lines->error().hasError());
}

TEST_F(LineReading, LineOfTheGreatestLengthIsReadAndALongerOneRefusedWithItsNumber)
{
    EXPECT_EQ(failure("a\n" + QByteArray(100, 'x') + '\n', 100), "");
    EXPECT_EQ(failure("a\n" + QByteArray(101, 'x') + '\n', 100), "a.txt, line 2: the line is longer than 100 bytes");
    EXPECT_EQ(failure("a\n" + QByteArray(101, 'x'), 100), "a.txt, line 2: the line is longer than 100 bytes");
    EXPECT_EQ(failure(QByteArray(1 << 20, 'x'), 100), "a.txt, line 1: the line is longer than 100 bytes");
}

TEST_F(LineReading, ComesBackToAnyPlaceOfPlainAndGzippedText)
{
    const QByteArray text = "\xEF\xBB\xBF" + manyLines(3000); // several pieces
    const Strings all = rest(open(text).get());
    ASSERT_EQ(all.size(), 3000U);
    for (const QByteArray &content : {text, gzip(text.left(100000)) + gzip(text.mid(100000))}) {
        const std::unique_ptr<LineReader> lines = open(content);
        std::vector<LineReader::Place> places{lines->place()};
        while (lines->next())
            places.push_back(lines->place());
        ASSERT_EQ(places.size(), 3001U);
        for (const std::size_t line : {2999U, 0U, 700U, 3000U, 1U, 1500U}) {
            ASSERT_FALSE(lines->seek(places[line]).hasError());
            EXPECT_EQ(rest(lines.get()), Strings(all.begin() + static_cast<std::ptrdiff_t>(line), all.end())) << line;
        }
    }
}

TEST_F(LineReading, ComesBackAfterAFailure)
{
    const std::unique_ptr<LineReader> lines = open("a\n" + QByteArray(101, 'x') + '\n', 100);
    const LineReader::Place start = lines->place();
    EXPECT_EQ(rest(lines.get()), (Strings{"1:a"}));
    EXPECT_TRUE(lines->error().hasError());
    EXPECT_FALSE(lines->seek(start).hasError());
    EXPECT_EQ(rest(lines.get()), (Strings{"1:a"}));
}

TEST_F(LineReading, ShareReadGrowsToOneWithTheFileAsItIsStored)
{
    const QByteArray text = manyLines(3000); // of which gzip makes less than one piece
    for (const QByteArray &content : {text, gzip(text)}) {
        const std::unique_ptr<LineReader> lines = open(content);
        double before = lines->fractionRead();
        EXPECT_GT(before, 0);
        while (lines->next()) {
            EXPECT_GE(lines->fractionRead(), before);
            before = lines->fractionRead();
        }
        EXPECT_EQ(before, 1);
    }
    EXPECT_LT(open(text)->fractionRead(), 0.5);
    EXPECT_EQ(open("")->fractionRead(), 0);
}

TEST_F(LineReading, GzipThatGrowsAThousandfoldIsInflatedInSmallPieces)
{
    const QByteArray content(10000000, 'a'); // about 10 kB of gzip
    Result<std::unique_ptr<ByteStream>> opened = ByteStream::open(files.write("a.gz", gzip(content)));
    ASSERT_FALSE(opened.hasError()) << opened.error().toString().toStdString();
    const std::unique_ptr<ByteStream> bytes = std::move(opened).value();
    qsizetype size = 0;
    for (QByteArray piece; !bytes->read(&piece).hasError() && !piece.isEmpty(); size += piece.size())
        ASSERT_LE(piece.size(), 1 << 16);
    EXPECT_EQ(size, content.size());
}

// A pipe is read as its bytes come: the first read may yield a single one.
TEST_F(LineReading, GzipIsRecognisedWhereAPipeGivesItsFirstByteAlone)
{
    const QByteArray bytes = gzip("a\nb\n");
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], bytes.constData(), 1), 1);
    std::thread writer([&] {
        for (int waiting = 1; waiting > 0; std::this_thread::yield())
            ioctl(ends[0], FIONREAD, &waiting);
        EXPECT_EQ(write(ends[1], bytes.constData() + 1, static_cast<std::size_t>(bytes.size() - 1)), bytes.size() - 1);
        close(ends[1]);
    });
    Result<std::unique_ptr<LineReader>> opened = LineReader::open(QStringLiteral("/dev/fd/%1").arg(ends[0]), LONGEST);
    writer.join();
    ASSERT_FALSE(opened.hasError()) << opened.error().toString().toStdString();
    const std::unique_ptr<LineReader> lines = std::move(opened).value();
    EXPECT_EQ(rest(lines.get()), (Strings{"1:a", "2:b"}));
    EXPECT_TRUE(lines->seek({}).message().endsWith(": it cannot be read a second time"));
    close(ends[0]);
}

TEST_F(LineReading, WhatCannotBeReadIsNamedWithTheReason)
{
    const auto message = [&](const QString &path) {
        return files.withoutFolder(LineReader::open(path, LONGEST).error().message());
    };
    EXPECT_EQ(message(files.path("none.txt")), "cannot read none.txt: No such file or directory");
    QDir(files.path(QString())).mkdir("folder");
    EXPECT_EQ(message(files.path("folder")), "cannot read folder: it is a folder");
    EXPECT_EQ(message(files.path("a\tb")), "cannot read a\\x09b: No such file or directory");
    EXPECT_EQ(failure(gzip("a\nb\n").chopped(9), LONGEST), "cannot read a.txt: it ends within its gzipped data");
}

TEST_F(LineReading, SeekableStreamGoesToAnyPlaceInGzippedContent)
{
    const QByteArray content = manyLines(3000);
    Result<std::unique_ptr<ByteStream>> opened = ByteStream::openSeekable(files.write("a.txt.gz", gzip(content)));
    ASSERT_FALSE(opened.hasError()) << opened.error().toString().toStdString();
    const std::unique_ptr<ByteStream> stream = std::move(opened).value();
    EXPECT_EQ(files.withoutFolder(stream->name()), "a.txt.gz");
    EXPECT_TRUE(stream->peek().startsWith(content.left(100)));
    for (const qint64 offset : {qint64{200000}, qint64{17}, qint64{299000}, qint64{0}}) {
        ASSERT_FALSE(stream->seek(offset).hasError());
        QByteArray piece;
        ASSERT_FALSE(stream->read(&piece).hasError());
        EXPECT_FALSE(piece.isEmpty());
        EXPECT_EQ(piece, content.mid(offset, piece.size())) << offset;
    }
}

TEST_F(LineReading, SeekableStreamOfDamagedGzipIsAnError)
{
    QByteArray torn = gzip(manyLines(3000));
    torn.chop(20);
    const Result<std::unique_ptr<ByteStream>> opened = ByteStream::openSeekable(files.write("a.txt.gz", torn));
    ASSERT_TRUE(opened.hasError());
    EXPECT_EQ(files.withoutFolder(opened.error().message()), "cannot read a.txt.gz: it ends within its gzipped data");
}

#ifdef Q_OS_LINUX
TEST(FileBytes, FileThatOpensAndCannotBeReadIsAFailureWithItsReason)
{
    const QString path = QStringLiteral("/proc/self/mem"); // it holds nothing at its start
    for (const std::optional<qint64> most : {std::optional<qint64>(), std::optional<qint64>(10)})
        EXPECT_EQ(fileBytes(path, most).error().message().toStdString(),
                  "cannot read /proc/self/mem: Input/output error");
}
#endif

} // namespace
} // namespace zav
