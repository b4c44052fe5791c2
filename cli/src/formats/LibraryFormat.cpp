// SPDX-License-Identifier: Apache-2.0
#include "LibraryFormat.h"

#include "MgfLibraryFormat.h"
#include "MspLibraryFormat.h"
#include "MzSpecLibFormat.h"
#include "TsvLibraryFormat.h"

namespace zav {

LibraryFormat::~LibraryFormat() = default;

QByteArray LibraryFormat::opening(const LibraryInfo &) const
{
    return {};
}

QByteArray LibraryFormat::closing() const
{
    return {};
}

std::unique_ptr<LibraryFormat> makeTextLibraryFormat(LibraryFileKind kind)
{
    switch (kind) {
    case LibraryFileKind::Msp:
        return std::make_unique<MspLibraryFormat>();
    case LibraryFileKind::Tsv:
        return std::make_unique<TsvLibraryFormat>();
    case LibraryFileKind::Mgf:
        return std::make_unique<MgfLibraryFormat>();
    case LibraryFileKind::MzSpecLib:
        return std::make_unique<MzSpecLibFormat>();
    case LibraryFileKind::Dlib:
    case LibraryFileKind::Blib:
        break;
    }
    return nullptr;
}

} // namespace zav
