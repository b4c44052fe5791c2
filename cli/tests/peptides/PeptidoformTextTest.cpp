// SPDX-License-Identifier: Apache-2.0
#include "PeptidoformText.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

std::string readBack(const char *text)
{
    const Result<Peptidoform> peptidoform = readPeptidoform(QString::fromLatin1(text));
    EXPECT_FALSE(peptidoform.hasError()) << peptidoform.error().message().toStdString();
    return peptidoform.hasError() ? "refused" : peptidoform.value().toProForma().toStdString();
}

TEST(PeptidoformText, BlocksTheCysteinesOfAPlainPeptide)
{
    EXPECT_EQ(readBack("PEPTIDEK"), "PEPTIDEK");
    EXPECT_EQ(readBack("CACCK"), "C[Carbamidomethyl]AC[Carbamidomethyl]C[Carbamidomethyl]K");
}

TEST(PeptidoformText, TakesATextThatNamesAModificationAsItStands)
{
    EXPECT_EQ(readBack("CAM[Oxidation]K"), "CAM[Oxidation]K");
    EXPECT_EQ(readBack("[Acetyl]-CAK"), "[Acetyl]-CAK");
    EXPECT_EQ(readBack("C[UNIMOD:4]ACK"), "C[Carbamidomethyl]ACK");
    EXPECT_EQ(readBack("<[Oxidation]@M>ACK"), "ACK");
    EXPECT_EQ(readBack("<[Carbamidomethyl]@C>ACK"), "AC[Carbamidomethyl]K");
}

TEST(PeptidoformText, RefusesWhatIsNoProForma)
{
    for (const char *text : {"", "PEPTIDe", "PEP TIDE", "PEPTIDE/2", "M[Oxidation", "PEPTIDEK[Nonsense]"})
        EXPECT_TRUE(readPeptidoform(QString::fromLatin1(text)).hasError()) << text;
}

} // namespace
} // namespace zav
