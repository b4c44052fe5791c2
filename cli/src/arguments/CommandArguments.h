// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CommandLine.h"

#include <zav/Result.h>

#include <QtCore/QFileInfo>
#include <QtCore/QString>

#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zav {

/// The arguments of one command: plain text and flags that the parser fills, checked and converted afterwards.
class CommandArguments
{
public:
    virtual ~CommandArguments();

    virtual const char *name() const = 0;
    virtual const char *summary() const = 0;

    /// Declares the arguments. The parser writes into this object, which has to outlive it.
    virtual void addTo(CLI::App *command) = 0;

    /// What was asked for; `InvalidInput` with the message for the user where the arguments contradict the manual.
    virtual Result<CommandLine> options() const = 0;
};

/// Every command, in the order of `zav --help`.
std::vector<std::unique_ptr<CommandArguments>> allCommandArguments();

/// Text of the command line; it is UTF-8.
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

/// Whether the ending is one of a picture.
bool isPicture(const QString &path);

} // namespace zav
