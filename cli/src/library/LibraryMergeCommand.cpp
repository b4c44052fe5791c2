// SPDX-License-Identifier: Apache-2.0
#include "LibraryMergeCommand.h"

#include "FileDigest.h"
#include "PrintableText.h"

#include <algorithm>

namespace zav {

namespace {

constexpr int NAMED_AT_MOST = 10; // missing shards in a message

QString shown(const QString &path)
{
    return displayText(path, 300);
}

Error refusal(const QString &message)
{
    return Error(InvalidInput, message);
}

} // namespace

LibraryMergeCommand::LibraryMergeCommand(const LibraryMergeOptions &options)
    : Command(options.verbose), m_options(options)
{}

Error LibraryMergeCommand::work()
{
    noteInterrupts();
    if (Error error = readManifests(); error.hasError())
        return error;
    if (Error error = inTurn(this, {&LibraryMergeCommand::checkOrigins, &LibraryMergeCommand::checkNumbers,
                                    &LibraryMergeCommand::checkKind, &LibraryMergeCommand::checkFiles});
        error.hasError())
        return error;
    if (Error error = join(); error.hasError())
        return error;
    messages().note(QStringLiteral("%1 shards, %2 precursors written").arg(m_shards.size()).arg(m_facts.precursors));
    return {};
}

Error LibraryMergeCommand::readManifests()
{
    for (const QString &path : std::as_const(m_options.shards)) {
        const Result<LibraryManifest> manifest = LibraryManifest::readFor(path);
        if (manifest.hasError())
            return manifest.error();
        m_shards.append({path, manifest.value()});
    }
    std::stable_sort(m_shards.begin(), m_shards.end(),
                     [](const Shard &a, const Shard &b) { return a.manifest.shard.number < b.manifest.shard.number; });
    return {};
}

Error LibraryMergeCommand::checkOrigins() const
{
    const Shard &one = m_shards.first();
    for (const Shard &other : m_shards) {
        const QString difference = differenceOfOrigin(one.manifest, other.manifest);
        if (!difference.isEmpty())
            return refusal(QStringLiteral("%1 is a shard of another library than %2: %3")
                               .arg(shown(other.path), shown(one.path), difference));
        if (other.manifest.shard.count != one.manifest.shard.count)
            return refusal(
                QStringLiteral("%1 is shard %2, but %3 is shard %4")
                    .arg(shown(other.path), other.manifest.shard.name(), shown(one.path), one.manifest.shard.name()));
    }
    return {};
}

Error LibraryMergeCommand::checkNumbers() const
{
    for (qsizetype i = 1; i < m_shards.size(); ++i) {
        if (m_shards[i].manifest.shard.number == m_shards[i - 1].manifest.shard.number)
            return refusal(
                QStringLiteral("both %1 and %2 are shard %3")
                    .arg(shown(m_shards[i - 1].path), shown(m_shards[i].path), m_shards[i].manifest.shard.name()));
    }
    const int count = m_shards.first().manifest.shard.count;
    QStringList missing;
    qsizetype next = 0;
    for (int number = 1; number <= count && missing.size() <= NAMED_AT_MOST; ++number) {
        if (next < m_shards.size() && m_shards[next].manifest.shard.number == number)
            ++next;
        else
            missing.append(missing.size() < NAMED_AT_MOST ? LibraryShard{number, count}.name() : QStringLiteral("..."));
    }
    return missing.isEmpty() ? Error()
                             : refusal(QStringLiteral("missing: shard %1").arg(missing.join(QStringLiteral(", "))));
}

Error LibraryMergeCommand::checkKind() const
{
    const LibraryFileKind kind = m_shards.first().manifest.kind();
    if (libraryFileKindOfPath(m_options.outputPath).value_or(kind) == kind)
        return {};
    return refusal(QStringLiteral("the shards are %1, which is not what the ending of %2 says")
                       .arg(libraryFileKindNames()[static_cast<int>(kind)], shown(m_options.outputPath)));
}

Error LibraryMergeCommand::checkFiles() const
{
    for (const Shard &shard : m_shards) {
        const Result<QByteArray> digest = fileSha256(shard.path);
        if (digest.hasError())
            return digest.error();
        if (digest.value() != shard.manifest.file.sha256)
            return refusal(
                QStringLiteral("%1 has changed since it was written: its SHA-256 differs").arg(shown(shard.path)));
        if (Error error = checkForInterrupt(); error.hasError())
            return error;
    }
    return {};
}

Error LibraryMergeCommand::join()
{
    LibraryManifest manifest = m_shards.first().manifest;
    const std::unique_ptr<LibraryWriter> writer =
        makeLibraryWriter(manifest.kind(), m_options.outputPath, manifest.info());
    if (Error error = writeAll(writer.get()); error.hasError())
        return error;
    manifest.shard = LibraryShard();
    manifest.file = m_facts;
    return manifest.writeFor(m_options.outputPath);
}

Error LibraryMergeCommand::writeAll(LibraryWriter *writer)
{
    if (Error error = writer->open(); error.hasError())
        return error;
    for (const Shard &shard : std::as_const(m_shards)) {
        const auto check = [this] { return checkForInterrupt(); };
        if (Error error = writer->append(shard.path, shard.manifest.file, check); error.hasError())
            return error;
    }
    const Result<LibraryFileFacts> facts = writer->finish();
    if (facts.hasError())
        return facts.error();
    m_facts = facts.value();
    return {};
}

} // namespace zav
