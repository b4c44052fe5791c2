// SPDX-License-Identifier: Apache-2.0
#include "PeptideDigest.h"

#include "DecoyMaker.h"
#include "Digester.h"
#include "DigestionFixtures.h"
#include "TemporaryFiles.h"

#include <algorithm>
#include <map>
#include <set>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/resource.h>
#endif

namespace zav {
namespace {

/// Sequence and whether it is a decoy, with the proteins.
using Peptides = std::map<std::pair<std::string, bool>, std::set<int>>;

/// Trypsin without missed cleavages, 3 residues or more.
PeptideRequest tryptic(DecoyKind decoys = DecoyKind::None)
{
    PeptideRequest request;
    request.digestion.missedCleavages = 0;
    request.digestion.minimumLength = 3;
    request.decoys.kind = decoys;
    return request;
}

PeptideBlock readAll(PeptideSource &source)
{
    PeptideBlock block;
    EXPECT_FALSE(source.read(0, source.count(), &block).hasError());
    EXPECT_EQ(block.size(), source.count());
    return block;
}

Peptides asMap(const PeptideBlock &block)
{
    Peptides peptides;
    for (const LibraryPeptide &peptide : block)
        peptides[{peptide.sequence.toByteArray().toStdString(), peptide.isDecoy}] = {peptide.proteins.begin(),
                                                                                     peptide.proteins.end()};
    EXPECT_EQ(peptides.size(), size_t(block.size()));
    return peptides;
}

class PeptideDigestTest : public ::testing::Test
{
protected:
    DigestedPeptides digest(const QByteArray &fasta, const PeptideRequest &request, const DigestionHooks &hooks = {})
    {
        auto result = digestFasta(m_files.write(QStringLiteral("p.fasta"), fasta), request, hooks);
        EXPECT_FALSE(result.hasError()) << result.error().message().toStdString();
        return std::move(result).value();
    }

    DigestedPeptides readTable(const QByteArray &table, const PeptideRequest &request, const DigestionHooks &hooks = {})
    {
        auto result = readPeptideTable(m_files.write(QStringLiteral("p.tsv"), table), request, hooks);
        EXPECT_FALSE(result.hasError()) << result.error().message().toStdString();
        return std::move(result).value();
    }

    /// `SEQUENCE:protein,protein` of every peptide, decoys in brackets, a blank between.
    static std::string shown(const DigestedPeptides &digested)
    {
        std::string text;
        for (const LibraryPeptide &peptide : readAll(*digested.peptides)) {
            QStringList accessions;
            for (const int protein : peptide.proteins)
                accessions.append(digested.peptides->proteins().protein(protein, peptide.isDecoy).accession);
            const QString sequence = QString::fromLatin1(peptide.sequence);
            const QString name = peptide.isDecoy ? QStringLiteral("[%1]").arg(sequence) : sequence;
            text += (text.empty() ? "" : " ") + (name + ':' + accessions.join(',')).toStdString();
        }
        return text;
    }

