// SPDX-License-Identifier: Apache-2.0
#include "BashCompletion.h"

#include "CommandArguments.h"
#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

namespace zav {
namespace {

/// Asks a real bash, in a folder with the files a.mzML and b.tsv and the folder c.
class BashCompletion : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const Commands commands = allCommands();
        const std::string script = bashCompletion(programDefinition(commands).get());
        for (const auto &[name, text] : {std::pair("zav.bash", script), {"a.mzML", ""}, {"b.tsv", ""}}) {
            QFile file(m_folder.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(text.data(), qsizetype(text.size()));
        }
        ASSERT_TRUE(QDir(m_folder.path()).mkdir("c"));
    }

    /// What bash offers for the last of the words, sorted.
    QStringList offered(const QStringList &words) const
    {
        QProcess bash;
        bash.setWorkingDirectory(m_folder.path());
        bash.start("/bin/bash", QStringList{"--norc", "-c",
                                            "set -u; . ./zav.bash; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _zav; "
                                            "printf '%s\\n' \"${COMPREPLY[@]}\"",
                                            "bash"} +
                                    words);
        EXPECT_TRUE(bash.waitForFinished());
        EXPECT_EQ(bash.readAllStandardError().toStdString(), "");
        QStringList lines = QString::fromUtf8(bash.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        lines.sort();
        return lines;
    }

    QTemporaryDir m_folder;
};

TEST_F(BashCompletion, OffersTheCommands)
{
    EXPECT_EQ(offered({"zav", ""}),
              (QStringList{"inspect", "library", "limits", "retention", "runtime", "spectrum", "split"}));
    EXPECT_EQ(offered({"zav", "l"}), (QStringList{"library", "limits"}));
    EXPECT_EQ(offered({"zav", "runtime", ""}), QStringList{"install"});
    EXPECT_EQ(offered({"zav", "library", "m"}), QStringList{"merge"});
}

TEST_F(BashCompletion, OffersTheOptionsOfTheCommand)
{
    EXPECT_EQ(offered({"zav", "--v"}), QStringList{"--version"});
    EXPECT_EQ(offered({"zav", "spectrum", "--no"}), QStringList{"--no-isotopes"});
    EXPECT_EQ(offered({"zav", "library", "merge", "-"}),
              (QStringList{"--help", "--output", "--verbose", "-h", "-o", "-v"}));
    EXPECT_EQ(offered({"zav", "runtime", "install", "-"}), (QStringList{"--help", "-h"}));
}

TEST_F(BashCompletion, OffersTheValuesOfAnOption)
{
    const QStringList formats{"json", "table", "tsv"};
    EXPECT_EQ(offered({"zav", "limits", "--format", ""}), formats);
    EXPECT_EQ(offered({"zav", "limits", "-f", ""}), formats);
    EXPECT_EQ(offered({"zav", "limits", "--format", "="}), formats);
    EXPECT_EQ(offered({"zav", "limits", "--format", "=", "j"}), QStringList{"json"});
    EXPECT_EQ(offered({"zav", "limits", "--method", "n"}), QStringList{"network"});
    EXPECT_EQ(offered({"zav", "library", "--decoys", ""}), (QStringList{"none", "reversed", "shuffled"}));
    EXPECT_EQ(offered({"zav", "limits", "--best", ""}), QStringList{});
}

TEST_F(BashCompletion, OffersFilesAndFolders)
{
    EXPECT_EQ(offered({"zav", "limits", "a"}), QStringList{"a.mzML"});
    EXPECT_EQ(offered({"zav", "limits", "a.mzML", "-o", "b"}), QStringList{"b.tsv"});
    EXPECT_EQ(offered({"zav", "retention", "--peptides", "b"}), QStringList{"b.tsv"});
    EXPECT_EQ(offered({"zav", "limits", "--models", ""}), QStringList{"c"});
    EXPECT_EQ(offered({"zav", "inspect", ""}), QStringList{"c"});
    EXPECT_EQ(offered({"zav", "library", "a"}), QStringList{"a.mzML"});
    EXPECT_EQ(offered({"zav", "spectrum", ""}), QStringList{});
}

/// The arguments of a command that is complete but for the option and its value.
std::vector<std::string> aroundOption(const std::string &command)
{
    if (command == "spectrum")
        return {"PEPTIDEK", "2"};
    return command == "library" ? std::vector<std::string>{"a.fasta", "-o", "a.lib", "--format", "tsv"}
                                : std::vector<std::string>{"a.mzML"};
}

TEST(OfferedChoices, AreTakenByTheCommands)
{
    int count = 0;
    const Commands all = allCommands();
    const auto program = programDefinition(all);
    for (CLI::App *command : program->get_subcommands([](CLI::App *) { return true; })) {
        for (CLI::Option *option : command->get_options()) {
            for (const std::string &choice : offeredChoices(option)) {
                const std::string name = "--" + option->get_lnames().front();
                if (choice == ANY_FILE)
                    continue;
                std::vector<std::string> words = aroundOption(command->get_name());
                if (command->get_name() == "library" && name == "--format")
                    words.resize(3);
                if (name == "--plot-format")
                    words.insert(words.end(), {"--plot", "/"});
                std::vector<const char *> arguments{"zav", command->get_name().c_str(), name.c_str(), choice.c_str()};
                for (const std::string &word : words)
                    arguments.push_back(word.c_str());
                const CommandLine parsed = parseCommandLine(int(arguments.size()), arguments.data());
                const auto *refused = std::get_if<EarlyExit>(&parsed);
                EXPECT_EQ(refused, nullptr) << name << ' ' << choice << ": " << refused->standardError.toStdString();
                ++count;
            }
        }
    }
    EXPECT_GT(count, 20);
}

} // namespace
} // namespace zav
