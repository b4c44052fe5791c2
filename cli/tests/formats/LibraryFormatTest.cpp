// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"
#include "PeptideMasses.h"
#include "PeptideNotation.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

// ACDEFGHK with 57.02146 Da on its C, 2+; masses by pyteomics 4.7.5.
LibraryEntry example()
{
    LibraryEntry entry;
    entry.peptide = QStringLiteral("ACDEFGHK");
    entry.charge = 2;
    entry.precursorMz = 482.20308;
    entry.cysteineMass = 57.02146;
    entry.proteins = QStringList{QStringLiteral("P12345"), QStringLiteral("Q67890")};
    entry.genes = QStringList{QStringLiteral("TEST"), QString()};
    entry.proteinNames = QStringList{QStringLiteral("TEST_HUMAN"), QStringLiteral("OTHER_HUMAN")};
    entry.peaks = {{232.07503, 0.2, QLatin1Char('b'), 2, 1, {}, 0},
                   {437.67925, 0.05, QLatin1Char('y'), 7, 2, QStringLiteral("-H2O"), 0},
                   {589.3093, 0.02, QLatin1Char('a'), 5, 1, {}, 0},
                   {617.30419, 1.0, QLatin1Char('y'), 5, 1, {}, 0},
                   {618.3075448, 0.33, QLatin1Char('y'), 5, 1, {}, 1}};
    return entry;
}

LibraryEntry decoy()
{
    LibraryEntry entry = example();
    entry.peptide = QStringLiteral("HGFEDCAK");
    entry.proteins = QStringList{QStringLiteral("DECOY_P12345")};
    entry.genes.clear();
    entry.proteinNames.clear();
    entry.isDecoy = true;
    entry.peaks = {{617.30419, 1.0, QLatin1Char('y'), 5, 1, {}, 0}};
    return entry;
}

LibraryEntry withoutPeaks()
{
    LibraryEntry entry = example();
    entry.peaks.clear();
    return entry;
}

std::string text(LibraryFileKind kind, const LibraryEntry &entry, qint64 index = 0)
{
    return textLibraryFormat(kind)->entry(entry, index).toStdString();
}

std::string notation(const FragmentPeak &peak)
{
    TextBuffer buffer;
    addIonNotation(&buffer, peak);
    return buffer.take().toStdString();
}

TEST(IonNotation, WritesChargesOverOneAndIsotopesAsTheFieldDoes)
{
    const QString ammonia = QStringLiteral("-NH3");
    EXPECT_EQ(notation({0, 0, QLatin1Char('b'), 3, 1, {}, 0}), "b3");
    EXPECT_EQ(notation({0, 0, QLatin1Char('y'), 7, 2, ammonia, 0}), "y7-NH3^2");
    EXPECT_EQ(notation({0, 0, QLatin1Char('y'), 7, 2, ammonia, 1}), "y7-NH3+i^2");
    EXPECT_EQ(notation({0, 0, QLatin1Char('b'), 13, 1, {}, 2}), "b13+2i");
    EXPECT_EQ(notation(FragmentPeak()), "?");
}

TEST(JoinedNames, EmptyOnesAreLeftOutAndEqualOnesStandOnce)
{
    EXPECT_EQ(joinedNames({QStringLiteral("B"), QString(), QStringLiteral("A"), QStringLiteral("B")}), "B;A");
    EXPECT_EQ(joinedNames({}), "");
}

TEST(CysteineModification, MassWithFewerDigitsIsThatOfUnimod)
{
    EXPECT_EQ(exactCysteineMass(57.02146), 57.021464);
    EXPECT_EQ(exactCysteineMass(57.0215), 57.0215);
    EXPECT_EQ(exactCysteineMass(12.5), 12.5);
    EXPECT_TRUE(isCysteineModified(-2.0));
    EXPECT_FALSE(isCysteineModified(0.0));
}

TEST(MspLibraryFormat, CommentHasModificationsProteinsAndGenes)
{
    EXPECT_EQ(text(LibraryFileKind::Msp, example()), "Name: ACDEFGHK/2\n"
                                                     "MW: 962.39161\n"
                                                     "PrecursorMZ: 482.20308\n"
                                                     "Charge: 2\n"
                                                     "Comment: Parent=482.20308 Mods=1/1,C,Carbamidomethyl "
                                                     "Protein=P12345;Q67890 Gene=TEST\n"
                                                     "Num peaks: 5\n"
                                                     "232.07503\t2000.0\t\"b2/0.0ppm\"\n"
                                                     "437.67925\t500.0\t\"y7-H2O^2/0.0ppm\"\n"
                                                     "589.30930\t200.0\t\"a5/0.0ppm\"\n"
                                                     "617.30419\t10000.0\t\"y5/0.0ppm\"\n"
                                                     "618.30754\t3300.0\t\"y5+i/0.0ppm\"\n"
                                                     "\n");
}

