// SPDX-License-Identifier: Apache-2.0
#include "CommandArguments.h"

#include "OutputFile.h"
#include "PrintableText.h"

#include <CLI/CLI.hpp>

#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QSet>
#include <QtCore/QStringList>

#include <algorithm>

namespace zav {

namespace {

constexpr int HIGHEST_CHARGE = 6;

/// One charge, from 1 to 6; 0 for any other text.
int chargeFrom(const QString &text)
{
    const int charge = text.trimmed().toInt();
    return charge >= 1 && charge <= HIGHEST_CHARGE ? charge : 0;
}

bool isSameFile(const QString &a, const QString &b)
{
    return QFileInfo(a).isFile() && QFileInfo(a).canonicalFilePath() == QFileInfo(b).canonicalFilePath();
}

/// The file's one path, also of a file that is yet to be made.
QString onePath(const QString &path)
{
    const QFileInfo file(path);
    const QString folder = QFileInfo(file.absolutePath()).canonicalFilePath();
    return file.exists() || folder.isEmpty() ? file.canonicalFilePath() : folder + QLatin1Char('/') + file.fileName();
}

} // namespace

CommandArguments::~CommandArguments() = default;

void NetworkArguments::addTo(CLI::App *command)
{
    command->add_option("--models", m_folder, "folder of the networks")->type_name("DIR");
    command->add_flag("--trust-networks", m_isTrusted,
                      "also load networks that are not those of their contracts, or that may do more than compute");
}

NetworkChoice NetworkArguments::choice() const
{
    return {text(m_folder), m_isTrusted};
}

void offerChoices(CLI::Option *option, const std::vector<std::string> &choices)
{
    // A validator that accepts everything carries them in its name, which the help does not show.
    option->check(CLI::Validator([](std::string &) { return std::string(); }, "", CLI::detail::join(choices, " ")));
}

std::vector<std::string> offeredChoices(CLI::Option *option)
{
    try {
        return CLI::detail::split_up(option->get_validator(0)->get_name());
    } catch (const CLI::OptionNotFound &) {
        return {};
    }
}

std::string withDefault(const std::string &description, double value)
{
    return withDefault(description, QString::number(value, 'g', QLocale::FloatingPointShortest).toStdString());
}

std::string withDefault(const std::string &description, const std::string &value)
{
    return description + " [" + value + "]";
}

Result<QList<int>> parseCharges(const QString &text)
{
    QSet<int> charges;
    for (const QString &part : text.split(QLatin1Char(','))) {
        const QStringList ends = part.split(QLatin1Char('-'));
        const int lowest = chargeFrom(ends.first());
        const int highest = chargeFrom(ends.last());
        if (ends.size() > 2 || lowest == 0 || highest < lowest)
            return Error(
                InvalidInput,
                QStringLiteral("'%1' is not a list of charges from 1 to 6 such as 2,3 or 1-4").arg(displayText(text)));
        for (int charge = lowest; charge <= highest; ++charge)
            charges.insert(charge);
    }
    QList<int> sorted = charges.values();
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

bool isPicture(const QString &path)
{
    const QString ending = QFileInfo(path).suffix().toLower();
    return ending == QLatin1String("svg") || ending == QLatin1String("png") || ending == QLatin1String("pdf");
}

Error checkNotOverwritten(const QStringList &inputs, const QStringList &outputs)
{
    for (const QString &input : inputs) {
        for (const QString &output : outputs) {
            if (isSameFile(input, output))
                return wrongArgument(QStringLiteral("%1 would be overwritten").arg(displayText(input, 300)));
        }
    }
    return {};
}

Error checkNotAmong(const QStringList &others, const QString &output)
{
    if (output.isEmpty() || !isRegularFile(output) || onePath(output).isEmpty())
        return {};
    for (const QString &other : others) {
        if (!other.isEmpty() && onePath(other) == onePath(output))
            return wrongArgument(QStringLiteral("%1 is named for two outputs").arg(displayText(output, 300)));
    }
    return {};
}

} // namespace zav
