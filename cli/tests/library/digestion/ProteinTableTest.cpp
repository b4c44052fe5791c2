// SPDX-License-Identifier: Apache-2.0
#include "ProteinTable.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

Protein protein(const char *accession, const char *name, const char *gene)
{
    return {QString::fromUtf8(accession), QString::fromUtf8(name), QString::fromUtf8(gene)};
}

TEST(ProteinTable, GivesBackWhatWasAdded)
{
    ProteinTable table;
    EXPECT_EQ(table.add(protein("P1", "ONE_TEST", "G1")).index, 0);
    EXPECT_EQ(table.add(protein("P2", "", "")).index, 1);
    EXPECT_EQ(table.count(), 2);
    EXPECT_EQ(table.protein(0), protein("P1", "ONE_TEST", "G1"));
    EXPECT_EQ(table.protein(1), protein("P2", "", ""));
}

TEST(ProteinTable, AccessionHasOneIndex)
{
    ProteinTable table;
    EXPECT_TRUE(table.add(protein("P1", "", "")).isNew);
    EXPECT_TRUE(table.add(protein("P2", "", "")).isNew);
    const ProteinTable::Place again = table.add(protein("P1", "", ""));
    EXPECT_FALSE(again.isNew);
    EXPECT_EQ(again.index, 0);
    EXPECT_EQ(table.count(), 2);
}

TEST(ProteinTable, LaterNameAndGeneFillInWhatWasEmptyAndReplaceNothing)
{
    ProteinTable table;
    EXPECT_EQ(table.add(protein("P1", "", "G1")).index, 0);
    EXPECT_EQ(table.add(protein("P1", "ONE_TEST", "G2")).index, 0);
    EXPECT_EQ(table.protein(0), protein("P1", "ONE_TEST", "G1"));
}

TEST(ProteinTable, ProteinsOfDecoysAreMarked)
{
    ProteinTable table;
    EXPECT_EQ(table.add(protein("P1", "ONE_TEST", "")).index, 0);
    EXPECT_EQ(table.protein(0, true), protein("DECOY_P1", "DECOY_ONE_TEST", ""));
}

TEST(ProteinTable, NamesAreTheSameInUtf8)
{
    ProteinTable table;
    EXPECT_EQ(table.add(protein("Pα", "", "G1")).index, 0);
    const ProteinNames target = table.names(0);
    EXPECT_EQ(target.accession, "Pα");
    EXPECT_TRUE(target.name.isEmpty());
    EXPECT_EQ(target.gene, "G1");
    EXPECT_EQ(table.names(0, true).accession, "DECOY_Pα");
}

TEST(ProteinTable, ControlCharactersDoNotPartCells)
{
    ProteinTable table;
    EXPECT_EQ(table.add(protein("P\t1", "A\nB", "G\r1")).index, 0);
    EXPECT_EQ(table.add(protein("P2", "", "")).index, 1);
    EXPECT_EQ(table.protein(0), protein("P 1", "A B", "G 1"));
    EXPECT_EQ(table.protein(1), protein("P2", "", ""));
}

TEST(ProteinTable, ManyProteinsAreFoundAgain)
{
    ProteinTable table;
    for (int i = 0; i < 20000; ++i)
        EXPECT_EQ(table.add({QString::number(i), QString(), QString()}).index, i);
    for (int i = 0; i < 20000; ++i)
        EXPECT_EQ(table.add({QString::number(i), QString(), QString()}).index, i);
}

} // namespace
} // namespace zav
