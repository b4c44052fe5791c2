// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"
#include "PeptideNotation.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

Modification named(const char *name)
{
    return modifications::findByName(QString::fromUtf8(name))->modification;
}

Peptidoform withCysteine(const char *peptide, const Modification &modification)
{
    const QString sequence = QString::fromUtf8(peptide);
    return Peptidoform(sequence, {{static_cast<int>(sequence.indexOf(QLatin1Char('C'))) + 1, modification}});
}

// ACDEFGHK with carbamidomethylated C, 2+; masses by pyteomics 4.7.5.
LibraryEntry example()
{
    LibraryEntry entry;
    entry.peptidoform = withCysteine("ACDEFGHK", named("Carbamidomethyl"));
    entry.charge = 2;
    entry.precursorMz = 482.20308;
    entry.proteins = {{"P12345", "TEST", "TEST_HUMAN"}, {"Q67890", "", "OTHER_HUMAN"}};
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
    entry.peptidoform = withCysteine("HGFEDCAK", named("Carbamidomethyl"));
    entry.proteins = {{"DECOY_P12345", "", ""}};
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
    TextBuffer buffer;
    textLibraryFormat(kind)->addEntry(entry, index, &buffer);
    return buffer.take().toStdString();
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

std::string joinedGenes(const QList<QByteArray> &genes)
{
    QList<LibraryProtein> proteins;
    for (const QByteArray &gene : genes)
        proteins.append({"P", gene, ""});
    TextBuffer buffer;
    addJoinedNames(&buffer, proteins, &LibraryProtein::gene);
    return buffer.take().toStdString();
}

TEST(JoinedNames, EmptyOnesAreLeftOutAndEqualOnesStandOnce)
{
    EXPECT_EQ(joinedGenes({"B", "", "A", "B"}), "B;A");
    EXPECT_EQ(joinedGenes({}), "");
    QList<QByteArray> many(100, "B");
    many[50] = "A";
    many[51].clear();
    EXPECT_EQ(joinedGenes(many), "B;A");
}

Peptidoform manifold()
{
    return Peptidoform(QStringLiteral("MCSK"), {{0, named("Acetyl")},
                                                {1, named("Oxidation")},
                                                {2, modifications::ofMass(12.345)},
                                                {3, named("Phospho")},
                                                {5, named("Amidated")}});
}

TEST(PeptideNotation, TerminiStandApartFromTheirResidues)
{
    TextBuffer buffer;
    addProForma(&buffer, manifold());
    EXPECT_EQ(buffer.take(), "[UNIMOD:1]-M[UNIMOD:35]C[+12.345000]S[UNIMOD:21]K-[UNIMOD:2]");
    addOpenSwathNotation(&buffer, manifold());
    EXPECT_EQ(buffer.take(), "(UniMod:1)M(UniMod:35)C[+12.345000]S(UniMod:21)K.(UniMod:2)");
}

// Unimod: acetyl 42.010565, oxidation 15.994915, phospho 79.966331, amidated -0.984016.
TEST(PeptideNotation, MassesOfATerminusAreAddedToThoseOfItsResidue)
{
    const QList<ModifiedResidue> residues = modifiedResidues(manifold());
    ASSERT_EQ(residues.size(), 4);
    EXPECT_NEAR(residues[0].mass, 58.00548, 1e-9);
    EXPECT_EQ(residues[1], (ModifiedResidue{2, 12.345}));
    EXPECT_EQ(residues[2], (ModifiedResidue{3, 79.966331}));
    EXPECT_EQ(residues[3], (ModifiedResidue{4, -0.984016}));
    TextBuffer buffer;
    addMassNotation(&buffer, manifold(), residues, 6);
    EXPECT_EQ(buffer.take(), "M[+58.005480]C[+12.345000]S[+79.966331]K[-0.984016]");
    addMassNotation(&buffer, manifold(), residues, 5);
    EXPECT_EQ(buffer.take(), "M[+58.00548]C[+12.34500]S[+79.96633]K[-0.98402]");
}

TEST(PeptideNotation, VariantsAreNamedWithTheirModifications)
{
    LibraryEntry entry = decoy();
    TextBuffer buffer;
    addPrecursorName(&buffer, entry);
    EXPECT_EQ(buffer.take(), "DECOY_HGFEDCAK_2");
    addSpectrumName(&buffer, entry);
    EXPECT_EQ(buffer.take(), "DECOY_HGFEDCAK/2");
    entry.isVariant = true;
    addPrecursorName(&buffer, entry);
    EXPECT_EQ(buffer.take(), "DECOY_HGFEDC(UniMod:4)AK_2");
    addSpectrumName(&buffer, entry);
    EXPECT_EQ(buffer.take(), "DECOY_HGFEDC[UNIMOD:4]AK/2");
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
    entry.proteins = {{"my protein", "", ""}, {"P1", "", ""}};
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
        for (const QByteArray &row : QByteArray::fromStdString(text(LibraryFileKind::Tsv, entry)).trimmed().split('\n'))
            EXPECT_EQ(row.count('\t'), columns);
    }
}