TEST(MspLibraryFormat, NamesWithBlanksAreQuoted)
{
    LibraryEntry entry = decoy();
    entry.proteins = QStringList{QStringLiteral("my protein"), QStringLiteral("P1")};
    const std::string written = text(LibraryFileKind::Msp, entry);
    EXPECT_NE(written.find(" Protein=\"my protein;P1\" Remark=DECOY\n"), std::string::npos);
}

TEST(MspLibraryFormat, DecoyIsRemarked)
{
    const std::string written = text(LibraryFileKind::Msp, decoy());
    EXPECT_NE(written.find("Mods=1/5,C,Carbamidomethyl Protein=DECOY_P12345 Remark=DECOY\n"), std::string::npos);
}

TEST(TsvLibraryFormat, MonoisotopicBAndYIonsHaveRows)
{
    EXPECT_EQ(text(LibraryFileKind::Tsv, example()),
              "482.20308\t232.07503\t0.200000\t0\tP12345;Q67890\tTEST\tTEST\tACDEFGHK\tAC(UniMod:4)DEFGHK\t2\t0\t"
              "ACDEFGHK_2\tACDEFGHK_2_b2\t1\tb\t2\tnoloss\tb2\n"
              "482.20308\t437.67925\t0.050000\t0\tP12345;Q67890\tTEST\tTEST\tACDEFGHK\tAC(UniMod:4)DEFGHK\t2\t0\t"
              "ACDEFGHK_2\tACDEFGHK_2_y7-H2O^2\t2\ty\t7\tH2O\ty7-H2O^2\n"
              "482.20308\t617.30419\t1.000000\t0\tP12345;Q67890\tTEST\tTEST\tACDEFGHK\tAC(UniMod:4)DEFGHK\t2\t0\t"
              "ACDEFGHK_2\tACDEFGHK_2_y5\t1\ty\t5\tnoloss\ty5\n");
}

TEST(TsvLibraryFormat, DecoyHasItsFlagAndAGroupOfItsOwn)
{
    EXPECT_EQ(text(LibraryFileKind::Tsv, decoy()),
              "482.20308\t617.30419\t1.000000\t0\tDECOY_P12345\t\t\tHGFEDCAK\tHGFEDC(UniMod:4)AK\t2\t1\t"
              "DECOY_HGFEDCAK_2\tDECOY_HGFEDCAK_2_y5\t1\ty\t5\tnoloss\ty5\n");
}

TEST(TsvLibraryFormat, EachRowHasTheColumnsOfTheHeader)
{
    const LibraryFormat *format = textLibraryFormat(LibraryFileKind::Tsv);
    const auto columns = format->opening({}).count('\t');
    LibraryEntry bare = decoy();
    bare.proteins.clear();
    for (const LibraryEntry &entry : {example(), decoy(), bare}) {
        for (const QByteArray &row : format->entry(entry, 0).trimmed().split('\n'))
            EXPECT_EQ(row.count('\t'), columns);
    }
}

TEST(TsvLibraryFormat, CysteinesAreTaggedByReagentOrMass)
{
    LibraryEntry entry = decoy();
    entry.cysteineMass = 12.345;
    EXPECT_NE(text(LibraryFileKind::Tsv, entry).find("\tHGFEDC[+12.345000]AK\t"), std::string::npos);
    entry.cysteineMass = -2.01565;
    EXPECT_NE(text(LibraryFileKind::Tsv, entry).find("\tHGFEDC[-2.015650]AK\t"), std::string::npos);
    entry.cysteineMass = 45.98772;
    EXPECT_NE(text(LibraryFileKind::Tsv, entry).find("\tHGFEDC(UniMod:39)AK\t"), std::string::npos);
    entry.cysteineMass = 0;
    EXPECT_NE(text(LibraryFileKind::Tsv, entry).find("\tHGFEDCAK\tHGFEDCAK\t"), std::string::npos);
}

TEST(MgfLibraryFormat, PeptideMassIsTheMzAndDecoysAreNamedInTheTitle)
{
    EXPECT_EQ(text(LibraryFileKind::Mgf, decoy()), "BEGIN IONS\n"
                                                   "TITLE=DECOY_HGFEDCAK/2\n"
                                                   "PEPMASS=482.20308\n"
                                                   "CHARGE=2+\n"
                                                   "617.30419 10000.0\n"
                                                   "END IONS\n"
                                                   "\n");
}

