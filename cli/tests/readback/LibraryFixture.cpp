// SPDX-License-Identifier: Apache-2.0
//
// library_fixture <entries.json> <folder>: writes each set of entries in every format, as <folder>/<set>.<ending>, for
// the tests that read them back with other programs.
#include "LibraryFormat.h"
#include "OutputFile.h"
#include "SqliteLibrary.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <fstream>

namespace zav {
namespace {

using Json = nlohmann::json;

QString text(const Json &value)
{
    return QString::fromStdString(value.get<std::string>());
}

QByteArray bytes(const Json &value)
{
    return QByteArray::fromStdString(value.get<std::string>());
}

FragmentPeak peakOf(const Json &json)
{
    FragmentPeak peak;
    peak.mz = json.at("mz");
    peak.intensity = json.at("intensity");
    if (!json.at("type").is_null())
        peak.ionType = text(json.at("type")).at(0);
    peak.ionNumber = json.at("number");
    peak.charge = json.at("charge");
    peak.neutralLoss = text(json.at("loss"));
    peak.isotope = json.at("isotope");
    return peak;
}

Peptidoform peptidoformOf(const Json &json)
{
    const QString peptide = text(json.at("peptide"));
    QList<PlacedModification> modifications;
    for (const Json &placed : json.at("modifications")) {
        const modifications::Entry *known = modifications::findByAccession(placed.value("unimod", 0));
        modifications.append(
            {placed.at("position"), known ? known->modification : modifications::ofMass(placed.at("mass"))});
    }
    return Peptidoform(peptide, modifications);
}

LibraryEntry entryOf(const Json &json)
{
    LibraryEntry entry;
    entry.peptidoform = peptidoformOf(json);
    entry.isVariant = json.at("variant");
    entry.charge = json.at("charge");
    entry.precursorMz = json.at("precursor_mz");
    if (!json.at("retention_time").is_null())
        entry.retentionTime = json.at("retention_time");
    entry.timeScale = json.at("time_scale") == "minutes" ? TimeScale::Minutes : TimeScale::Irt;
    for (const Json &protein : json.at("proteins"))
        entry.proteins.append({bytes(protein.at(0)), bytes(protein.at(1)), bytes(protein.at(2))});
    entry.isDecoy = json.at("decoy");
    for (const Json &peak : json.at("peaks"))
        entry.peaks.append(peakOf(peak));
    return entry;
}

Error writeText(LibraryFileKind kind, const QString &path, const LibraryInfo &info, const QList<LibraryEntry> &entries)
{
    const LibraryFormat *format = textLibraryFormat(kind);
    OutputFile file(path);
    if (Error error = file.open(); error.hasError())
        return error;
    TextBuffer document;
    document.add(format->opening(info));
    for (qsizetype i = 0; i < entries.size(); ++i)
        format->addEntry(entries[i], i, &document);
    if (Error error = file.write(document.take() + format->closing()); error.hasError())
        return error;
    return file.commit();
}

Error writeSqlite(LibraryFileKind kind, const QString &path, const LibraryInfo &info,
                  const QList<LibraryEntry> &entries)
{
    const auto library = makeSqliteLibrary(kind);
    if (Error error = library->open(path, info); error.hasError())
        return error;
    for (const LibraryEntry &entry : entries) {
        if (Error error = library->add(library->encode(entry)); error.hasError())
            return error;
    }
    return library->finish();
}

Error writeSet(const QString &path, const LibraryInfo &info, const QList<LibraryEntry> &entries)
{
    for (const char *ending : {"msp", "tsv", "mgf", "mzSpecLib.txt", "dlib", "blib", "pqp"}) {
        const QString file = path + QLatin1Char('.') + QLatin1String(ending);
        const LibraryFileKind kind = libraryFileKindOfPath(file).value();
        const auto write = isSqlite(kind) ? writeSqlite : writeText;
        if (Error error = write(kind, file, info, entries); error.hasError())
            return error;
    }
    return {};
}

int run(const char *input, const QString &folder)
{
    std::ifstream file(input);
    const Json sets = Json::parse(file);
    for (const auto &[name, list] : sets.items()) {
        QList<LibraryEntry> entries;
        for (const Json &entry : list)
            entries.append(entryOf(entry));
        const QString setName = QString::fromStdString(name);
        const LibraryInfo info{setName, QStringLiteral("1.0")};
        if (const Error error = writeSet(folder + QLatin1Char('/') + setName, info, entries); error.hasError()) {
            std::fprintf(stderr, "%s\n", qUtf8Printable(error.message()));
            return 1;
        }
    }
    return 0;
}

} // namespace
} // namespace zav

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: library_fixture <entries.json> <folder>\n");
        return 2;
    }
    return zav::run(argv[1], QString::fromLocal8Bit(argv[2]));
}