    TemporaryFiles m_files;
};

DigestionHooks collecting(QStringList *skipped)
{
    DigestionHooks hooks;
    hooks.skipped = [skipped](const SkippedPeptide &peptide) {
        skipped->append(peptide.protein + ' ' + peptide.peptide + ": " + peptide.reason);
        return Error();
    };
    return hooks;
}

TEST_F(PeptideDigestTest, PeptideOfSeveralProteinsComesOnceWithAllOfThem)
{
    const auto digested = digest(">P1\nDDDKAAAK\n>P2\nAAAKCCC\n>P3\nAAAKAAAK\n", tryptic());
    EXPECT_EQ(shown(digested), "AAAK:P1,P2,P3 CCC:P2 DDDK:P1");
    EXPECT_EQ(digested.counts.proteins, 3);
    EXPECT_EQ(digested.counts.targets, 3);
    EXPECT_EQ(digested.counts.decoys, 0);
}

TEST_F(PeptideDigestTest, OrderIsThatOfTheBytesWithShorterPeptidesFirst)
{
    PeptideRequest request = tryptic();
    request.digestion.missedCleavages = 2;
    EXPECT_EQ(shown(digest(">P1\nYYYK\n>P2\nAAKAAKAAK\n", request)), "AAK:P2 AAKAAK:P2 AAKAAKAAK:P2 YYYK:P1");
}

TEST_F(PeptideDigestTest, PeptidesWithOtherResiduesAreSkippedCountedAndListed)
{
    QStringList skipped;
    const auto digested = digest(">P1\nAAXKCCCKUDDK\n>P2\nA*AKEEEKXK\n", tryptic(), collecting(&skipped));
    EXPECT_EQ(shown(digested), "CCCK:P1 EEEK:P2");
    EXPECT_EQ(skipped, QStringList({"P1 AAXK: residue X at position 3", "P1 UDDK: residue U at position 1",
                                    "P2 A*AK: residue * at position 2"}));
    EXPECT_EQ(digested.counts.skipped, 3);
}

TEST_F(PeptideDigestTest, RepeatedAccessionsAreOneProtein)
{
    const auto digested = digest(">P1\nAAAK\n>P1\nAAAKCCCK\n>P2\n\n", tryptic());
    EXPECT_EQ(shown(digested), "AAAK:P1 CCCK:P1");
    EXPECT_EQ(digested.counts.proteins, 3);
    EXPECT_EQ(digested.counts.repeatedAccessions, 1);
    EXPECT_EQ(digested.counts.emptyProteins, 1);
}

TEST_F(PeptideDigestTest, ProteinsKeepNameAndGene)
{
    const auto digested = digest(">sp|P1|ONE_TEST First OS=x GN=G1 PE=1\nAAAK\n", tryptic());
    EXPECT_EQ(digested.peptides->proteins().protein(0),
              (Protein{QStringLiteral("P1"), QStringLiteral("ONE_TEST"), QStringLiteral("G1")}));
}

TEST_F(PeptideDigestTest, ReversedDecoysCarryTheirTargetsProteins)
{
    const auto digested = digest(">P1\nACDKEFGK\n>P2\nEFGK\n", tryptic(DecoyKind::Reversed));
    EXPECT_EQ(shown(digested), "ACDK:P1 [DCAK]:DECOY_P1 EFGK:P1,P2 [GFEK]:DECOY_P1,DECOY_P2");
    EXPECT_EQ(digested.counts.decoys, 2);
}

TEST_F(PeptideDigestTest, ReversedDecoyThatEqualsATargetIsDroppedAndCounted)
{
    // ACAK is its own reverse; CDEK and EDCK are each other's.
    const auto digested = digest(">P1\nACAKCDEKEDCKGGHK\n", tryptic(DecoyKind::Reversed));
    EXPECT_EQ(shown(digested), "ACAK:P1 CDEK:P1 EDCK:P1 GGHK:P1 [HGGK]:DECOY_P1");
    EXPECT_EQ(digested.counts.decoysEqualToTarget, 3);
    EXPECT_EQ(digested.counts.decoys, 1);
}

TEST_F(PeptideDigestTest, DecoysKeepTheFirstResidueWhenTheEnzymeCutsBeforeIt)
{
    PeptideRequest request = tryptic(DecoyKind::Reversed);
    request.digestion.enzyme = QStringLiteral("Lys-N");
    EXPECT_EQ(shown(digest(">P1\nKACDKEFG\n", request)), "KACD:P1 [KDCA]:DECOY_P1 KEFG:P1 [KGFE]:DECOY_P1");
}

TEST_F(PeptideDigestTest, ShuffledDecoyDependsOnSequenceAndSeedAlone)
{
    const auto decoyOf = [this](const QByteArray &fasta, quint64 seed) {
        PeptideRequest request = tryptic(DecoyKind::Shuffled);
        request.decoys.seed = seed;
        std::string decoy;
        for (const auto &[peptide, proteins] : asMap(readAll(*digest(fasta, request).peptides))) {
            std::string sorted = peptide.first;
            std::sort(sorted.begin(), sorted.end());
            if (peptide.second && sorted == "ACDEFGHIKLMN")
                decoy = peptide.first;
        }
        return decoy;
    };
    const std::string alone = decoyOf(">P1\nACDEFGHILMNK\n", 1);
    EXPECT_EQ(alone.size(), 12U);
    EXPECT_EQ(alone.back(), 'K');
    EXPECT_EQ(decoyOf(">P7\nWWWKACDEFGHILMNKYYYYK\n>P8\nPPPPK\n", 1), alone);
    EXPECT_NE(decoyOf(">P1\nACDEFGHILMNK\n", 2), alone);
}

/// Random proteins that share stretches, with residues outside the 20.
QByteArray randomFasta(quint32 seed, int count, std::string_view letters)
{
    std::mt19937 random(seed);
    QByteArray fasta;
    QByteArray shared = randomSequence(random, 60, letters);
    for (int i = 0; i < count; ++i) {
        const QByteArray own = randomSequence(random, static_cast<int>(random() % 200), letters);
        fasta += ">P" + QByteArray::number(i) + '\n' + own + (i % 3 == 0 ? shared : QByteArray()) + '\n';
        if (i % 50 == 0)
            shared = randomSequence(random, 60, letters);
    }
    return fasta;
}

/// The peptides of such proteins, from sets and maps.
Peptides expectedTargets(const QByteArray &fasta, const DigestionOptions &options)
{
    Peptides peptides;
    Digester digester = Digester::create(options).value();
    const QList<QByteArray> lines = fasta.split('\n');
    for (int i = 0; 2 * i + 1 < lines.size(); ++i) {
        const Error error = digester.digest(lines[2 * i + 1], [&](QByteArrayView peptide) {
            const std::string sequence = peptide.toByteArray().toStdString();
            if (sequence.find_first_not_of("ACDEFGHIKLMNPQRSTVWY") == std::string::npos)
                peptides[{sequence, false}].insert(i);
            return Error();
        });
        EXPECT_FALSE(error.hasError());
    }
    return peptides;
}

/// The targets and the decoys that each of them has at its first acceptable attempt.
Peptides withExpectedDecoys(const Peptides &targets, const DecoyOptions &options, DigestionCounts *counts)
{
    const DecoyMaker maker(options, DecoyMaker::LastResidue);
    Peptides all = targets;
    for (const auto &[target, proteins] : targets) {
        const QByteArray sequence = QByteArray::fromStdString(target.first);
        std::optional<QByteArray> decoy;
        bool equalledAtLast = false;
        for (int attempt = 0; !decoy && attempt < maker.attemptCount(); ++attempt) {
            decoy = maker.makeAcceptable(sequence, &attempt);
            if (!decoy)
                equalledAtLast = false;
            else if ((equalledAtLast = targets.count({decoy->toStdString(), false}) > 0))
                decoy.reset();
        }
        if (!decoy) {
            ++(equalledAtLast ? counts->decoysEqualToTarget : counts->decoysTooSimilar);
            continue;
        }
        std::set<int> &ofDecoy = all[{decoy->toStdString(), true}];
        counts->decoysShared += ofDecoy.empty() ? 0 : 1;
        ofDecoy.insert(proteins.begin(), proteins.end());
    }
    return all;
}

void expectEqual(const DigestionCounts &a, const DigestionCounts &b)
{
    EXPECT_EQ(a.decoysEqualToTarget, b.decoysEqualToTarget);
    EXPECT_EQ(a.decoysTooSimilar, b.decoysTooSimilar);
    EXPECT_EQ(a.decoysShared, b.decoysShared);
    EXPECT_EQ(a.targets, b.targets);
    EXPECT_EQ(a.decoys, b.decoys);
}

TEST_F(PeptideDigestTest, RandomProteinsGiveWhatSetsGive)
{
    const QByteArray fasta = randomFasta(1, 1000, "ACDEFGHIKLMNPQRSTVWYKRX");
    PeptideRequest request;
    request.digestion.semiSpecific = true;
    const DigestedPeptides digested = digest(fasta, request);
    EXPECT_GT(digested.peptides->count(), 50000);
    EXPECT_TRUE(asMap(readAll(*digested.peptides)) == expectedTargets(fasta, request.digestion));
}

TEST_F(PeptideDigestTest, ShuffledDecoysThatEqualATargetAreTriedAgain)
{
    // Few kinds of residues and short peptides, so that each count of dropped decoys is reached.
    const QByteArray fasta = randomFasta(2, 600, "AACDK");
    PeptideRequest request = tryptic(DecoyKind::Shuffled);
    request.digestion.minimumLength = 2;
    request.digestion.missedCleavages = 1;
    const Peptides targets = expectedTargets(fasta, request.digestion);
    DigestionCounts counts;
    const Peptides expected = withExpectedDecoys(targets, request.decoys, &counts);
    counts.targets = static_cast<qint64>(targets.size());
    counts.decoys = static_cast<qint64>(expected.size() - targets.size());
    EXPECT_GT(counts.decoysEqualToTarget, 0);
    EXPECT_GT(counts.decoysTooSimilar, 0);
    EXPECT_GT(counts.decoysShared, 0);

    const DigestedPeptides digested = digest(fasta, request);
    EXPECT_TRUE(asMap(readAll(*digested.peptides)) == expected);
    expectEqual(digested.counts, counts);
    EXPECT_EQ(counts.targets,
              counts.decoys + counts.decoysEqualToTarget + counts.decoysTooSimilar + counts.decoysShared);
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
                                           Sorting{DecoyKind::Shuffled, true, 3000000},
                                           Sorting{DecoyKind::Shuffled, false, qint64(64) << 20}));

TEST_F(PeptideDigestTest, PeptidesAreInOrderAndDistinct)
{
    const DigestedPeptides digested = digest(randomFasta(4, 500, "ACDEFGHIKLMNPQRSTVWY"), tryptic(DecoyKind::Shuffled));
    const PeptideBlock block = readAll(*digested.peptides);
    for (qsizetype i = 1; i < block.size(); ++i)
        ASSERT_LT(block[i - 1].sequence.toByteArray().toStdString(), block[i].sequence.toByteArray().toStdString());
}

TEST_F(PeptideDigestTest, AnyRangeCanBeRead)
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

TEST_F(PeptideDigestTest, RangesOutsideAreRefused)
{
    const DigestedPeptides digested = digest(">P1\nAAAK\n", tryptic());
    PeptideBlock block = readAll(*digested.peptides);
    for (const auto &[first, end] : {std::pair<qint64, qint64>{-1, 1}, {0, 2}, {1, 0}}) {
        EXPECT_TRUE(digested.peptides->read(first, end, &block).equals(InvalidInput));
        EXPECT_TRUE(block.isEmpty());
    }
}

TEST_F(PeptideDigestTest, BlockOutlivesWhatItWasReadFrom)
{
    PeptideBlock block;
    {
        const DigestedPeptides digested = digest(">P1\nAAAK\n", tryptic());
        block = readAll(*digested.peptides);
    }
    EXPECT_EQ(block[0].sequence, QByteArrayView("AAAK"));
}

TEST_F(PeptideDigestTest, ProteinsWithoutPeptidesAreNoFailure)
{
    const auto digested = digest(">P1\nAK\n", tryptic(DecoyKind::Shuffled));
    EXPECT_EQ(digested.peptides->count(), 0);
    EXPECT_EQ(digested.counts.targets, 0);
    PeptideRequest onDisk = tryptic(DecoyKind::Reversed);
    onDisk.space.onDisk = true;
    EXPECT_EQ(digest(">P1\nAK\n", onDisk).peptides->count(), 0);
}

TEST_F(PeptideDigestTest, FailuresNameTheFileOrTheField)
{
    const auto failure = [this](const QByteArray &fasta, const PeptideRequest &request) {
        const auto result = digestFasta(m_files.write(QStringLiteral("p.fasta"), fasta), request);
        return m_files.withoutFolder(result.error().message());
    };
    EXPECT_EQ(failure("", tryptic()), "p.fasta holds no protein (no line that begins with '>')");
    EXPECT_EQ(failure(">P1\nAA1K\n", tryptic()), "p.fasta, line 2: '1' is no residue of a protein");
    PeptideRequest request = tryptic();
    request.digestion.missedCleavages = -1;
    EXPECT_EQ(failure(">P1\nAAAK\n", request), "missedCleavages is -1, must be 0 or more");
    request = tryptic();
    request.digestion.cleavagePattern = QStringLiteral("(?<=K)|CDEF");
    EXPECT_EQ(failure(">P1\nAAAKCDEFK\n", request).substr(0, 36), "cleavagePattern is '(?<=K)|CDEF', mu");
    request = tryptic();
    request.space.onDisk = true;
    request.space.temporaryFolder = QStringLiteral("/nowhere");
    EXPECT_EQ(failure(">P1\nAAAK\n", request), "cannot make a temporary file in /nowhere: No such file or directory");
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

TEST_F(PeptideDigestTest, TemporaryFileThatCannotGrowIsAFailure)
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

TEST_F(PeptideDigestTest, HooksHearOfProgressAndStopTheDigestion)
{
    const QString path = m_files.write(QStringLiteral("p.fasta"), randomFasta(7, 300, "ACDEFGHIKLMNPQRSTVWYX"));
    DigestionHooks hooks;
    double last = 0;
    hooks.progress = [&](double fraction) {
        EXPECT_GE(fraction, last);
        last = fraction;
    };
    EXPECT_FALSE(digestFasta(path, tryptic(), hooks).hasError());
    EXPECT_EQ(last, 1.0);

    int asked = 0;
    for (const int turn : {1, 1000, 4000, 8000}) { // while digesting, sorting and making decoys
        asked = 0;
        hooks = {};
        hooks.isInterrupted = [&] { return ++asked == turn; };
        EXPECT_EQ(digestFasta(path, tryptic(DecoyKind::Reversed), hooks).error().message(),
                  QStringLiteral("interrupted"));
    }
    hooks = {};
    hooks.skipped = [](const SkippedPeptide &) { return Error(Failure, QStringLiteral("full")); };
    EXPECT_EQ(digestFasta(path, tryptic(), hooks).error().message(), QStringLiteral("full"));
}

TEST_F(PeptideDigestTest, ListIsNotCutAndKeepsItsProteins)
{
    const auto digested =
        readTable("peptide\tprotein\nAKCK\tP1\nDDD\tP2;P1\nAKCK\tP2\nEEE\t\n", tryptic(DecoyKind::Reversed));
    EXPECT_EQ(shown(digested), "AKCK:P1,P2 [CKAK]:DECOY_P1,DECOY_P2 DDD:P1,P2 EEE:");
    EXPECT_EQ(digested.counts.proteins, 2);
    EXPECT_EQ(digested.counts.decoysEqualToTarget, 2);
}

TEST_F(PeptideDigestTest, PeptidesOfAListOutsideTheLengthsOrWithOtherResiduesAreSkippedAndListed)
{
    QStringList skipped;
    PeptideRequest request = tryptic();
    request.digestion.maximumLength = 5;
    const auto digested =
        readTable("peptide\tprotein\nAAA\t\nAA\tP1\nAAAAAA\t\nAXA\tP1\nC[+57]A\t\n\t\n", request, collecting(&skipped));
    EXPECT_EQ(shown(digested), "AAA:");
    EXPECT_EQ(skipped, QStringList({"P1 AA: 2 residues, not 3 to 5", " AAAAAA: 6 residues, not 3 to 5",
                                    "P1 AXA: residue X at position 2", " C[+57]A: 7 residues, not 3 to 5"}));
    EXPECT_EQ(digested.counts.skipped, 4);
}

TEST_F(PeptideDigestTest, RandomBytesAreNeverMoreThanAFailure)
{
    std::mt19937 random(8);
    const std::string_view letters(">>>>\n\n\n\rACDEFKRXacdk|*- ;#\t\x1F\x8B\x00\x01\xFF=GNsp;", 47);
    for (int i = 0; i < 1000; ++i) {
        QByteArray bytes = randomSequence(random, static_cast<int>(random() % 300), letters);
        if (i % 3 == 0)
            bytes.prepend(i % 2 == 0 ? QByteArray("\x1F\x8B\x08\x00\x00\x00\x00\x00\x00\x03", 10) : QByteArray(">P\n"));
        if (i % 7 == 0)
            bytes.prepend("peptide\tprotein\tgene\n");
        const QString path = m_files.write(QStringLiteral("fuzz"), bytes);
        for (const bool isTable : {false, true}) {
            auto result = isTable ? readPeptideTable(path, tryptic(DecoyKind::Shuffled))
                                  : digestFasta(path, tryptic(DecoyKind::Shuffled));
            if (result.hasError()) {
                EXPECT_FALSE(result.error().message().isEmpty());
                continue;
            }
            const DigestedPeptides digested = std::move(result).value();
            for (const LibraryPeptide &peptide : readAll(*digested.peptides))
                EXPECT_EQ(peptide.sequence.toByteArray().toStdString().find_first_not_of("ACDEFGHIKLMNPQRSTVWY"),
                          std::string::npos);
        }
    }
}

TEST_F(PeptideDigestTest, DamagedCompressedFilesAreNeverMoreThanAFailure)
{
    QFile fixture(digestionFile("two_members.fasta.gz"));
    ASSERT_TRUE(fixture.open(QIODevice::ReadOnly));
    const QByteArray whole = fixture.readAll().left(100);
    std::mt19937 random(9);
    for (int i = 0; i < 1000; ++i) {
        QByteArray bytes = whole;
        for (int change = 0; change < 1 + i % 3; ++change)
            bytes[static_cast<qsizetype>(random() % bytes.size())] = static_cast<char>(random());
        const auto result = digestFasta(m_files.write(QStringLiteral("fuzz.gz"), bytes), tryptic());
        EXPECT_TRUE(!result.hasError() || !result.error().message().isEmpty());
    }
}

} // namespace
} // namespace zav
