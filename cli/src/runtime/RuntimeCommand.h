// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Command.h"

namespace zav {

/// What `zav runtime` was asked for.
struct RuntimeOptions
{
    bool verbose = false;

    bool drawsPictures() const { return false; }
};

/// `zav runtime`: which TensorFlow the program uses, from which file, and how it was found.
class RuntimeCommand : public Command
{
public:
    explicit RuntimeCommand(const RuntimeOptions &options) : Command(options.verbose), m_isVerbose(options.verbose) {}

private:
    Error work() override;

    bool m_isVerbose;
};

} // namespace zav
