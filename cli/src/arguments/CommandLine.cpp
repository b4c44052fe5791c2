// SPDX-License-Identifier: Apache-2.0
#include "CommandLine.h"

#include "CommandArguments.h"
#include "PrintableText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <numeric>
#include <sstream>
#include <vector>

namespace zav {

namespace {

EarlyExit wrongUsage(const QString &message, const QString &command = QString())
{
    const QString help =
        command.isEmpty() ? QStringLiteral("zav --help") : QStringLiteral("zav %1 --help").arg(command);
    return {WrongUsage, {}, QStringLiteral("zav: %1\nzav: '%2' explains the usage\n").arg(message.simplified(), help)};
}

/// Levenshtein distance.
int editDistance(const std::string &a, const std::string &b)
{
    std::vector<int> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (size_t i = 1; i <= a.size(); ++i) {
        int diagonal = std::exchange(row[0], int(i));
        for (size_t j = 1; j <= b.size(); ++j) {
            const int replaced = diagonal + (a[i - 1] != b[j - 1]);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

bool isCommand(const Commands &commands, const std::string &word)
{
    return std::any_of(commands.begin(), commands.end(), [&](const auto &command) { return command->name() == word; });
}

EarlyExit unknownCommand(const Commands &commands, const std::string &word)
{
    QString hint;
    int nearest = 4;
    for (const auto &command : commands) {
        const int distance = editDistance(word, command->name());
        if (distance >= nearest)
            continue;
        nearest = distance;
        hint = QStringLiteral(", did you mean '%1'?").arg(QString::fromUtf8(command->name()));
    }
    return wrongUsage(QStringLiteral("unknown command '%1'%2").arg(displayText(text(word)), hint));
}

EarlyExit earlyExit(const CLI::App &app, const CLI::ParseError &stop, const QString &command)
{
    if (stop.get_exit_code() != int(CLI::ExitCodes::Success))
        return wrongUsage(QString::fromUtf8(stop.what()), command);
    std::ostringstream output;
    app.exit(stop, output, output);
    return {AllDone, text(output.str()), {}};
}

CommandLine optionsOf(const CommandArguments &command)
{
    Result<CommandLine> options = command.options();
    if (options.hasError())
        return wrongUsage(options.error().message(), QString::fromUtf8(command.name()));
    return std::move(options).value();
}

} // namespace

Commands allCommands()
{
    Commands commands;
    for (const auto &make : {spectrumArguments, libraryArguments, retentionArguments, limitsArguments, splitArguments,
                             inspectArguments, runtimeArguments})
        commands.push_back(make());
    return commands;
}

std::unique_ptr<CLI::App> programDefinition(const Commands &commands)
{
    auto app = std::make_unique<CLI::App>(
        "Predicts peptide MS/MS spectra and retention times and reads chromatograms, with trained networks.", "zav");
    app->set_version_flag("--version", "zav " ZAV_VERSION);
    app->require_subcommand(1);
    app->footer("'zav COMMAND --help' explains a command, with examples.");
    for (const auto &command : commands)
        command->addTo(app->add_subcommand(command->name(), command->summary()));
    return app;
}

CommandLine parseCommandLine(int argc, const char *const *argv)
{
    const Commands commands = allCommands();
    if (argc > 1 && argv[1][0] != '-' && !isCommand(commands, argv[1]))
        return unknownCommand(commands, argv[1]);

    const std::unique_ptr<CLI::App> app = programDefinition(commands);
    const QString word = argc > 1 && argv[1][0] != '-' ? QString::fromUtf8(argv[1]) : QString();
    try {
        app->parse(argc, argv);
    } catch (const CLI::ParseError &stop) {
        return earlyExit(*app, stop, word);
    }
    const auto asked = std::find_if(commands.begin(), commands.end(),
                                    [&](const auto &command) { return app->got_subcommand(command->name()); });
    return optionsOf(**asked);
}

} // namespace zav
