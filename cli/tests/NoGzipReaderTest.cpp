// SPDX-License-Identifier: Apache-2.0
#include "TraceList.h"

namespace zav {
namespace {

TEST(BuildWithoutZlib, ReadsPlainTextAndSaysSoWhenItMeetsGzip)
{
    TemporaryFiles files;
    const auto read = [&](const QByteArray &content) {
        return TraceList::read(files, {files.write("a.tsv.gz", content), {}, {}});
    };
    EXPECT_EQ(read("rt\tintensity\n1\t2\n").outcomes.size(), 1);
    EXPECT_EQ(read("\x1f\x8b rest").error,
              "a.tsv.gz: is gzipped, and this zav was built without zlib; gunzip it, or rebuild");
}

} // namespace
} // namespace zav
