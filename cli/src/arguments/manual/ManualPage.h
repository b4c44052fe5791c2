// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zav {

/// A page of the manual, in the language of man(7).
struct ManualPage
{
    std::string fileName; ///< `zav-library-merge.1`
    std::string text;
};

/// The page of the program and those of all its commands, from the definitions that `--help` shows. `date` stands at
/// the foot of each page.
std::vector<ManualPage> manualPages(CLI::App *program, const std::string &date);

} // namespace zav
