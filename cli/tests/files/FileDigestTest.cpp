// SPDX-License-Identifier: Apache-2.0
#include "FileDigest.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

// FIPS 180-2, appendix B, and the digest of nothing.
TEST(Sha256, DigestsAreThoseOfTheStandard)
{
    EXPECT_EQ(Sha256().result(), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    Sha256 abc;
    abc.add("abc");
    EXPECT_EQ(abc.result(), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    Sha256 million;
    for (int i = 0; i < 1000; ++i)
        million.add(QByteArray(1000, 'a'));
    EXPECT_EQ(million.result(), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(FileDigest, IsThatOfTheBytesHoweverMany)
{
    const TemporaryFiles files;
    files.write("million", QByteArray(1000000, 'a'));
    EXPECT_EQ(fileSha256(files.path("million")).value(),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
    files.write("more", QByteArray(5 << 20, 'b'));
    Sha256 more;
    more.add(QByteArray(5 << 20, 'b'));
    EXPECT_EQ(fileSha256(files.path("more")).value(), more.result());
}

TEST(FileDigest, NamesAFileThatCannotBeRead)
{
    const TemporaryFiles files;
    EXPECT_TRUE(fileSha256(files.path("none")).error().message().contains("none"));
    EXPECT_TRUE(fileSha256(files.path("")).hasError());
}

} // namespace
} // namespace zav
