// SPDX-License-Identifier: Apache-2.0
#include "ChromatogramSource.h"

#include "ChromatogramText.h"
#include "PrintableText.h"
#include "mzml/MzMlChromatograms.h"

#include <algorithm>

namespace zav {

namespace {

enum class Format { MzMl, Table, JsonLines };

bool endsWithAny(const QString &path, std::initializer_list<const char *> endings)
{
    return std::any_of(endings.begin(), endings.end(), [&](const char *ending) {
        return path.endsWith(QLatin1String(ending), Qt::CaseInsensitive) ||
               path.endsWith(QLatin1String(ending) + QStringLiteral(".gz"), Qt::CaseInsensitive);
    });
}

std::optional<Format> namedFormat(const QString &name)
{
    if (name == QLatin1String("mzml"))
        return Format::MzMl;
    if (name == QLatin1String("tsv"))
        return Format::Table;
    return name == QLatin1String("jsonl") ? std::optional(Format::JsonLines) : std::nullopt;
}

std::optional<Format> formatByEnding(const QString &path)
{
    if (endsWithAny(path, {".mzml"}))
        return Format::MzMl;
    if (endsWithAny(path, {".tsv", ".txt"}))
        return Format::Table;
    return endsWithAny(path, {".jsonl", ".ndjson"}) ? std::optional(Format::JsonLines) : std::nullopt;
}

Format formatByStart(QByteArrayView start)
{
    constexpr char BYTE_ORDER_MARK[] = "\xEF\xBB\xBF";
    const QByteArrayView text = (start.startsWith(BYTE_ORDER_MARK) ? start.sliced(3) : start).trimmed();
    if (text.startsWith('<'))
        return Format::MzMl;
    return text.startsWith('{') ? Format::JsonLines : Format::Table;
}

// An error for a request that no file could satisfy; `format` stays empty where only the content tells.
Error chooseFormat(const ChromatogramRequest &request, std::optional<Format> *format)
{
    *format = namedFormat(request.format);
    if (!request.format.isEmpty() && !*format)
        return {InvalidInput, QStringLiteral("'%1' is not a chromatogram format; use mzml, tsv or jsonl")
                                  .arg(displayText(request.format))};
    if (request.path == QLatin1String("-") || *format)
        return {};
    *format = formatByEnding(request.path);
    if (!*format)
        return {InvalidInput,
                request.path +
                    QStringLiteral(": chromatograms are read from files that end in .mzML, .tsv, .txt, .jsonl "
                                   "or .ndjson, each also with .gz")};
    return {};
}

Result<std::unique_ptr<ChromatogramSource>> openAs(Format format, std::unique_ptr<ByteStream> bytes,
                                                   const ChromatogramRequest &request)
{
    const QList<ExtractionTarget> &targets = request.targets;
    if (format != Format::MzMl && !targets.isEmpty())
        return Error(InvalidInput, bytes->name() + QStringLiteral(": chromatograms are extracted from mzML alone"));
    if (format == Format::MzMl)
        return targets.isEmpty() ? openMzMlChromatograms(std::move(bytes))
                                 : openMzMlExtraction(std::move(bytes), targets, request.readsGroups);
    if (format == Format::Table)
        return openChromatogramTable(std::move(bytes), request.readsGroups);
    return openChromatogramJsonLines(std::move(bytes), request.readsGroups);
}

} // namespace

Result<std::unique_ptr<ChromatogramSource>> openChromatograms(const ChromatogramRequest &request)
{
    std::optional<Format> format;
    if (Error error = chooseFormat(request, &format); error.hasError())
        return error;
    Result<std::unique_ptr<ByteStream>> opened =
        request.readsGroups ? ByteStream::openSeekable(request.path) : ByteStream::open(request.path);
    if (opened.hasError())
        return opened.error();
    std::unique_ptr<ByteStream> bytes = std::move(opened).value();
    if (bytes->peek().isEmpty())
        return cannotRead(bytes->name(), QStringLiteral("it is empty"));
    const Format chosen = format ? *format : formatByStart(bytes->peek());
    return openAs(chosen, std::move(bytes), request);
}

} // namespace zav
