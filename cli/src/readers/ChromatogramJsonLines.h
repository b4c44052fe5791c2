// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"
#include "LineStream.h"

namespace zav {

/// The chromatograms of a file with a JSON object on each line, as `openChromatograms` describes it. A line that cannot
/// be used is a broken trace; where already the first is no JSON object, the file is not of this kind: an error.
class ChromatogramJsonLines : public ChromatogramSource
{
public:
    explicit ChromatogramJsonLines(std::unique_ptr<ByteStream> bytes);

    qint64 count() const override { return -1; }
    Result<std::optional<TraceOutcome>> next() override;

private:
    LineStream m_lines;
    qint64 m_order = 0; // of the trace, from 1
    Error m_error;
};

} // namespace zav
