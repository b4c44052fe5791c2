// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace zav {

/// The whole program: reads the arguments and runs the command. Returns the process's exit code (`ExitCode`).
int runProgram(int argc, char **argv);

} // namespace zav
