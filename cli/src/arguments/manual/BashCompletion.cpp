// SPDX-License-Identifier: Apache-2.0
#include "BashCompletion.h"

#include "CommandArguments.h"

#include <CLI/CLI.hpp>

#include <vector>

namespace zav {

namespace {

// Before the words of the commands; sets how the word under the cursor is to be completed.
constexpr char BEGINNING[] = R"(# Completion of zav for bash; made from the program's own definitions.

_zav()
{
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    local command=zav commands='' options='' operands='' kind=operands values='' i
    # bash takes the = of --format=tsv for a word.
    if [[ $cur == = ]]; then
        cur=''
    elif [[ $prev == = ]]; then
        prev=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case "$command ${COMP_WORDS[i]}" in
)";

constexpr char END[] = R"(    esac
    if [[ $kind == operands && $cur == -* ]]; then
        kind=words values=$options
    elif [[ $kind == operands ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$cur")
        kind=$operands
        if [[ -n ${COMPREPLY[*]} ]]; then return; fi
    fi
    COMPREPLY=()
    case $kind in
    words) mapfile -t COMPREPLY < <(compgen -W "$values" -- "$cur") ;;
    files)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$cur")
        ;;
    folders)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -d -- "$cur")
        ;;
    esac
}

complete -F _zav zav
)";

struct NamedCommand
{
    std::string name; ///< as it is typed, with the program's
    CLI::App *definition;
};

void addCommands(CLI::App *command, const std::string &parent, std::vector<NamedCommand> *commands)
{
    const std::string name = parent.empty() ? command->get_name() : parent + ' ' + command->get_name();
    commands->push_back({name, command});
    for (CLI::App *each : command->get_subcommands([](CLI::App *) { return true; }))
        addCommands(each, name, commands);
}

std::vector<std::string> namesOf(const CLI::Option &option)
{
    std::vector<std::string> names;
    for (const std::string &name : option.get_snames())
        names.push_back('-' + name);
    for (const std::string &name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

bool startsWith(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

/// What kind of value the manual's word for it stands for.
std::string kindOf(const std::string &word)
{
    if (word == "DIR")
        return "folders";
    for (const char *file : {"FILE", "LIB", "OBSERVED", "PROTEINS", "SHARD"}) {
        if (startsWith(word, file))
            return "files";
    }
    return "none";
}

std::string valuesOf(CLI::Option *option)
{
    const std::vector<std::string> choices = offeredChoices(option);
    if (choices == std::vector<std::string>{ANY_FILE})
        return "kind=files";
    return choices.empty() ? "kind=" + kindOf(option->get_type_name())
                           : "kind=words values='" + CLI::detail::join(choices, " ") + '\'';
}

/// The branch of a command: its own commands and options, and what follows those options that take a value.
std::string branchOf(const NamedCommand &command)
{
    std::vector<std::string> commands, options;
    std::string operands = "none", values;
    for (const CLI::App *each : command.definition->get_subcommands([](const CLI::App *) { return true; }))
        commands.push_back(each->get_name());
    for (CLI::Option *option : command.definition->get_options()) {
        const std::vector<std::string> names = namesOf(*option);
        if (option->get_positional())
            operands = operands == "none" ? kindOf(option->get_name(true)) : operands;
        options.insert(options.end(), names.begin(), names.end());
        if (!names.empty() && option->get_items_expected_max() > 0)
            values += "        " + CLI::detail::join(names, " | ") + ") " + valuesOf(option) + " ;;\n";
    }
    const std::string choice = values.empty() ? std::string() : "        case $prev in\n" + values + "        esac\n";
    return "    '" + command.name + "')\n        commands='" + CLI::detail::join(commands, " ") +
           "' operands=" + operands + "\n        options='" + CLI::detail::join(options, " ") + "'\n" + choice +
           "        ;;\n";
}

} // namespace

std::string bashCompletion(CLI::App *program)
{
    std::vector<NamedCommand> commands;
    addCommands(program, {}, &commands);
    std::vector<std::string> names;
    std::string branches;
    for (const NamedCommand &command : commands) {
        if (command.definition != program)
            names.push_back('\'' + command.name + '\'');
        branches += branchOf(command);
    }
    return BEGINNING + std::string("        ") + CLI::detail::join(names, " | ") +
           ") command+=\" ${COMP_WORDS[i]}\" ;;\n        esac\n    done\n    case $command in\n" + branches + END;
}

} // namespace zav
