// SPDX-License-Identifier: Apache-2.0
#include "CommandArguments.h"

#include "InspectArguments.h"
#include "LibraryArguments.h"
#include "LimitsArguments.h"
#include "SpectrumArguments.h"
#include "SplitArguments.h"

#include <QtCore/QLocale>

namespace zav {

CommandArguments::~CommandArguments() = default;

std::vector<std::unique_ptr<CommandArguments>> allCommandArguments()
{
    std::vector<std::unique_ptr<CommandArguments>> commands;
    commands.push_back(std::make_unique<SpectrumArguments>());
    commands.push_back(std::make_unique<LibraryArguments>());
    commands.push_back(std::make_unique<LimitsArguments>());
    commands.push_back(std::make_unique<SplitArguments>());
    commands.push_back(std::make_unique<InspectArguments>());
    return commands;
}

std::string withDefault(const std::string &description, double value)
{
    return withDefault(description, QString::number(value, 'g', QLocale::FloatingPointShortest).toStdString());
}

std::string withDefault(const std::string &description, const std::string &value)
{
    return description + " [" + value + "]";
}

bool isPicture(const QString &path)
{
    const QString ending = QFileInfo(path).suffix().toLower();
    return ending == QLatin1String("svg") || ending == QLatin1String("png") || ending == QLatin1String("pdf");
}

} // namespace zav
