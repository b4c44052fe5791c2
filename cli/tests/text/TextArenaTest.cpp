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

TEST(TextArena, MemoryOfAnArenaThatIsGoneIsUsedAgain)
{
    const char *place = nullptr;
    {
        TextArena gone;
        place = gone.keep("text").constData();
    }
    TextArena arena;
    const QByteArray kept = arena.keep("other text");
    EXPECT_EQ(kept.constData(), place);
    EXPECT_EQ(kept, "other text");
}

TEST(TextArena, DraftIsEmptyEachTime)
{
    TextArena arena;
    arena.draft()->add("a long draft");
    const QByteArray kept = arena.keep(arena.draft()->add("short").view());
    EXPECT_TRUE(arena.draft()->isEmpty());
    EXPECT_EQ(kept, "short");
}

} // namespace
} // namespace zav
