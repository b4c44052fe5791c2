// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Interruption.h"
#include "LibraryManifest.h"
#include "LibraryOptions.h"
#include "LibraryWriter.h"
#include "Messages.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// `zav library merge`: joins the shards of a library to what one run would have written.
class LibraryMergeCommand
{
public:
    explicit LibraryMergeCommand(const LibraryMergeOptions &options);

    /// Runs the command to its end. The result is an `ExitCode`, or 130 and 143 after an interrupt.
    int run();

private:
    struct Shard
    {
        QString path;
        LibraryManifest manifest;
    };

    Error runSteps();
    Error readManifests();
    Error checkOrigins() const;
    Error checkNumbers() const;
    Error checkKind() const;
    Error checkFiles() const;
    Error join();
    Error writeAll(LibraryWriter *writer);
    Error checkForInterrupt() const;

    LibraryMergeOptions m_options;
    Messages m_messages;
    Interruption m_interruption;
    QList<Shard> m_shards; ///< in the order of the library
    LibraryFileFacts m_facts;
};

} // namespace zav
