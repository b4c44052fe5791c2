// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace zav {

/// The script that has bash complete the program's commands, options and values, from the definitions that `--help`
/// shows. It needs bash 4.4 and nothing else.
std::string bashCompletion(CLI::App *program);

} // namespace zav
