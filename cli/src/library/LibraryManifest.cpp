// SPDX-License-Identifier: Apache-2.0
#include "LibraryManifest.h"

#include "ByteStream.h"
#include "Enzyme.h"
#include "FileDigest.h"
#include "OutputFile.h"
#include "PrintableText.h"

#include <QtCore/QFileInfo>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zav {

namespace {

using Json = nlohmann::ordered_json;

constexpr qint64 MAX_MANIFEST_BYTES = 1 << 20; // real ones have 2,000

// Far more than anyone needs, and few enough for sums and products of them to fit 64 bits.
constexpr qint64 HIGHEST_COUNT = qint64{1} << 42;

// Of the JSON; the parser takes any depth, but what writes it calls itself for each level.
constexpr int DEEPEST = 100;

/// The input's name without folder and endings: `human.fasta.gz` makes the library `human`.
QString libraryName(const QString &inputPath)
{
    QString name = QFileInfo(inputPath).fileName();
    if (name.endsWith(QLatin1String(".gz"), Qt::CaseInsensitive))
        name.chop(3);
    const QString base = QFileInfo(name).completeBaseName();
    return base.isEmpty() ? name : base;
}

/// The enzyme's main name, whichever of its names was given.
QString enzymeName(const DigestionOptions &options)
{
    const Result<Enzyme> enzyme = Enzyme::named(options.enzyme);
    return options.cleavagePattern.isEmpty() && !enzyme.hasError() ? enzyme.value().name() : QString();
}

Json digestionSettings(const DigestionOptions &options)
{
    return {
        {"enzyme", enzymeName(options).toStdString()},   {"cleavage_pattern", options.cleavagePattern.toStdString()},
        {"missed_cleavages", options.missedCleavages},   {"minimum_length", options.minimumLength},
        {"maximum_length", options.maximumLength},       {"semi_specific", options.semiSpecific},
        {"remove_methionine", options.removesMethionine}};
}

std::string decoyName(DecoyKind kind)
{
    switch (kind) {
    case DecoyKind::None:
        break;
    case DecoyKind::Reversed:
        return "reversed";
    case DecoyKind::Shuffled:
        return "shuffled";
    }
    return "none";
}

Json ruleTexts(const QList<ModificationRule> &rules)
{
    Json texts = Json::array();
    for (const ModificationRule &rule : rules)
        texts.push_back(rule.text().toStdString());
    return texts;
}

Json modificationSettings(const PeptidoformRules &rules)
{
    Json settings = {{"fixed", ruleTexts(rules.fixed)}, {"variable", ruleTexts(rules.variable)}};
    if (!rules.variable.isEmpty())
        settings["maximum_variable"] = rules.maxVariable;
    return settings;
}

Json peakSettings(const PeakFilterOptions &options)
{
    return {{"top", options.top},
            {"minimum_intensity", options.minIntensity},
            {"minimum_mz", options.minMz},
            {"minimum_ion_number", options.minIonNumber},
            {"neutral_losses", options.neutralLosses},
            {"isotopes", options.isotopes}};
}

Result<Json> networkSettings(const LibraryOptions &options, const ModelFolder &folder)
{
    QList<std::pair<const char *, NetworkUse>> used = {{"spectra", NetworkUse::Peptidoforms}};
    if (options.retentionTimes)
        used.append({"retention_times", NetworkUse::RetentionTimes});
    Json networks = Json::object();
    for (const auto &[name, use] : used) {
        if (Error error = folder.checkNetwork(use); error.hasError())
            return error;
        const Result<QByteArray> digest = fileSha256(folder.network(use));
        if (digest.hasError())
            return digest.error();
        networks[name] = digest.value().toStdString();
    }
    return networks;
}

/// Whether there are times, and the table that they are calibrated with.
Result<Json> timeSettings(const LibraryOptions &options)
{
    if (!options.retentionTimes)
        return Json("none");
    if (options.observedTimes.isEmpty())
        return Json("iRT");
    const Result<QByteArray> digest = fileSha256(options.observedTimes);
    if (digest.hasError())
        return digest.error();
    return Json({{"calibrated_with", digest.value().toStdString()}});
}

QString textIn(const QByteArray &settings, const char *name)
{
    const Json json = Json::parse(settings.toStdString());
    const auto field = json.find(name);
    return field != json.end() && field->is_string() ? QString::fromStdString(field->get<std::string>()) : QString();
}

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

/// Throws the parser's exceptions.
Json parsed(const QByteArray &text, bool *isTooDeep)
{
    return Json::parse(text.begin(), text.end(), [isTooDeep](int depth, Json::parse_event_t, const Json &) {
        *isTooDeep = *isTooDeep || depth > DEEPEST;
        return !*isTooDeep;
    });
}

bool isCount(qint64 number)
{
    return number >= 0 && number <= HIGHEST_COUNT;
}

bool isInOrder(const LibraryManifest &manifest)
{
    const LibraryFileFacts &file = manifest.file;
    return !LibraryShard::parse(manifest.shard.name()).hasError() && manifest.settings.startsWith('{') &&
           isCount(manifest.peptideCount) && isCount(file.precursors) && isCount(file.openingSize) &&
           isCount(file.closingSize);
}

/// A whole number from 0 on; -1 for anything else.
qint64 countIn(const Json &json, const char *name)
{
    const Json &value = json.at(name);
    return value.is_number_unsigned() ? static_cast<qint64>(std::min(value.get<quint64>(), HIGHEST_COUNT + quint64{1}))
                                      : -1;
}

/// Numbers that are too large for any shard become others that are.
LibraryShard shardIn(const Json &json)
{
    constexpr qint64 HIGHEST = std::numeric_limits<int>::max();
    return {static_cast<int>(std::min(countIn(json, "number"), HIGHEST)),
            static_cast<int>(std::min(countIn(json, "count"), HIGHEST))};
}

/// Throws the parser's exceptions where something is missing or of another type.
LibraryManifest fromJson(const Json &json)
{
    LibraryManifest manifest;
    manifest.settings = QByteArray::fromStdString(json.at("settings").dump());
    manifest.inputSha256 = QByteArray::fromStdString(json.at("input_sha256").get<std::string>());
    manifest.shard = shardIn(json.at("shard"));
    manifest.peptideCount = countIn(json.at("peptides"), "all_shards");
    manifest.file.precursors = countIn(json, "precursors");
    manifest.file.openingSize = countIn(json, "opening_bytes");
    manifest.file.closingSize = countIn(json, "closing_bytes");
    manifest.file.sha256 = QByteArray::fromStdString(json.at("sha256").get<std::string>());
    return manifest;
}

QString shown(const QString &path)
{
    return displayText(path, 300);
}

} // namespace

