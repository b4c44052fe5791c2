// SPDX-License-Identifier: Apache-2.0
#include "LibraryManifest.h"

#include "OutputFile.h"
#include "PrintableText.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <nlohmann/json.hpp>

namespace zav {

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const LibraryManifest &manifest)
{
    const LibraryShard &shard = manifest.shard;
    Json json;
    json["settings"] = Json::parse(manifest.settings.toStdString());
    json["input_sha256"] = manifest.inputSha256.toStdString();
    json["shard"] = {{"number", shard.number}, {"count", shard.count}};
    json["peptides"] = {{"first", shard.first(manifest.peptideCount)},
                        {"end", shard.end(manifest.peptideCount)},
                        {"all_shards", manifest.peptideCount}};
    json["precursors"] = manifest.file.precursors;
    json["opening_bytes"] = manifest.file.openingSize;
    json["closing_bytes"] = manifest.file.closingSize;
    json["sha256"] = manifest.file.sha256.toStdString();
    return json;
}

/// Throws what the parser throws where something is missing or of another type.
LibraryManifest fromJson(const Json &json)
{
    LibraryManifest manifest;
    manifest.settings = QByteArray::fromStdString(json.at("settings").dump());
    manifest.inputSha256 = QByteArray::fromStdString(json.at("input_sha256").get<std::string>());
    manifest.shard = {json.at("shard").at("number").get<int>(), json.at("shard").at("count").get<int>()};
    manifest.peptideCount = json.at("peptides").at("all_shards").get<qint64>();
    manifest.file.precursors = json.at("precursors").get<qint64>();
    manifest.file.openingSize = json.at("opening_bytes").get<qint64>();
    manifest.file.closingSize = json.at("closing_bytes").get<qint64>();
    manifest.file.sha256 = QByteArray::fromStdString(json.at("sha256").get<std::string>());
    return manifest;
}

QString shown(const QString &path)
{
    return displayText(path, 300);
}

} // namespace

QString LibraryManifest::pathFor(const QString &libraryPath)
{
    return libraryPath + QStringLiteral(".json");
}

bool LibraryManifest::isFor(const QString &libraryPath)
{
    const QFileInfo library(libraryPath);
    return libraryPath != QLatin1String("-") && (!library.exists() || library.isFile());
}

Result<LibraryManifest> LibraryManifest::read(const QString &path)
{
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly))
        return Error(Failure, QStringLiteral("cannot read %1: %2").arg(shown(path), source.errorString()));
    try {
        const LibraryManifest manifest = fromJson(Json::parse(source.readAll().toStdString()));
        const bool isInOrder = !LibraryShard::parse(manifest.shard.name()).hasError() && manifest.peptideCount >= 0 &&
                               manifest.file.precursors >= 0 && manifest.file.openingSize >= 0 &&
                               manifest.file.closingSize >= 0;
        if (isInOrder)
            return manifest;
    } catch (const Json::exception &) { // NOLINT(bugprone-empty-catch): told below
    }
    return Error(Failure, QStringLiteral("%1 does not describe a library of zav").arg(shown(path)));
}

Error LibraryManifest::write(const QString &path) const
{
    OutputFile output(path);
    if (Error error = output.open(); error.hasError())
        return error;
    if (Error error = output.write(QByteArray::fromStdString(toJson(*this).dump(2)) + '\n'); error.hasError())
        return error;
    return output.commit();
}

QString differenceOfOrigin(const LibraryManifest &one, const LibraryManifest &other)
{
    if (one.inputSha256 != other.inputSha256)
        return QStringLiteral("another input");
    const Json a = Json::parse(one.settings.toStdString());
    const Json b = Json::parse(other.settings.toStdString());
    for (const auto &[name, value] : a.items()) {
        if (!b.contains(name) || b[name] != value)
            return QString::fromStdString(name);
    }
    return a == b ? QString() : QStringLiteral("another version's settings");
}

} // namespace zav
