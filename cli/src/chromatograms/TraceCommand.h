// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"
#include "Command.h"
#include "ModelFolder.h"
#include "Trace.h"
#include "TracePictures.h"
#include "TraceReport.h"
#include "TraceStream.h"
#include "TraceWriter.h"

#include <zav/Error.h>
#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace zav {

/// What `zav limits` and `zav split` can both be asked for.
struct TraceOptions
{
    QStringList inputs;                     ///< paths, "-" for standard input; at least one
    std::optional<ExtractionTarget> target; ///< extract this chromatogram instead of reading those that are stored
    QString targetList;                     ///< or those of this file; empty: none
    double targetPpm = 0;                   ///< for the rows of that file that name no tolerance
    NetworkChoice networks;
    std::optional<int> maxPointCount;  ///< length of the network's input; unset: by the length of each trace
    std::optional<TraceFormat> format; ///< unset: a table on a terminal, else TSV
    QString outputPath;                ///< empty: standard output
    QString picturePath;               ///< a picture, or a folder for one of every trace; empty: none
    QString pictureFolderFormat;       ///< of the pictures in a folder; empty: `picturePath` is a picture
    QString reportPath;                ///< an HTML page of all traces; empty: none
    bool groupsTraces = false;         ///< search the traces of a precursor together
    QString groupPattern;              ///< with that: of the part of an id that names the group; may be empty
    int threads = 1;
    bool verbose = false;

    bool drawsPictures() const { return !picturePath.isEmpty(); }
};

/// What a command looks for in each trace. Belongs to one thread.
class TraceAnalysis
{
public:
    virtual ~TraceAnalysis() = default;

    /// Loads the network once, so that what is wrong with it is known before any trace is read.
    virtual Error load() = 0;

    virtual Result<TraceFindings> analyse(const QList<QPointF> &points) = 0;
};

/// A command that looks for something in every trace of the files that were named: reads, analyses on several threads,
/// and writes in the order of the files.
class TraceCommand : public Command
{
public:
    /// `table` is what is written of each trace.
    TraceCommand(const TraceOptions &options, const TraceTable &table);

private:
    /// The network's file in the folder of networks.
    virtual NetworkUse networkUse() const = 0;

    /// What each thread does with the traces that it gets.
    virtual std::unique_ptr<TraceAnalysis> makeAnalysis(const QString &modelFilePath) const = 0;

    Error work() override;
    Error preparePictures();
    Error openTraces();
    Error loadNetwork();
    Error analyseAll();
    Error finishOutput();
    Result<std::optional<TraceGroup>> read();
    TraceGroup analyse(TraceAnalysis *analysis, TraceGroup group) const;
    Error accept(const TraceGroup &group, Progress *progress);
    Error accept(const Trace &trace);
    Error write(const Trace &trace);
    void tell(const TraceFindings &findings, const QString &subject);
    void countFailure(const Error &error, const QString &subject);

    TraceOptions m_options;
    const TraceTable &m_table;
    TracePictures m_pictures;
    TraceReport m_report;
    TraceTally m_tally;
    std::unique_ptr<TraceStream> m_stream;
    TraceOutput m_output;
    std::vector<std::unique_ptr<TraceAnalysis>> m_analyses; ///< one a thread
};

} // namespace zav
