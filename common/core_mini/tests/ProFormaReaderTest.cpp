// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <iterator>
#include <random>

#include <zav/Peptidoform.h>

namespace zav {
namespace {

std::string readAndWritten(const char *text)
{
    const auto peptidoform = Peptidoform::fromProForma(QString::fromUtf8(text));
    return (peptidoform.hasError() ? peptidoform.error().message() : peptidoform.value().toProForma()).toStdString();
}

struct Reading
{
    const char *text;
    const char *written;
};

TEST(ProForma, NamesAccessionsAndMassesAreRead)
{
    const Reading readings[] = {
        {"ACDMK", "ACDMK"},
        {"BJOUXZ", "BJOUXZ"},
        {"AC[Carbamidomethyl]DM[Oxidation]K", "AC[Carbamidomethyl]DM[Oxidation]K"},
        {"AC[carbamidomethyl]DM[U:OXIDATION]K", "AC[Carbamidomethyl]DM[Oxidation]K"},
        {"AC[UNIMOD:4]DM[unimod:0035]K", "AC[Carbamidomethyl]DM[Oxidation]K"},
        {"AM[+15.9949]K[-18]", "AM[+15.9949]K[-18]"},
        {"AM[U:+15.99491460]K", "AM[+15.994915]K"},
        {"AM[+0000.5]K[+999999.5]", "AM[+0.5]K[+999999.5]"},
        {"K[Label:13C(6)15N(2)]", "K[Label:13C(6)15N(2)]"},
        {"[Gln->pyro-Glu]-QK", "[Gln->pyro-Glu]-QK"},
        {"[Acetyl]-AK-[Amidated]", "[Acetyl]-AK-[Amidated]"},
        {"[+42.01]-A[-1]-[+1]", "[+42.01]-A[-1]-[+1]"},
    };
    for (const Reading &reading : readings)
        EXPECT_EQ(reading.written, readAndWritten(reading.text)) << reading.text;
}

TEST(ProForma, FixedModificationsArePlaced)
{
    const Reading readings[] = {
        {"<[Carbamidomethyl]@C>ACDCK", "AC[Carbamidomethyl]DC[Carbamidomethyl]K"},
        {"<[Carbamidomethyl]@C>AAA", "AAA"},
        {"<[Oxidation]@M, P>AMPK", "AM[Oxidation]P[Oxidation]K"},
        {"<[TMT6plex]@K,N-term>AKK", "[TMT6plex]-AK[TMT6plex]K[TMT6plex]"},
        {"<[Amidated]@C-term><[+1]@n-TERM>AK", "[+1]-AK-[Amidated]"},
        {"<[Gln->pyro-Glu]@N-term:Q>QQ", "[Gln->pyro-Glu]-QQ"},
        {"<[Gln->pyro-Glu]@N-term:Q>AQ", "AQ"},
        {"<[Amidated]@C-term:K,C-term:R>KAR", "KAR-[Amidated]"},
        {"<[Carbamidomethyl]@C>[Acetyl]-CM[Oxidation]K", "[Acetyl]-C[Carbamidomethyl]M[Oxidation]K"},
    };
    for (const Reading &reading : readings)
        EXPECT_EQ(reading.written, readAndWritten(reading.text)) << reading.text;
}

TEST(ProForma, ProblemsAreNamedWithTheirPlace)
{
    const Reading readings[] = {
        {"", "no residue at all"},
        {"ACM[Foo]K", "no modification 'Foo' at character 5"},
        {"M[UNIMOD:99999]", "no modification 'UNIMOD:99999' at character 3"},
        {"M[UNIMOD:]", "no modification 'UNIMOD:' at character 3"},
        {"M[UNIMOD:-35]", "no modification 'UNIMOD:-35' at character 3"},
        {"M[UNIMOD:4294967331]", "no modification 'UNIMOD:4294967331' at character 3"}, // 2^32 + 35
        {"M[]", "no modification at character 3"},
        {"M[U:]", "no modification '' at character 3"},
        {"M[+]", "no mass of up to 1e6 Da: '+' at character 3"},
        {"M[+inf]", "no mass of up to 1e6 Da: '+inf' at character 3"},
        {"M[+nan]", "no mass of up to 1e6 Da: '+nan' at character 3"},
        {"M[+1e3]", "no mass of up to 1e6 Da: '+1e3' at character 3"},
        {"M[-1.2.3]", "no mass of up to 1e6 Da: '-1.2.3' at character 3"},
        {"M[+1000001]", "no mass of up to 1e6 Da: '+1000001' at character 3"},
        {"M[-0.0000001]", "no mass at all: '-0.0000001' at character 3"},
        {"AcK", "no residue 'c' (residues are capitals) at character 2"},
        {"A K", "unexpected U+0020 at character 2"},
        {"AK*", "unexpected '*' at character 3"},
        {"A\xC3\xA4K", "unexpected U+00e4 at character 2"},
        {"AM[Oxidation", "'[' is never closed at character 3"},
        {"AM]K", "unexpected ']' at character 3"},
        {"[Acetyl]AK", "'-' is missing behind the modification of the N-terminus at character 9"},
        {"[Acetyl]-", "no residue at character 10"},
        {"[Acetyl]-[Acetyl]", "unexpected '[' at character 10"},
        {"-[Amidated]", "no residue at character 1"},
        {"AK-", "no modification of the C-terminus behind '-' at character 4"},
        {"AK-R", "no modification of the C-terminus behind '-' at character 4"},
        {"AK-[Amidated]R", "unexpected 'R' at character 14"},
        {"[Acetyl][Acetyl]-AK", "a second modification of the N-terminus at character 9"},
        {"AM[Oxidation][Phospho]K", "a second modification of residue 2 at character 14"},
        {"AK-[Amidated][Amidated]", "a second modification of the C-terminus at character 14"},
        {"<[Methyl]@C>AC[Oxidation]", "a second modification of residue 2, the fixed one at character 1"},
        {"<[Methyl]@N-term>[Acetyl]-A", "a second modification of the N-terminus, the fixed one at character 1"},
        {"<[Methyl]@A><[Acetyl]@A>A", "a second modification of residue 1, the fixed one at character 13"},
        {"<[Methyl]@A", "'<' is never closed at character 1"},
        {"<[Methyl]A>A", "'@' and a site are missing behind a fixed modification at character 10"},
        {"<[Methyl]@>A", "no site '' of a fixed modification at character 11"},
        {"<[Methyl]@K,AB>A", "no site 'AB' of a fixed modification at character 13"},
        {"<[Methyl]@K,N-term:>A", "no site 'N-term:' of a fixed modification at character 13"},
        {"<[Methyl]@k>A", "no site 'k' of a fixed modification at character 11"},
        {"<[Foo]@K>A", "no modification 'Foo' at character 3"},
        {"M[\x1b]0;\a]", "no modification '\\x1b' at character 3"}, // would change a terminal
        {"<[Methyl]@\x7f>M", "no site '\\x7f' of a fixed modification at character 11"},
    };
    for (const Reading &reading : readings) {
        EXPECT_EQ(reading.written, readAndWritten(reading.text)) << reading.text;
        EXPECT_EQ(InvalidInput, Peptidoform::fromProForma(QString::fromUtf8(reading.text)).error().code());
    }
}

TEST(ProForma, WhatIsNotSupportedIsNamedWithItsPlace)
{
    const Reading readings[] = {
        {"<13C>AK", "unsupported: isotopes of the whole peptide ('<') at character 1"},
        {"AK<13C>", "unsupported: isotopes of the whole peptide ('<') at character 3"},
        {"AK/2", "unsupported: a charge ('/') at character 3"},
        {"AK-[Amidated]/2", "unsupported: a charge ('/') at character 14"},
        {"AK//RK", "unsupported: cross-linked or branched peptides ('//') at character 3"},
        {"AK+RK", "unsupported: several peptides in one spectrum ('+') at character 3"},
        {"A(MK)[Oxidation]", "unsupported: ranges of residues ('(') at character 2"},
        {"(?AM)K", "unsupported: ranges of residues ('(') at character 1"},
        {"{Glycan:Hex}AK", "unsupported: labile modifications ('{') at character 1"},
        {"[Phospho]?AS", "unsupported: modifications at an unknown place ('?') at character 10"},
        {"[Phospho]^2?AS", "unsupported: modifications at an unknown place ('^') at character 10"},
        {"AS[Phospho#g1]T[#g1]", "unsupported: labels of groups, scores and cross-links ('#') at character 11"},
        {"AM[Oxidation|INFO:sure]", "unsupported: choices and remarks ('|') at character 13"},
        {"AM[A[B]]", "unsupported: brackets within brackets ('[') at character 5"},
        {"AM[Obs:+15.99]", "unsupported: observed masses ('Obs:') at character 4"},
        {"AN[Glycan:Hex]", "unsupported: glycans ('Glycan:') at character 4"},
        {"AM[Formula:O]", "unsupported: formulas ('Formula:') at character 4"},
        {"AM[MOD:00719]", "unsupported: PSI-MOD ('MOD:') at character 4"},
        {"AM[M:+15.99]", "unsupported: PSI-MOD ('M:') at character 4"},
        {"AK[XLMOD:02001]", "unsupported: cross-linkers ('XLMOD:') at character 4"},
        {"AM[RESID:AA0581]", "unsupported: RESID ('RESID:') at character 4"},
    };
    for (const Reading &reading : readings) {
        EXPECT_EQ(reading.written, readAndWritten(reading.text)) << reading.text;
        EXPECT_EQ(InvalidInput, Peptidoform::fromProForma(QString::fromUtf8(reading.text)).error().code());
    }
}

TEST(ProForma, AbsurdSizesAreErrors)
{
    EXPECT_FALSE(Peptidoform::fromProForma(QString(10000, u'A')).hasError());
    EXPECT_EQ(QStringLiteral("10001 characters, more than 10000"),
              Peptidoform::fromProForma(QString(10001, u'A')).error().message());
    EXPECT_EQ(QStringLiteral("1000000 characters, more than 10000"),
              Peptidoform::fromProForma(QString(1000000, u'[')).error().message());
    EXPECT_EQ(QStringLiteral("no modification '%1...' at character 3").arg(QString(40, u'x')),
              Peptidoform::fromProForma(QStringLiteral("M[%1]").arg(QString(9000, u'x'))).error().message());
    EXPECT_TRUE(Peptidoform::fromProForma(QStringLiteral("M[+%1]").arg(QString(9000, u'9'))).hasError());
}

Peptidoform randomPeptidoform(std::mt19937 *random)
{
    const auto upTo = [&](qsizetype count) { return static_cast<int>((*random)() % static_cast<unsigned>(count)); };
    QString sequence;
    for (int length = 1 + upTo(12); length > 0; --length)
        sequence += QChar(u'A' + upTo(26));
    QList<PlacedModification> placed;
    for (int position = 0; position <= sequence.size() + 1; ++position) {
        const int kind = upTo(6);
        if (kind == 0)
            placed.append({position, modifications::all()[upTo(modifications::all().size())].modification});
        else if (kind == 1) // a millionth of a dalton or more, either way
            placed.append({position, modifications::ofMass((1 + upTo(1 << 30)) * (upTo(2) == 0 ? 1e-6 : -1e-6))});
    }
    return Peptidoform(sequence, placed);
}

TEST(ProForma, WhatIsWrittenIsReadBack)
{
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        const Peptidoform peptidoform = randomPeptidoform(&random);
        const QString text = peptidoform.toProForma();
        const auto again = Peptidoform::fromProForma(text);
        ASSERT_FALSE(again.hasError()) << text.toStdString() << ": " << again.error().message().toStdString();
        ASSERT_TRUE(again.value() == peptidoform) << text.toStdString();
    }
}

// A peptidoform that was read has capitals for residues, and positions in order within its termini.
void expectSound(const Peptidoform &peptidoform, const QString &text)
{
    EXPECT_GT(peptidoform.length(), 0) << text.toStdString();
    for (const QChar residue : peptidoform.sequence())
        EXPECT_TRUE(residue >= u'A' && residue <= u'Z') << text.toStdString();
    int before = -1;
    for (const PlacedModification &placed : peptidoform.modifications()) {
        EXPECT_GT(placed.position, before) << text.toStdString();
        before = placed.position;
        EXPECT_NE(0.0, placed.modification.mass) << text.toStdString();
    }
    EXPECT_LE(before, peptidoform.length() + 1) << text.toStdString();
    EXPECT_TRUE(Peptidoform::fromProForma(peptidoform.toProForma()).value() == peptidoform) << text.toStdString();
}

TEST(ProForma, DamagedTextsAreNeverMoreThanAnError)
{
    constexpr char16_t LETTERS[] = u"AACDKMM[[]]]--+<>@,:.|#?{}()/^0159UNIMODOxidationtermu \t\0é\xD83D";
    constexpr int LETTER_COUNT = std::size(LETTERS) - 1;
    const QString seeds[] = {
        QStringLiteral("<[Carbamidomethyl]@C,N-term:Q>[Acetyl]-AC[UNIMOD:4]DM[+15.9949]K-[Amidated]"),
        QStringLiteral("[Gln->pyro-Glu]-QM[U:Oxidation]K[-0.984016]"), QString()};
    std::mt19937 random(2);
    int readCount = 0;
    for (int i = 0; i < 60000; ++i) {
        QString text = seeds[i % 3];
        for (int changes = text.isEmpty() ? static_cast<int>(random() % 12) : 1 + i % 4; changes > 0; --changes) {
            const auto place = static_cast<qsizetype>(random() % static_cast<unsigned>(text.size() + 1));
            const QChar letter(LETTERS[random() % LETTER_COUNT]);
            if (random() % 3 == 0)
                text.remove(place, 1 + static_cast<qsizetype>(random() % 5));
            else if (random() % 2 == 0)
                text.insert(place, letter);
            else if (place < text.size())
                text[place] = letter;
        }
        const auto peptidoform = Peptidoform::fromProForma(text);
        if (!peptidoform.hasError()) {
            expectSound(peptidoform.value(), text);
            ++readCount;
            continue;
        }
        EXPECT_EQ(InvalidInput, peptidoform.error().code());
        EXPECT_FALSE(peptidoform.error().message().isEmpty());
        EXPECT_TRUE(peptidoform.error().trail().isEmpty());
    }
    EXPECT_GT(readCount, 1000) << "damage that leaves a text readable is tried too";
}

} // namespace
} // namespace zav
