// SPDX-License-Identifier: Apache-2.0
#include "SqliteLibrary.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST(NoSqliteLibrary, OpeningSaysWhatTheProgramWasBuiltWithout)
{
    for (const LibraryFileKind kind : {LibraryFileKind::Dlib, LibraryFileKind::Blib}) {
        EXPECT_EQ(makeSqliteLibrary(kind)->open(QStringLiteral("a"), {}).message().toStdString(),
                  "this program was built without SQLite or zlib, which DLIB and BLIB libraries need");
    }
}

} // namespace
} // namespace zav
