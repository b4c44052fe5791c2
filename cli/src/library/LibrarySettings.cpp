// SPDX-License-Identifier: Apache-2.0
#include "LibrarySettings.h"

#include "Enzyme.h"
#include "FileDigest.h"

#include <QtCore/QFileInfo>

#include <nlohmann/json.hpp>

namespace zav {

namespace {

using Json = nlohmann::ordered_json;

/// After the input, without folder and endings: `human.fasta.gz` makes the library `human`.
QString libraryName(const QString &inputPath)
{
    QString name = QFileInfo(inputPath).fileName();
    if (name.endsWith(QLatin1String(".gz"), Qt::CaseInsensitive))
        name.chop(3);
    const QString base = QFileInfo(name).completeBaseName();
    return base.isEmpty() ? name : base;
}

/// The one of its names that the enzyme's rule has.
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

Json peakSettings(const PeakFilterOptions &options)
{
    return {{"top", options.top},
            {"minimum_intensity", options.minIntensity},
            {"minimum_mz", options.minMz},
            {"minimum_ion_number", options.minIonNumber},
            {"neutral_losses", options.neutralLosses},
            {"isotopes", options.isotopes}};
}

Result<Json> networkSettings(const QList<int> &charges, const ModelFolder &folder)
{
    Json networks = Json::object();
    for (const int charge : charges) {
        if (Error error = folder.checkFragmentationNetwork(charge); error.hasError())
            return error;
        const Result<QByteArray> digest = fileSha256(folder.fragmentationNetwork(charge));
        if (digest.hasError())
            return digest.error();
        networks[std::to_string(charge)] = digest.value().toStdString();
    }
    return networks;
}

QString textIn(const QByteArray &settings, const char *name)
{
    return QString::fromStdString(Json::parse(settings.toStdString()).value(name, std::string()));
}

} // namespace

Result<QByteArray> librarySettings(const LibraryOptions &options, const ModelFolder &folder)
{
    const Result<Json> networks = networkSettings(options.charges, folder);
    if (networks.hasError())
        return networks.error();
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
    settings["cysteine_mass"] = options.cysteineMass;
    settings["peaks"] = peakSettings(options.peaks);
    settings["networks"] = networks.value();
    return QByteArray::fromStdString(settings.dump());
}

LibraryFileKind kindIn(const QByteArray &settings)
{
    return libraryFileKindOfName(textIn(settings, "format")).value_or(LibraryFileKind::Tsv);
}

LibraryInfo infoIn(const QByteArray &settings)
{
    return {textIn(settings, "name"), textIn(settings, "version")};
}

} // namespace zav
