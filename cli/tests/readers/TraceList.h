// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"
#include "TemporaryFiles.h"

#include <string>
#include <vector>

namespace zav {

/// Everything that a source of chromatograms yields.
struct TraceList
{
    QList<TraceOutcome> outcomes;
    std::string error; ///< the message at which reading ended, without the test's folder; empty for the end

    static TraceList read(const TemporaryFiles &files, const ChromatogramRequest &request)
    {
        TraceList list;
        Result<std::unique_ptr<ChromatogramSource>> opened = openChromatograms(request);
        if (opened.hasError()) {
            list.error = files.withoutFolder(opened.error().message());
            return list;
        }
        const std::unique_ptr<ChromatogramSource> source = std::move(opened).value();
        for (;;) {
            const Result<std::optional<TraceOutcome>> next = source->next();
            list.error = files.withoutFolder(next.error().message());
            if (next.hasError() || !next.value())
                break;
            list.outcomes.append(*next.value());
        }
        const Result<std::optional<TraceOutcome>> again = source->next();
        EXPECT_EQ(files.withoutFolder(again.error().message()), list.error) << "the end has to last";
        EXPECT_TRUE(again.hasError() || !again.value());
        return list;
    }

    /// Of each outcome its id, or the message of its problem.
    std::vector<std::string> summary(const TemporaryFiles &files) const
    {
        std::vector<std::string> out;
        for (const TraceOutcome &outcome : outcomes)
            out.push_back(outcome.problem.hasError() ? files.withoutFolder(outcome.problem.message())
                                                     : outcome.chromatogram.id.toStdString());
        return out;
    }
};

} // namespace zav
