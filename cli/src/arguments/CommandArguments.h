// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CommandLine.h"
#include "ModelFolder.h"

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zav {

/// The arguments of one command: plain text and flags that the parser fills, checked and converted afterwards.
class CommandArguments
{
public:
    CommandArguments() = default;
    virtual ~CommandArguments();

    CommandArguments(const CommandArguments &) = delete;
    CommandArguments &operator=(const CommandArguments &) = delete;

    virtual const char *name() const = 0;
    virtual const char *summary() const = 0;

    /// Declares the arguments. The parser writes into this object, which has to outlive it.
    virtual void addTo(CLI::App *command) = 0;

    /// What was asked for; `InvalidInput` with the message for the user where the arguments contradict the manual.
    virtual Result<CommandLine> options() const = 0;
};

/// Where the networks are and whether they are checked, as all commands that load them ask.
class NetworkArguments
{
public:
    void addTo(CLI::App *command);

    NetworkChoice choice() const;

private:
    std::string m_folder;
    bool m_isTrusted = false;
};

std::unique_ptr<CommandArguments> spectrumArguments();
std::unique_ptr<CommandArguments> libraryArguments(); ///< and those of `zav library merge`
std::unique_ptr<CommandArguments> retentionArguments();
std::unique_ptr<CommandArguments> limitsArguments();
std::unique_ptr<CommandArguments> splitArguments();
std::unique_ptr<CommandArguments> inspectArguments();
std::unique_ptr<CommandArguments> runtimeArguments(); ///< and those of `zav runtime install`

using Commands = std::vector<std::unique_ptr<CommandArguments>>;

/// The commands of the program, in the order of `zav --help`.
Commands allCommands();

/// The definition of the whole command line. The commands have to outlive it.
std::unique_ptr<CLI::App> programDefinition(const Commands &commands);

/// Says which values an option takes, for the completion of the command line. Checks nothing.
void offerChoices(CLI::Option *option, const std::vector<std::string> &choices);

/// Offered for an option that takes a file and whose word in the help does not say so.
inline constexpr char ANY_FILE[] = "<file>";

/// The values that were offered for it; empty for an option of other values.
std::vector<std::string> offeredChoices(CLI::Option *option);

/// Text of the command line, which is UTF-8.
inline QString text(const std::string &utf8)
{
    return QString::fromStdString(utf8);
}

/// An argument that contradicts the manual.
inline Error wrongArgument(const QString &message)
{
    return Error(InvalidInput, message);
}

/// What an option does, and its default as the help shows it: "residues [7]".
std::string withDefault(const std::string &description, double value);
std::string withDefault(const std::string &description, const std::string &value);

/// Precursor charges as `2,3` or `1-4`: ascending, each once. `InvalidInput` for a charge that no network serves (they
/// serve 1 to 6), and for anything else.
Result<QList<int>> parseCharges(const QString &text);

/// Whether the ending is one of a picture.
bool isPicture(const QString &path);

/// Refuses an output file that is one of the input files, by whatever path. Empty paths count for nothing.
Error checkNotOverwritten(const QStringList &inputs, const QStringList &outputs);

/// Refuses an output that is one of the others, by whatever path. Only files count: no empty path, no "-", no device.
Error checkNotAmong(const QStringList &others, const QString &output);

} // namespace zav
