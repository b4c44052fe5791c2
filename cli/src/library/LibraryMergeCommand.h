// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Command.h"
#include "LibraryManifest.h"
#include "LibraryOptions.h"
#include "LibraryWriter.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// `zav library merge`: joins the shards of a library to what one run would have written.
class LibraryMergeCommand : public Command
{
public:
    explicit LibraryMergeCommand(const LibraryMergeOptions &options);

private:
    struct Shard
    {
        QString path;
        LibraryManifest manifest;
    };

    Error work() override;
    Error readManifests();
    Error checkOrigins() const;
    Error checkNumbers() const;
    Error checkKind() const;
    Error checkFiles() const;
    Error join();
    Error writeAll(LibraryWriter *writer);

    LibraryMergeOptions m_options;
    QList<Shard> m_shards; ///< in the order of the library
    LibraryFileFacts m_facts;
};

} // namespace zav
