// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"

namespace zav {

namespace {

struct NamedKind
{
    const char *name;
    const char *ending;
    LibraryFileKind kind;
};

constexpr NamedKind KINDS[] = {
    {"msp", ".msp", LibraryFileKind::Msp},    {"tsv", ".tsv", LibraryFileKind::Tsv},
    {"mgf", ".mgf", LibraryFileKind::Mgf},    {"mzspeclib", ".mzspeclib.txt", LibraryFileKind::MzSpecLib},
    {"dlib", ".dlib", LibraryFileKind::Dlib}, {"blib", ".blib", LibraryFileKind::Blib},
    {"pqp", ".pqp", LibraryFileKind::Pqp}};

} // namespace

std::optional<LibraryFileKind> libraryFileKindOfPath(const QString &path)
{
    for (const NamedKind &known : KINDS) {
        if (path.endsWith(QLatin1String(known.ending), Qt::CaseInsensitive))
            return known.kind;
    }
    return std::nullopt;
}

std::optional<LibraryFileKind> libraryFileKindOfName(const QString &name)
{
    for (const NamedKind &known : KINDS) {
        if (name.compare(QLatin1String(known.name), Qt::CaseInsensitive) == 0)
            return known.kind;
    }
    return std::nullopt;
}

QStringList libraryFileKindNames()
{
    QStringList names;
    for (const NamedKind &known : KINDS)
        names.append(QString::fromLatin1(known.name));
    return names;
}

bool isSqlite(LibraryFileKind kind)
{
    return textLibraryFormat(kind) == nullptr;
}

bool isTransitionList(LibraryFileKind kind)
{
    return kind == LibraryFileKind::Tsv || kind == LibraryFileKind::Pqp;
}

LibraryFormat::~LibraryFormat() = default;

QByteArray LibraryFormat::opening(const LibraryInfo &) const
{
    return {};
}

QByteArray LibraryFormat::closing() const
{
    return {};
}

bool LibraryFormat::numbersEntries() const
{
    return false;
}

bool LibraryFormat::isFirstLine(QByteArrayView) const
{
    return false;
}

QByteArray LibraryFormat::firstLine(qint64) const
{
    return {};
}

const LibraryFormat *textLibraryFormat(LibraryFileKind kind)
{
    switch (kind) {
    case LibraryFileKind::Msp:
        return &mspLibraryFormat();
    case LibraryFileKind::Tsv:
        return &tsvLibraryFormat();
    case LibraryFileKind::Mgf:
        return &mgfLibraryFormat();
    case LibraryFileKind::MzSpecLib:
        return &mzSpecLibFormat();
    case LibraryFileKind::Dlib:
    case LibraryFileKind::Blib:
    case LibraryFileKind::Pqp:
        break;
    }
    return nullptr;
}

} // namespace zav
