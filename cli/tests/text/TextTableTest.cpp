// SPDX-License-Identifier: Apache-2.0
#include "TextTable.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST(TextTable, ColumnsAreAsWideAsTheirWidestCell)
{
    TextTable table({QStringLiteral("network"), QStringLiteral("kind")});
    table.addRow({QStringLiteral("a"), QStringLiteral("fragmentation")});
    table.addRow({QStringLiteral("long name"), QStringLiteral("b")});
    EXPECT_EQ(table.text().toStdString(), "network    kind\n"
                                          "a          fragmentation\n"
                                          "long name  b\n");
}

TEST(TextTable, ShortRowEndsWithoutBlanks)
{
    TextTable table({QStringLiteral("one"), QStringLiteral("two")});
    table.addRow({QStringLiteral("x")});
    EXPECT_EQ(table.text().toStdString(), "one  two\nx\n");
}

} // namespace
} // namespace zav
