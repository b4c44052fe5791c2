// SPDX-License-Identifier: Apache-2.0

// make_manual FOLDER DATE: writes the manual and the completion for bash into FOLDER/man/man1 and
// FOLDER/bash-completion/completions. A part of the build, not of the program.

#include "BashCompletion.h"
#include "CommandArguments.h"
#include "ManualPage.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

namespace {

void write(const std::filesystem::path &path, const std::string &text)
{
    std::ofstream file(path, std::ios::binary);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file << text;
    file.close();
}

void makeManual(const std::filesystem::path &folder, const std::string &date)
{
    const std::filesystem::path pages = folder / "man" / "man1";
    const std::filesystem::path completions = folder / "bash-completion" / "completions";
    std::filesystem::remove_all(pages); // of commands that are no more
    std::filesystem::create_directories(pages);
    std::filesystem::create_directories(completions);
    const auto commands = zav::allCommands();
    const auto program = zav::programDefinition(commands);
    for (const zav::ManualPage &page : zav::manualPages(program.get(), date))
        write(pages / page.fileName, page.text);
    write(completions / "zav", zav::bashCompletion(program.get()));
}

} // namespace

int main(int argc, char **argv)
try {
    if (argc != 3) {
        std::fputs("usage: make_manual FOLDER DATE\n", stderr);
        return 2;
    }
    makeManual(argv[1], argv[2]);
    return 0;
} catch (const std::exception &problem) {
    std::fprintf(stderr, "make_manual: %s\n", problem.what());
    return 1;
}
