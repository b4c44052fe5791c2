// SPDX-License-Identifier: Apache-2.0
#include "ManualPage.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <sstream>

namespace zav {

namespace {

/// The words of a text as they are printed: a hyphen as ASCII's, a backslash as itself, nothing as a request.
std::string escaped(const std::string &text)
{
    std::string result;
    for (const char each : text) {
        if (each == '\\')
            result += "\\e";
        else if (each == '-')
            result += "\\-";
        else if (each == '\'')
            result += "\\(aq";
        else
            result += each;
    }
    return !result.empty() && result.front() == '.' ? "\\&" + result : result;
}

/// The name of the command with that of its page: `zav-library-merge`.
std::string pageName(std::string command)
{
    std::replace(command.begin(), command.end(), ' ', '-');
    return command;
}

std::string upperCase(std::string text)
{
    for (char &each : text)
        each = char(std::toupper(static_cast<unsigned char>(each)));
    return text;
}

std::string lowerStart(std::string text)
{
    if (!text.empty())
        text.front() = char(std::tolower(static_cast<unsigned char>(text.front())));
    return text;
}

std::vector<std::vector<std::string>> paragraphsOf(const std::string &text)
{
    std::vector<std::vector<std::string>> paragraphs(1);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty())
            paragraphs.back().push_back(line);
        else if (!paragraphs.back().empty())
            paragraphs.emplace_back();
    }
    if (paragraphs.back().empty())
        paragraphs.pop_back();
    return paragraphs;
}

bool startsWith(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

/// The text below the options of `--help`, in the sections that a manual has for it.
struct Sections
{
    std::string description, exitStatus, examples;
};

Sections sectionsOf(const std::string &footer)
{
    const std::string exitCode = "Exit code: ";
    Sections sections;
    for (const std::vector<std::string> &paragraph : paragraphsOf(footer)) {
        const bool isExamples = startsWith(paragraph.front(), "Example");
        const bool isExitStatus = startsWith(paragraph.front(), exitCode);
        std::string &section = isExamples     ? sections.examples
                               : isExitStatus ? sections.exitStatus
                                              : sections.description;
        if (isExamples || !section.empty())
            section += isExamples ? ".EX\n" : ".PP\n";
        for (std::size_t i = isExamples ? 1 : 0; i < paragraph.size(); ++i)
            section += escaped(isExitStatus && i == 0 ? paragraph[i].substr(exitCode.size()) : paragraph[i]) + '\n';
        if (isExamples)
            section += ".EE\n";
    }
    return sections;
}

/// `-o, --output LIB`
std::string headingOf(const CLI::Option &option)
{
    if (option.get_positional())
        return "\\fI" + escaped(option.get_name(true)) + "\\fR";
    std::string names;
    for (const std::string &name : option.get_snames())
        names += (names.empty() ? "\\-" : ", \\-") + name;
    for (const std::string &name : option.get_lnames())
        names += (names.empty() ? "\\-\\-" : ", \\-\\-") + escaped(name);
    const std::string value = option.get_items_expected_max() > 0 ? option.get_type_name() : std::string();
    return "\\fB" + names + "\\fR" + (value.empty() ? "" : " \\fI" + escaped(value) + "\\fR");
}

std::string optionsOf(CLI::App *command, bool positional)
{
    std::string text;
    for (const CLI::Option *option : command->get_options()) {
        if (option->get_positional() == positional)
            text += ".TP\n" + headingOf(*option) + '\n' + escaped(option->get_description()) + '\n';
    }
    return text;
}

std::string synopsisOf(CLI::App *command, const std::string &name)
{
    std::string text = "\\fB" + escaped(name) + R"(\fR [\fIOPTIONS\fR])";
    for (const CLI::Option *option : command->get_options()) {
        if (option->get_positional())
            text += " [\\fI" + escaped(option->get_name(true)) +
                    (option->get_items_expected_max() > 1 ? "\\fR ...]" : "\\fR]");
    }
    if (command->get_require_subcommand_min() > 0)
        text += " \\fICOMMAND\\fR ...";
    return text + '\n';
}

std::string commandsOf(CLI::App *command, const std::string &name)
{
    std::string text;
    for (const CLI::App *each : command->get_subcommands([](const CLI::App *) { return true; })) {
        const std::string full = name + ' ' + each->get_name();
        text += ".TP\n\\fB" + escaped(full) + "\\fR\n" + escaped(each->get_description()) + ": see\n.BR " +
                escaped(pageName(full)) + " (1).\n";
    }
    return text;
}

void addSection(const std::string &title, const std::string &content, std::string *page)
{
    if (!content.empty())
        *page += ".SH " + title + '\n' + content;
}

/// `parent`: the command that it belongs to, as it is typed; empty for the program.
void addPages(CLI::App *command, const std::string &parent, const std::string &date, std::vector<ManualPage> *pages)
{
    const std::string name = parent.empty() ? command->get_name() : parent + ' ' + command->get_name();
    const Sections sections = sectionsOf(command->get_footer());
    std::string page =
        ".TH " + escaped(upperCase(pageName(name))) + " 1 " + date + " \"zav " ZAV_VERSION "\" \"zav manual\"\n";
    addSection("NAME", escaped(pageName(name)) + " \\- " + escaped(lowerStart(command->get_description())) + '\n',
               &page);
    addSection("SYNOPSIS", synopsisOf(command, name), &page);
    addSection("DESCRIPTION", sections.description, &page);
    addSection("ARGUMENTS", optionsOf(command, true), &page);
    addSection("OPTIONS", optionsOf(command, false), &page);
    addSection("COMMANDS", commandsOf(command, name), &page);
    addSection("EXIT STATUS", sections.exitStatus, &page);
    addSection("EXAMPLES", sections.examples, &page);
    if (!parent.empty())
        addSection("SEE ALSO", ".BR " + escaped(pageName(parent)) + " (1)\n", &page);
    pages->push_back({pageName(name) + ".1", page});
    for (CLI::App *each : command->get_subcommands([](CLI::App *) { return true; }))
        addPages(each, name, date, pages);
}

} // namespace

std::vector<ManualPage> manualPages(CLI::App *program, const std::string &date)
{
    std::vector<ManualPage> pages;
    addPages(program, {}, date, &pages);
    return pages;
}

} // namespace zav