TEST(MzSpecLibFormat, ProteinsAreGroupsOfAttributesAndIsotopesAreAnnotated)
{
    EXPECT_EQ(text(LibraryFileKind::MzSpecLib, example(), 6),
              "<Spectrum=7>\n"
              "MS:1003061|library spectrum name=ACDEFGHK/2\n"
              "MS:1003072|spectrum origin type=MS:1003074|predicted spectrum\n"
              "MS:1003065|spectrum aggregation type=MS:1003074|predicted spectrum\n"
              "MS:1000041|charge state=2\n"
              "MS:1003208|experimental precursor monoisotopic m/z=482.20308\n"
              "MS:1003059|number of peaks=5\n"
              "<Analyte=1>\n"
              "MS:1003270|proforma peptidoform ion notation=AC[UNIMOD:4]DEFGHK/2\n"
              "MS:1000888|stripped peptide sequence=ACDEFGHK\n"
              "MS:1001117|theoretical neutral mass=962.39161\n"
              "MS:1003053|theoretical monoisotopic m/z=482.20308\n"
              "[1]MS:1000885|protein accession=P12345\n"
              "[1]MS:1000886|protein name=TEST_HUMAN\n"
              "[1]MS:1000934|gene name=TEST\n"
              "[2]MS:1000885|protein accession=Q67890\n"
              "[2]MS:1000886|protein name=OTHER_HUMAN\n"
              "<Peaks>\n"
              "232.07503\t0.200000\tb2/0.0ppm\n"
              "437.67925\t0.050000\ty7-H2O^2/0.0ppm\n"
              "589.30930\t0.020000\ta5/0.0ppm\n"
              "617.30419\t1.000000\ty5/0.0ppm\n"
              "618.30754\t0.330000\ty5+i/0.0ppm\n"
              "\n");
}

TEST(MzSpecLibFormat, OpeningNamesTheLibraryAndNothingThatChanges)
{
    EXPECT_EQ(textLibraryFormat(LibraryFileKind::MzSpecLib)
                  ->opening({QStringLiteral("yeast"), QStringLiteral("1.2.3")})
                  .toStdString(),
              "<mzSpecLib>\n"
              "MS:1003186|library format version=1.0\n"
              "MS:1003188|library name=yeast\n"
              "MS:1003189|library description=Fragment spectra predicted by zav 1.2.3\n"
              "\n");
}

TEST(MzSpecLibFormat, FirstLineOfAnEntryHoldsItsNumber)
{
    const LibraryFormat &format = mzSpecLibFormat();
    EXPECT_TRUE(format.numbersEntries());
    EXPECT_EQ(format.firstLine(1234), "<Spectrum=1235>\n");
    EXPECT_TRUE(format.isFirstLine("<Spectrum=12>\n"));
    EXPECT_FALSE(format.isFirstLine("<Analyte=1>\n"));
    EXPECT_FALSE(format.isFirstLine("102.05496\t1.0\tb1/0.0ppm\n"));
}

TEST(LibraryFormat, OtherFormatsNumberNoEntries)
{
    for (const LibraryFileKind kind : {LibraryFileKind::Msp, LibraryFileKind::Tsv, LibraryFileKind::Mgf}) {
        EXPECT_FALSE(textLibraryFormat(kind)->numbersEntries());
        EXPECT_EQ(text(kind, example(), 0), text(kind, example(), 7));
    }
}

TEST(LibraryFormat, EntryWithoutPeaksIsLeftOut)
{
    for (const LibraryFileKind kind :
         {LibraryFileKind::Msp, LibraryFileKind::Tsv, LibraryFileKind::Mgf, LibraryFileKind::MzSpecLib})
        EXPECT_EQ(text(kind, withoutPeaks()), "");
}

TEST(LibraryFormat, EntryWithoutPeaksOfTheTransitionListIsLeftOutOfIt)
{
    LibraryEntry entry = example();
    entry.peaks = {entry.peaks[2], entry.peaks[4]};
    EXPECT_EQ(text(LibraryFileKind::Tsv, entry), "");
}

TEST(LibraryFileKind, EndingOfTheFileTellsTheKind)
{
    EXPECT_EQ(libraryFileKindOfPath(QStringLiteral("a/lib.MSP")), LibraryFileKind::Msp);
    EXPECT_EQ(libraryFileKindOfPath(QStringLiteral("lib.tsv")), LibraryFileKind::Tsv);
    EXPECT_EQ(libraryFileKindOfPath(QStringLiteral("lib.mgf")), LibraryFileKind::Mgf);
    EXPECT_EQ(libraryFileKindOfPath(QStringLiteral("lib.dlib")), LibraryFileKind::Dlib);
    EXPECT_EQ(libraryFileKindOfPath(QStringLiteral("lib.blib")), LibraryFileKind::Blib);
    EXPECT_EQ(libraryFileKindOfPath(QStringLiteral("lib.mzSpecLib.txt")), LibraryFileKind::MzSpecLib);
    EXPECT_EQ(libraryFileKindOfPath(QStringLiteral("lib.txt")), std::nullopt);
    EXPECT_EQ(libraryFileKindOfPath(QString()), std::nullopt);
}

TEST(LibraryFileKind, EachNameIsThatOfAKindAndTextKindsHaveAFormat)
{
    for (const QString &name : libraryFileKindNames()) {
        const auto kind = libraryFileKindOfName(name.toUpper());
        ASSERT_TRUE(kind.has_value()) << name.toStdString();
        EXPECT_EQ(textLibraryFormat(*kind) == nullptr, isSqlite(*kind));
    }
    EXPECT_EQ(libraryFileKindOfName(QStringLiteral("xml")), std::nullopt);
}

} // namespace
} // namespace zav