Result<QByteArray> librarySettings(const LibraryOptions &options, const ModelFolder &folder)
{
    const Result<Json> networks = networkSettings(options, folder);
    if (networks.hasError())
        return networks.error();
    const Result<Json> times = timeSettings(options);
    if (times.hasError())
        return times.error();
    Json settings;
    settings["version"] = ZAV_VERSION;
    settings["name"] = libraryName(options.inputPath()).toStdString();
    settings["format"] = libraryFileKindNames()[static_cast<int>(options.kind)].toStdString();
    settings["input"] = options.proteins.isEmpty() ? "peptides" : "proteins";
    settings["digestion"] = digestionSettings(options.digestion);
    settings["decoys"] = decoyName(options.decoys.kind);
    if (options.decoys.kind == DecoyKind::Shuffled)
        settings["decoy_seed"] = options.decoys.seed;
    settings["charges"] = std::vector<int>(options.charges.begin(), options.charges.end());
    settings["precursor_mz"] = {options.lowestPrecursorMz, options.highestPrecursorMz};
    settings["modifications"] = modificationSettings(options.modifications);
    settings["collision_energy"] =
        std::isnan(options.collisionEnergy) ? Json("default") : Json(options.collisionEnergy);
    settings["retention_times"] = times.value();
    settings["peaks"] = peakSettings(options.peaks);
    settings["networks"] = networks.value();
    return QByteArray::fromStdString(settings.dump());
}

QString LibraryManifest::pathFor(const QString &libraryPath)
{
    return libraryPath + QStringLiteral(".json");
}

Result<LibraryManifest> LibraryManifest::readFor(const QString &libraryPath)
{
    const QString path = pathFor(libraryPath);
    const Result<QByteArray> text = fileBytes(path, MAX_MANIFEST_BYTES);
    if (text.hasError())
        return text.error();
    try {
        bool isTooDeep = false;
        const Json json = parsed(text.value(), &isTooDeep);
        LibraryManifest manifest = isTooDeep ? LibraryManifest() : fromJson(json);
        if (isInOrder(manifest))
            return manifest;
    } catch (const Json::exception &) { // NOLINT(bugprone-empty-catch): told below
    }
    return Error(Failure, QStringLiteral("%1 is not a zav library manifest").arg(shown(path)));
}

Error LibraryManifest::writeFor(const QString &libraryPath) const
{
    if (!isRegularFile(libraryPath))
        return {};
    OutputFile output(pathFor(libraryPath));
    if (Error error = output.open(); error.hasError())
        return error;
    if (Error error = output.write(QByteArray::fromStdString(toJson(*this).dump(2)) + '\n'); error.hasError())
        return error;
    return output.commit();
}

LibraryFileKind LibraryManifest::kind() const
{
    return libraryFileKindOfName(textIn(settings, "format")).value_or(LibraryFileKind::Tsv);
}

LibraryInfo LibraryManifest::info() const
{
    return {textIn(settings, "name"), textIn(settings, "version")};
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
