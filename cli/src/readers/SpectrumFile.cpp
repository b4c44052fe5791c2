// SPDX-License-Identifier: Apache-2.0
#include "SpectrumFile.h"

#include "MgfFile.h"
#include "PeakTableFile.h"
#include "mzml/MzMlFile.h"

namespace zav {

namespace {

bool endsWithAny(const QString &path, std::initializer_list<const char *> endings)
{
    return std::any_of(endings.begin(), endings.end(),
                       [&](const char *ending) { return path.endsWith(QLatin1String(ending), Qt::CaseInsensitive); });
}

} // namespace

Result<std::unique_ptr<SpectrumFile>> openSpectrumFile(const QString &path)
{
    if (endsWithAny(path, {".mzml", ".mzml.gz"}))
        return openMzMlFile(path);
    if (endsWithAny(path, {".mgf"}))
        return MgfFile::open(path);
    if (endsWithAny(path, {".tsv", ".txt"}))
        return PeakTableFile::open(path);
    return Error(InvalidInput,
                 path +
                     QStringLiteral(": spectra are read from files that end in .mzML, .mzML.gz, .mgf, .tsv or .txt"));
}

} // namespace zav
