// SPDX-License-Identifier: Apache-2.0
#include "TextArena.h"

#include <gtest/gtest.h>

#include <QtCore/QList>

#include <utility>

namespace zav {
namespace {

TEST(TextArena, KeepsTextsOfAnySizeWhereverItGoes)
{
    TextArena arena;
    QList<QByteArray> expected, kept;
    for (int i = 0; i < 2000; ++i)
        expected.append(QByteArray(i % 7 == 0 ? 0 : 37 * i % 5000, char('a' + i % 26)));
    expected.append(QByteArray(3 << 20, 'x'));
    expected.append("after a large one");
    for (const QByteArray &text : std::as_const(expected))
        kept.append(arena.keep(text));
    const TextArena moved = std::move(arena);
    EXPECT_EQ(kept, expected);
}

} // namespace
} // namespace zav
