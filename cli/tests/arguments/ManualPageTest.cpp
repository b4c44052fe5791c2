// SPDX-License-Identifier: Apache-2.0
#include "ManualPage.h"

#include "CommandArguments.h"

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include <map>

namespace zav {
namespace {

std::map<std::string, std::string> pagesOf(CLI::App *program)
{
    std::map<std::string, std::string> pages;
    for (const ManualPage &page : manualPages(program, "2026-01-02"))
        EXPECT_TRUE(pages.emplace(page.fileName, page.text).second) << page.fileName;
    return pages;
}

TEST(ManualPage, IsMadeOfTheDefinition)
{
    CLI::App program("Does things.", "prog");
    program.require_subcommand(1);
    CLI::App *command = program.add_subcommand("make", "Make a thing");
    std::string thing, output;
    bool fast = false;
    command->add_option("THING", thing, "what is made")->type_name("");
    command->add_option("-o,--output", output, "where it's put")->type_name("FILE");
    command->add_flag("--fast", fast, ".5 times as slow");
    command->footer("First \\ paragraph.\n\nSecond,\nof two lines.\n\nExit code: 0 made,\n1 not.\n\nExamples:\n"
                    "  prog make this\n  prog make that\n");
    const std::string page = pagesOf(&program).at("prog-make.1");
    EXPECT_EQ(page.substr(page.find('\n') + 1), R"(.SH NAME
prog\-make \- make a thing
.SH SYNOPSIS
\fBprog make\fR [\fIOPTIONS\fR] [\fITHING\fR]
.SH DESCRIPTION
First \e paragraph.
.PP
Second,
of two lines.
.SH ARGUMENTS
.TP
\fITHING\fR
what is made
.SH OPTIONS
.TP
\fB\-h, \-\-help\fR
Print this help message and exit
.TP
\fB\-o, \-\-output\fR \fIFILE\fR
where it\(aqs put
.TP
\fB\-\-fast\fR
\&.5 times as slow
.SH EXIT STATUS
0 made,
1 not.
.SH EXAMPLES
.EX
  prog make this
  prog make that
.EE
.SH SEE ALSO
.BR prog (1)
)");
    EXPECT_EQ(page.substr(0, 33), ".TH PROG\\-MAKE 1 2026-01-02 \"zav ");
}

TEST(ManualPage, EveryCommandOfTheProgramHasOne)
{
    const Commands commands = allCommands();
    const auto program = programDefinition(commands);
    const auto pages = pagesOf(program.get());
    for (const char *name : {"zav.1", "zav-spectrum.1", "zav-library.1", "zav-library-merge.1", "zav-retention.1",
                             "zav-limits.1", "zav-split.1", "zav-inspect.1", "zav-runtime.1", "zav-runtime-install.1"})
        EXPECT_EQ(pages.count(name), 1U) << name;
    EXPECT_NE(pages.at("zav.1").find("zav\\-library (1)"), std::string::npos);
    EXPECT_NE(pages.at("zav-library.1").find("zav\\-library\\-merge (1)"), std::string::npos);
}

} // namespace
} // namespace zav
