// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace zav {

/// How the program ends.
enum ExitCode {
    AllDone = 0,    ///< everything that was asked for was done
    SomeFailed = 1, ///< something was not, and standard error says what and why
    WrongUsage = 2  ///< the arguments contradict the manual; nothing was done
};

} // namespace zav
