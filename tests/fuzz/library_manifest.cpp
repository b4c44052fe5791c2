// SPDX-License-Identifier: Apache-2.0
//
// Door: the manifest beside a library.
// Promises: a manifest whose numbers are in order, or a message; it tells what the library is; what is read and written
// reads the same.
#include "FuzzSupport.h"
#include "LibraryManifest.h"

namespace zav::fuzz {

void tryInput(const QByteArray &input)
{
    fileWith("input.tsv.json", input);
    const Result<LibraryManifest> read = LibraryManifest::readFor(pathOf("input.tsv"));
    require(read.hasError() == !read.error().message().isEmpty(), "a manifest or a message");
    if (read.hasError())
        return;
    const LibraryManifest &manifest = read.value();
    require(manifest.shard.number >= 1 && manifest.shard.number <= manifest.shard.count && manifest.peptideCount >= 0,
            "a shard is one of its library's");
    require(manifest.shard.first(manifest.peptideCount) <= manifest.shard.end(manifest.peptideCount),
            "a shard begins before its end");
    static_cast<void>(manifest.kind());
    static_cast<void>(manifest.info());
    require(differenceOfOrigin(manifest, manifest).isEmpty(), "a library has the origin that it has");
    require(manifest.settings.size() <= 100 * input.size() + 100, "settings are as large as their file");
    require(!manifest.writeFor(pathOf("written.tsv")).hasError(), "what was read can be written");
    const Result<LibraryManifest> again = LibraryManifest::readFor(pathOf("written.tsv"));
    require(!again.hasError() && again.value() == manifest, "a written manifest reads the same");
}

} // namespace zav::fuzz
