// SPDX-License-Identifier: Apache-2.0
//
// Door: a shard of a text library that `zav library merge` appends, with what its manifest says of it.
// Promises: a message, or a library whose entries are the bytes between opening and closing.
#include "FuzzSupport.h"
#include "LibraryWriter.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace zav::fuzz {

void tryInput(const QByteArray &input)
{
    constexpr LibraryFileKind KINDS[] = {LibraryFileKind::Msp, LibraryFileKind::Tsv, LibraryFileKind::Mgf,
                                         LibraryFileKind::MzSpecLib};
    FuzzedDataProvider data(reinterpret_cast<const std::uint8_t *>(input.constData()),
                            static_cast<std::size_t>(input.size()));
    const LibraryFileKind kind = data.PickValueInArray(KINDS);
    const bool hasSaneSizes = data.ConsumeBool();
    const qint64 most = hasSaneSizes ? 1000 : qint64{1} << 42; // manifests with higher numbers are refused
    LibraryFileFacts facts;
    facts.openingSize = data.ConsumeIntegralInRange<qint64>(0, most);
    facts.closingSize = data.ConsumeIntegralInRange<qint64>(0, most);
    facts.precursors = data.ConsumeIntegralInRange<qint64>(0, most);
    const QByteArray shard = QByteArray::fromStdString(data.ConsumeRemainingBytesAsString());

    const LibraryInfo info = {QStringLiteral("fuzz"), QStringLiteral("1")};
    const QString path = pathOf("merged");
    const std::unique_ptr<LibraryWriter> writer = makeLibraryWriter(kind, path, info);
    require(!writer->open().hasError(), "a library can be begun");
    const Error error = writer->append(fileWith("shard", shard), facts, [] { return Error(); });
    require(error.hasError() == !error.message().isEmpty(), "a failure says why");
    if (error.hasError())
        return;
    const Result<LibraryFileFacts> written = writer->finish();
    require(!written.hasError(), "what was appended can be finished");
    const QByteArray content = contentOf(path);
    const LibraryFormat &format = *textLibraryFormat(kind);
    require(content.startsWith(format.opening(info)) && content.endsWith(format.closing()),
            "the library has its opening and its closing");
    const QByteArray entries = content.sliced(written.value().openingSize).chopped(written.value().closingSize);
    if (!format.numbersEntries())
        require(entries == shard.mid(facts.openingSize).chopped(facts.closingSize), "the entries are the shard's");
    require(written.value().precursors == facts.precursors, "the precursors are those of the shard");
}

} // namespace zav::fuzz
