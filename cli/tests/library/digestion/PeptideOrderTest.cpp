// SPDX-License-Identifier: Apache-2.0
#include "PeptideDigestFixture.h"

#include <algorithm>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/resource.h>
#endif

namespace zav {
namespace {

using PeptideOrderTest = PeptideDigestTest;

TEST_F(PeptideOrderTest, RandomProteinsGiveWhatSetsGive)
{
    const QByteArray fasta = randomFasta(1, 1000, "ACDEFGHIKLMNPQRSTVWYKRX");
    PeptideRequest request;
    request.digestion.semiSpecific = true;
    const DigestedPeptides digested = digest(fasta, request);
    EXPECT_GT(digested.peptides->count(), 50000);
    EXPECT_TRUE(asMap(readAll(*digested.peptides)) == expectedTargets(fasta, request.digestion));
}

struct Sorting
{
    DecoyKind decoys;
    bool semiSpecific;
    qint64 memoryLimit;
};

class SortingOnDiskTest : public PeptideDigestTest, public ::testing::WithParamInterface<Sorting>
{};

TEST_P(SortingOnDiskTest, GivesTheSamePeptidesInTheSameOrder)
{
    const QByteArray fasta = randomFasta(3, 2000, "ACDEFGHIKLMNPQRSTVWYKRX");
    PeptideRequest request = tryptic(GetParam().decoys);
    request.digestion.minimumLength = 4;
    request.digestion.maximumLength = 10;
    request.digestion.semiSpecific = GetParam().semiSpecific;
    const DigestedPeptides inMemory = digest(fasta, request);
    request.space.onDisk = true;
    request.space.memoryLimit = GetParam().memoryLimit;
    const DigestedPeptides onDisk = digest(fasta, request);

    expectEqual(onDisk.counts, inMemory.counts);
    ASSERT_EQ(onDisk.peptides->count(), inMemory.peptides->count());
    EXPECT_EQ(onDisk.peptides->proteins().count(), 2000);
    PeptideBlock a;
    PeptideBlock b;
    // Pieces that end within pages and at their ends.
    for (qint64 first = 0; first < onDisk.peptides->count(); first += 1000) {
        const qint64 end = std::min(first + 1000, onDisk.peptides->count());
        ASSERT_FALSE(inMemory.peptides->read(first, end, &a).hasError());
        ASSERT_FALSE(onDisk.peptides->read(first, end, &b).hasError());
        ASSERT_EQ(a.size(), end - first);
        ASSERT_TRUE(std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto &x, const auto &y) {
            return x.sequence == y.sequence && x.proteins == y.proteins && x.isDecoy == y.isDecoy;
        }));
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, SortingOnDiskTest,
                         ::testing::Values(Sorting{DecoyKind::None, false, 20000},
                                           Sorting{DecoyKind::Reversed, false, 100000},
                                           Sorting{DecoyKind::Shuffled, false, 100000},
                                           Sorting{DecoyKind::Shuffled, true, 2000000},
                                           Sorting{DecoyKind::Shuffled, false, qint64(64) << 20}));

TEST_F(PeptideOrderTest, PeptidesAreInOrderAndDistinct)
{
    const DigestedPeptides digested = digest(randomFasta(4, 500, "ACDEFGHIKLMNPQRSTVWY"), tryptic(DecoyKind::Shuffled));
    const PeptideBlock block = readAll(*digested.peptides);
    for (qsizetype i = 1; i < block.size(); ++i)
        ASSERT_LT(block[i - 1].sequence.toByteArray().toStdString(), block[i].sequence.toByteArray().toStdString());
}

TEST_F(PeptideOrderTest, AnyRangeCanBeRead)
{
    const DigestedPeptides digested = digest(randomFasta(5, 200, "ACDEFGHIKLMNPQRSTVWY"), tryptic());
    const qint64 count = digested.peptides->count();
    ASSERT_GT(count, 600);
    const PeptideBlock all = readAll(*digested.peptides);
    PeptideBlock part;
    for (const auto &[first, end] : {std::pair<qint64, qint64>{0, 1},
                                     {255, 257},
                                     {256, 512},
                                     {300, 300},
                                     {0, 0},
                                     {count - 1, count},
                                     {count, count}}) {
        ASSERT_FALSE(digested.peptides->read(first, end, &part).hasError());
        ASSERT_EQ(part.size(), end - first);
        for (qint64 i = first; i < end; ++i)
            EXPECT_EQ(part[i - first].sequence, all[i].sequence);
    }
}

TEST_F(PeptideOrderTest, RangesOutsideAreRefused)
{
    const DigestedPeptides digested = digest(">P1\nAAAK\n", tryptic());
    PeptideBlock block = readAll(*digested.peptides);
    for (const auto &[first, end] : {std::pair<qint64, qint64>{-1, 1}, {0, 2}, {1, 0}}) {
        EXPECT_TRUE(digested.peptides->read(first, end, &block).equals(InvalidInput));
        EXPECT_TRUE(block.isEmpty());
    }
}

TEST_F(PeptideOrderTest, BlockOutlivesWhatItWasReadFrom)
{
    PeptideBlock block;
    {
        const DigestedPeptides digested = digest(">P1\nAAAK\n", tryptic());
        block = readAll(*digested.peptides);
    }
    EXPECT_EQ(block[0].sequence, QByteArrayView("AAAK"));
}

#ifdef Q_OS_LINUX
/// No file may grow beyond so many bytes while one of these is there.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int) = nullptr;
};

TEST_F(PeptideOrderTest, TemporaryFileThatCannotGrowIsAFailure)
{
    const QString path = m_files.write(QStringLiteral("p.fasta"), randomFasta(6, 2000, "ACDEFGHIKLMNPQRSTVWY"));
    PeptideRequest request = tryptic(DecoyKind::Shuffled);
    request.space.onDisk = true;
    request.space.memoryLimit = 100000;
    for (const rlim_t limit : {0, 50000, 200000}) {
        const FileSizeLimit limited(limit);
        const auto result = digestFasta(path, request);
        EXPECT_TRUE(result.error().equals(Failure));
        EXPECT_TRUE(result.error().message().startsWith(QStringLiteral("cannot write a temporary file in ")))
            << result.error().message().toStdString();
    }
}
#endif

} // namespace
} // namespace zav