TEST(TsvLibraryFormat, CysteinesAreTaggedByReagentOrMass)
{
    LibraryEntry entry = decoy();
    entry.peptidoform = withCysteine("HGFEDCAK", modifications::ofMass(12.345));
    EXPECT_NE(text(LibraryFileKind::Tsv, entry).find("\tHGFEDC[+12.345000]AK\t"), std::string::npos);
    entry.peptidoform = withCysteine("HGFEDCAK", modifications::ofMass(-2.01565));
    EXPECT_NE(text(LibraryFileKind::Tsv, entry).find("\tHGFEDC[-2.015650]AK\t"), std::string::npos);
    entry.peptidoform = withCysteine("HGFEDCAK", named("Methylthio"));
    EXPECT_NE(text(LibraryFileKind::Tsv, entry).find("\tHGFEDC(UniMod:39)AK\t"), std::string::npos);
    entry.peptidoform = Peptidoform(QStringLiteral("HGFEDCAK"));
    EXPECT_NE(text(LibraryFileKind::Tsv, entry).find("\tHGFEDCAK\tHGFEDCAK\t"), std::string::npos);
}

TEST(TsvLibraryFormat, LossesOfModificationsStandInTheirColumnAndTheAnnotation)
{
    LibraryEntry entry = decoy();
    entry.peaks = {{617.30419, 1.0, QLatin1Char('y'), 5, 2, QStringLiteral("-2H3PO4"), 0}};
    const std::string written = text(LibraryFileKind::Tsv, entry);
    EXPECT_NE(written.find("_y5-2H3PO4^2\t2\ty\t5\t2H3PO4\ty5-2H3PO4^2\n"), std::string::npos) << written;
}

LibraryEntry timed(TimeScale scale)
{
    LibraryEntry entry = decoy();
    entry.retentionTime = -12.3456;
    entry.timeScale = scale;
    return entry;
}

TEST(RetentionTime, IrtStandsWhereAFormatHasIt)
{
    const LibraryEntry entry = timed(TimeScale::Irt);
    EXPECT_NE(text(LibraryFileKind::Msp, entry).find("Protein=DECOY_P12345 iRT=-12.346 Remark"), std::string::npos);
    EXPECT_NE(text(LibraryFileKind::Tsv, entry).find("\t1.000000\t-12.346\tDECOY_P12345\t"), std::string::npos);
    EXPECT_NE(text(LibraryFileKind::MzSpecLib, entry)
                  .find("\n[1]MS:1000896|normalized retention time=-12.346\n[1]UO:0000000|unit=UO:0000031|minute\n"),
              std::string::npos);
    EXPECT_EQ(text(LibraryFileKind::Mgf, entry).find("RTINSECONDS"), std::string::npos);
}

// 60 x -12.3456 = -740.736.
TEST(RetentionTime, CalibratedOneIsInTheUnitOfTheFormat)
{
    const LibraryEntry entry = timed(TimeScale::Minutes);
    EXPECT_NE(text(LibraryFileKind::Msp, entry).find(" RetentionTime=-740.736 Remark"), std::string::npos);
    EXPECT_NE(text(LibraryFileKind::Tsv, entry).find("\t-12.346\t"), std::string::npos);
    EXPECT_NE(text(LibraryFileKind::MzSpecLib, entry)
                  .find("\n[1]MS:1000897|predicted retention time=-12.346\n[1]UO:0000000|unit=UO:0000031|minute\n"),
              std::string::npos);
    EXPECT_NE(text(LibraryFileKind::Mgf, entry).find("\nCHARGE=2+\nRTINSECONDS=-740.736\n617"), std::string::npos);
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
    EXPECT_EQ(libraryFileKindOfPath(QStringLiteral("lib.pqp")), LibraryFileKind::Pqp);
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
