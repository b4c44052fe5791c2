// SPDX-License-Identifier: Apache-2.0
#include "Digester.h"

#include "DigestionFixtures.h"
#include "PeptideCollector.h"

namespace zav {
namespace {

QStringList digest(const DigestionOptions &options, const QByteArray &protein)
{
    QStringList peptides;
    Digester digester = Digester::create(options).value();
    const Error error = digester.digest(protein, [&](QByteArrayView peptide, ProteinEnds) {
        peptides.append(QString::fromLatin1(peptide));
        return Error();
    });
    EXPECT_FALSE(error.hasError());
    return peptides;
}

std::string shown(const DigestionOptions &options, const QByteArray &protein)
{
    return digest(options, protein).join(QLatin1Char(' ')).toStdString();
}

/// Trypsin, every length.
DigestionOptions tryptic(int missedCleavages)
{
    DigestionOptions options;
    options.missedCleavages = missedCleavages;
    options.minimumLength = 1;
    options.maximumLength = 1000;
    return options;
}

TEST(Digester, PeptidesAreThoseOfPyteomics)
{
    for (const QStringList &row : digestionTable("cleavage.tsv")) {
        DigestionOptions options;
        options.enzyme = row[0];
        options.missedCleavages = row[1].toInt();
        options.minimumLength = row[2].toInt();
        options.maximumLength = row[3].toInt();
        options.semiSpecific = row[4] == QLatin1String("1");
        QStringList peptides = digest(options, row[5].toLatin1());
        peptides.removeIf([](const QString &p) { return firstNonstandardResidue(p.toLatin1()) >= 0; });
        peptides.sort();
        peptides.removeDuplicates();
        EXPECT_EQ(peptides.join(QLatin1Char(',')).toStdString(), row[6].toStdString())
            << row.mid(0, 6).join(QLatin1Char(' ')).toStdString();
    }
}

TEST(Digester, MissedCleavagesJoinNeighbours)
{
    EXPECT_EQ(shown(tryptic(0), "AAKCCRDD"), "AAK CCR DD");
    EXPECT_EQ(shown(tryptic(1), "AAKCCRDD"), "AAK AAKCCR CCR CCRDD DD");
    EXPECT_EQ(shown(tryptic(2), "AAKCCRDD"), "AAK AAKCCR AAKCCRDD CCR CCRDD DD");
    EXPECT_EQ(shown(tryptic(100), "AAKCCRDD"), "AAK AAKCCR AAKCCRDD CCR CCRDD DD");
}

TEST(Digester, BothEndsOfTheLengthRangeCount)
{
    DigestionOptions options = tryptic(2);
    options.minimumLength = 3;
    options.maximumLength = 5;
    EXPECT_EQ(shown(options, "AAKCCRDD"), "AAK CCR CCRDD");
}

TEST(Digester, PeptideThatOccursTwiceComesTwice)
{
    EXPECT_EQ(shown(tryptic(0), "AKAKAK"), "AK AK AK");
}

TEST(Digester, SemiSpecificPeptidesHaveOneEndAtASite)
{
    DigestionOptions options = tryptic(0);
    options.semiSpecific = true;
    EXPECT_EQ(shown(options, "ACKDE"), "A AC ACK CK K D DE E");
    options.missedCleavages = 1;
    EXPECT_EQ(shown(options, "ACKDE"), "A AC ACK ACKD ACKDE CK CKDE K KDE D DE E");
    options.minimumLength = 4;
    EXPECT_EQ(shown(options, "ACKDE"), "ACKD ACKDE CKDE");
}

TEST(Digester, UnspecificPeptidesAreEveryStretchWhateverTheMissedCleavages)
{
    DigestionOptions options = tryptic(0);
    options.enzyme = QStringLiteral("unspecific");
    options.minimumLength = 2;
    options.maximumLength = 3;
    EXPECT_EQ(shown(options, "AKCRD"), "AK AKC KC KCR CR CRD RD");
}

TEST(Digester, FirstMethionineIsRemovedAndKept)
{
    DigestionOptions options = tryptic(1);
    options.removesMethionine = true;
    EXPECT_EQ(shown(options, "MAKCCMKDD"), "MAK MAKCCMK AK AKCCMK CCMK CCMKDD DD");
    EXPECT_EQ(shown(options, "AMKCC"), "AMK AMKCC CC");
    EXPECT_EQ(shown(options, "M"), "M");
    options.removesMethionine = false;
    EXPECT_EQ(shown(options, "MAKCC"), "MAK MAKCC CC");
}

TEST(Digester, PlaceBehindAFirstMethionineIsNoMissedCleavageAndNoEnd)
{
    DigestionOptions options = tryptic(0);
    options.removesMethionine = true;
    EXPECT_EQ(shown(options, "MAKCC"), "MAK AK CC");
}

TEST(Digester, RemovedMethionineGivesSemiSpecificPeptidesAtItsPlace)
{
    DigestionOptions options = tryptic(0);
    options.semiSpecific = true;
    EXPECT_EQ(shown(options, "MACK"), "M MA MAC MACK ACK CK K");
    options.removesMethionine = true;
    EXPECT_EQ(shown(options, "MACK"), "M MA MAC MACK A AC ACK CK K");
}

TEST(Digester, MethionineThatTheEnzymeCutsOffComesOnce)
{
    DigestionOptions options = tryptic(0);
    options.cleavagePattern = QStringLiteral("(?<=M)");
    options.removesMethionine = true;
    EXPECT_EQ(shown(options, "MAMC"), "M AM C");
}

/// The peptides with `>` before those at the start of the protein and `<` behind those at its end.
std::string withEnds(const DigestionOptions &options, const QByteArray &protein)
{
    QStringList peptides;
    Digester digester = Digester::create(options).value();
    const Error error = digester.digest(protein, [&](QByteArrayView peptide, ProteinEnds ends) {
        peptides.append(QLatin1String(ends.start ? ">" : "") + QString::fromLatin1(peptide) +
                        QLatin1String(ends.end ? "<" : ""));
        return Error();
    });
    EXPECT_FALSE(error.hasError());
    return peptides.join(QLatin1Char(' ')).toStdString();
}

TEST(Digester, EndsOfTheProteinAreTold)
{
    EXPECT_EQ(withEnds(tryptic(1), "AAKCCRDD"), ">AAK >AAKCCR CCR CCRDD< DD<");
    EXPECT_EQ(withEnds(tryptic(0), "AAA"), ">AAA<");
    EXPECT_EQ(withEnds(tryptic(0), "AKAK"), ">AK AK<");
}

TEST(Digester, PlaceBehindARemovedMethionineIsAStart)
{
    DigestionOptions options = tryptic(0);
    EXPECT_EQ(withEnds(options, "MAKCC"), ">MAK CC<");
    options.removesMethionine = true;
    EXPECT_EQ(withEnds(options, "MAKCC"), ">MAK >AK CC<");
    EXPECT_EQ(withEnds(options, "AMKCC"), ">AMK CC<");
    options.enzyme = QStringLiteral("unspecific");
    EXPECT_EQ(withEnds(options, "MAK"), ">M >MA >MAK< >A >AK< K<");
    options.removesMethionine = false;
    EXPECT_EQ(withEnds(options, "MAK"), ">M >MA >MAK< A AK< K<");
}

TEST(Digester, EmptyProteinHasNoPeptides)
{
    EXPECT_EQ(shown(tryptic(2), ""), "");
}

TEST(Digester, StopsWithTheVisitorsError)
{
    Digester digester = Digester::create(tryptic(0)).value();
    int visits = 0;
    const Error error = digester.digest("AKCKDK", [&](QByteArrayView, ProteinEnds) {
        return ++visits == 2 ? Error(Failure, QStringLiteral("full")) : Error();
    });
    EXPECT_EQ(error.message(), QStringLiteral("full"));
    EXPECT_EQ(visits, 2);
}

std::string broken(void (*change)(DigestionOptions *))
{
    DigestionOptions options;
    EXPECT_FALSE(options.checkForParameterErrors().hasError());
    change(&options);
    const Error error = options.checkForParameterErrors();
    EXPECT_TRUE(error.equals(InvalidInput));
    EXPECT_TRUE(Digester::create(options).error().equals(InvalidInput));
    return error.message().toStdString();
}

TEST(DigestionOptions, ErrorsNameFieldValueAndRule)
{
    EXPECT_EQ(broken([](DigestionOptions *o) { o->missedCleavages = -1; }), "missedCleavages is -1, must be 0 or more");
    EXPECT_EQ(broken([](DigestionOptions *o) { o->minimumLength = 0; }),
              "minimumLength is 0, must be within 1 to 65535");
    EXPECT_EQ(broken([](DigestionOptions *o) { o->maximumLength = 6; }),
              "maximumLength is 6, must be within 7 to 65535");
    EXPECT_EQ(broken([](DigestionOptions *o) { o->maximumLength = 65536; }),
              "maximumLength is 65536, must be within 7 to 65535");
    EXPECT_EQ(broken([](DigestionOptions *o) { o->enzyme = QStringLiteral("x"); }).substr(0, 30),
              "enzyme is 'x', must be one of ");
    EXPECT_EQ(broken([](DigestionOptions *o) { o->cleavagePattern = QStringLiteral("K"); }).substr(0, 43),
              "cleavagePattern is 'K', must match between ");
}

TEST(DigestionOptions, PatternTakesThePlaceOfTheEnzyme)
{
    DigestionOptions options = tryptic(0);
    options.enzyme = QStringLiteral("not looked at");
    options.cleavagePattern = QStringLiteral("(?<=C)");
    EXPECT_EQ(shown(options, "AKCRD"), "AKC RD");
}

} // namespace
} // namespace zav
