// SPDX-License-Identifier: Apache-2.0
#include "UntrainedModifications.h"
#include "Trail.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

Modification named(const char *name)
{
    Modification modification;
    modification.name = QString::fromLatin1(name);
    return modification;
}

const QStringList TRAINED{QStringLiteral("Oxidation@M"), QStringLiteral("Acetyl@N-term"),
                          QStringLiteral("Amidated@C-term"), QStringLiteral("Carbamidomethyl@C")};

QStringList remarksOn(const QList<Peptidoform> &peptidoforms, const QStringList &trained = TRAINED)
{
    UntrainedModifications untrained(trained);
    for (const Peptidoform &peptidoform : peptidoforms)
        untrained.look(peptidoform);
    return untrained.remarks();
}

TEST(UntrainedModifications, SaysNothingOfTrainedOnes)
{
    const Peptidoform peptidoform(
        QStringLiteral("MCK"),
        {{0, named("Acetyl")}, {1, named("Oxidation")}, {2, named("Carbamidomethyl")}, {4, named("Amidated")}});
    EXPECT_EQ(remarksOn({peptidoform, Peptidoform(QStringLiteral("PEPTIDE"))}), QStringList());
}

TEST(UntrainedModifications, KnowsAModificationAtItsTrainedPlaceOnly)
{
    const Peptidoform peptidoform(QStringLiteral("PCK"), {{0, named("Oxidation")},
                                                          {1, named("Oxidation")},
                                                          {2, named("Carbamidomethyl")},
                                                          {3, named("Acetyl")},
                                                          {4, named("Acetyl")}});
    EXPECT_EQ(remarksOn({peptidoform}),
              QStringList({QStringLiteral("Modification Oxidation at the N-terminus is unknown to the network"),
                           QStringLiteral("Modification Oxidation at P is unknown to the network"),
                           QStringLiteral("Modification Acetyl at K is unknown to the network"),
                           QStringLiteral("Modification Acetyl at the C-terminus is unknown to the network")}));
}

TEST(UntrainedModifications, KnowsAPyroglutamateAtTheTerminusWhereverItIsWritten)
{
    const QStringList trained{QStringLiteral("Gln->pyro-Glu@N-term")};
    EXPECT_EQ(remarksOn({Peptidoform::fromProForma(QStringLiteral("Q[Gln->pyro-Glu]PK")).value(),
                         Peptidoform::fromProForma(QStringLiteral("[Gln->pyro-Glu]-QPK")).value()},
                        trained),
              QStringList());
}

TEST(UntrainedModifications, NamesEachOnceInTheOrderOfAppearance)
{
    const Peptidoform first(QStringLiteral("KK"), {{1, named("TMT6plex")}, {2, named("TMT6plex")}});
    const Peptidoform second(QStringLiteral("KS"), {{1, named("TMT6plex")}, {2, named("+15.9949")}});
    EXPECT_EQ(remarksOn({first, second, first}),
              QStringList({QStringLiteral("Modification TMT6plex at K is unknown to the network"),
                           QStringLiteral("Modification +15.9949 at S is unknown to the network")}));
}

TEST(UntrainedModifications, SaysOnceThatAFreeCysteineIsUnknown)
{
    const Peptidoform free(QStringLiteral("ACK"));
    const Peptidoform oneOfTwo(QStringLiteral("CCK"), {{2, named("Carbamidomethyl")}});
    const QStringList expected{QStringLiteral("Cysteine without a modification is unknown to the network")};
    EXPECT_EQ(remarksOn({free, oneOfTwo}), expected);
    EXPECT_EQ(remarksOn({oneOfTwo}), expected);
    EXPECT_EQ(remarksOn({free, oneOfTwo}, TRAINED + QStringList{QStringLiteral("C")}), QStringList());
}

TEST(UntrainedModifications, TakesATerminalModificationOfACysteineForNone)
{
    const Peptidoform peptidoform(QStringLiteral("CK"), {{0, named("Acetyl")}});
    EXPECT_EQ(remarksOn({peptidoform}),
              QStringList{QStringLiteral("Cysteine without a modification is unknown to the network")});
}

} // namespace
} // namespace zav
