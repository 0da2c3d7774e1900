#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test::documentation_test {
namespace {

const std::vector<std::vector<std::string>> kCommands = {{"info"},
                                                         {"check"},
                                                         {"walk"},
                                                         {"convert"},
                                                         {"generate"},
                                                         {"generate", "barabasi"},
                                                         {"generate", "random"},
                                                         {"generate", "gnp"},
                                                         {"generate", "gnm"},
                                                         {"generate", "barabasi-albert"},
                                                         {"generate", "configuration"},
                                                         {"generate", "watts-strogatz"},
                                                         {"generate", "lattice"},
                                                         {"generate", "geometric"},
                                                         {"generate", "blocks"},
                                                         {"generate", "rewired"},
                                                         {"components"},
                                                         {"page"},
                                                         {"ensemble"}};

std::string helpOf(std::vector<std::string> command) {
  command.emplace_back("--help");
  const ProgramRun run = runVeq(command);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "");
  return run.output;
}

/// The command lines in the examples; one may go on after a backslash.
std::vector<std::string> examplesIn(const std::string& help) {
  std::vector<std::string> examples;
  std::string section = help.substr(help.find("\nExamples:\n"));
  section = std::regex_replace(section, std::regex("\\\\\n *"), "");
  const std::regex line("\n  veq ([^\n]*)");
  for (std::sregex_iterator at(section.begin(), section.end(), line), end; at != end; ++at) {
    examples.push_back((*at)[1]);
  }
  return examples;
}

TEST(Documentation, EveryExampleInEveryHelpWorks) {
  const TemporaryDirectory directory;
  std::filesystem::create_directory_symlink(VEQ_DATA, directory.path("data"));
  directory.write("small.xnet", "#vertices 2\n#edges\n0 1\n");
  directory.write("network.xnet", "#vertices 3\n#edges\n0 1\n");
  directory.write("citations.txt", "a b\nb c\n");
  directory.write("numbers.el", "10 20\n20 30\n");
  directory.write("links.txt", "0 1\n1 2\n");
  directory.write("degrees.txt", "3\n3\n2\n2\n2\n");
  // Ensembles are Python's, whose package has tests of its own of what is handed to it.
  const std::string python = directory.write("python", "#!/bin/sh\nexit 0\n");
  std::filesystem::permissions(python, std::filesystem::perms::owner_all);
  for (const auto& command : kCommands) {
    const std::vector<std::string> examples = examplesIn(helpOf(command));
    EXPECT_FALSE(examples.empty()) << command.back();
    for (const std::string& example : examples) {
      EXPECT_EQ(example.substr(0, command[0].size()), command[0]);
      const ProgramRun run = runShell("cd '" + directory.path("") +
                                      "' && VEQ_PYTHON=./python '" VEQ_PROGRAM "' " + example);
      EXPECT_EQ(run.exitCode, 0) << example << "\n" << run.errors;
    }
  }
}

std::set<std::string> matchesIn(const std::string& text, const std::regex& pattern) {
  std::set<std::string> matches;
  for (std::sregex_iterator at(text.begin(), text.end(), pattern), end; at != end; ++at) {
    matches.insert((*at)[1]);
  }
  return matches;
}

/// The options in the help of a command and of the commands below it.
std::set<std::string> optionsOf(const std::string& command) {
  std::set<std::string> options;
  for (const auto& path : kCommands) {
    if (path[0] != command) continue;
    options.merge(matchesIn(helpOf(path), std::regex("\n  (?:-h,)?(--[a-z-]+)")));
  }
  return options;
}

/// The lines that a shell with its completion file gives for a script.
std::set<std::string> completions(const std::string& shell, const std::string& script) {
  const TemporaryDirectory home;
  const ProgramRun run = runShell("HOME='" + home.path("") + "' " + shell + " '" + script + "'");
  EXPECT_EQ(run.exitCode, 0) << run.errors;
  EXPECT_EQ(run.errors, "");
  return matchesIn(run.output, std::regex("(?:^|\n)([^\t\n]+)"));
}

bool has(const std::string& program) { return runShell("command -v " + program).exitCode == 0; }

std::string source(const std::string& file) {
  return "source \"" VEQ_DATA "/../tools/veq/completions/" + file + "\"; ";
}

std::set<std::string> bashCompletions(const std::string& words) {
  return completions("bash -c", source("veq.bash") + "COMP_WORDS=(veq " + words +
                                    " --); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _veq; "
                                    "printf \"%s\\n\" \"${COMPREPLY[@]}\"");
}

std::set<std::string> fishCompletions(const std::string& line) {
  return completions("fish --no-config -c",
                     source("veq.fish") + "complete -C \"veq " + line + "\"");
}

/// What the completion hands to the shell's own function, whose first words are the options.
std::set<std::string> zshOptions(const std::string& command) {
  const std::set<std::string> lines = completions(
      "zsh -f -c", "compdef() {}; _arguments() { print -l -- \"$@\" }; " + source("veq.zsh") +
                       "words=(veq " + command + " --); CURRENT=3; _veq");
  std::set<std::string> options;
  for (const std::string& line : lines) {
    if (line.substr(0, 2) == "--") options.insert(line.substr(0, line.find('[')));
  }
  return options;
}

TEST(Documentation, TheManualPageHasEveryOptionOfEveryCommandAndNoOther) {
  const std::string page =
      std::regex_replace(contentsOf(VEQ_MAN_PAGES "/veq.1"), std::regex("\\\\-"), "-");
  EXPECT_EQ(page.substr(0, 43), ".TH VEQ 1 \"\" \"veq 0.9.0\" \"User Commands\"\n.S");
  for (const std::string command :
       {"info", "check", "walk", "convert", "generate", "components", "page", "ensemble"}) {
    const std::size_t begin = page.find("\n.SS veq " + command + " ");
    ASSERT_NE(begin, std::string::npos) << command;
    const std::string section = page.substr(begin, page.find("\n.S", begin + 1) - begin);
    std::set<std::string> options = optionsOf(command);
    options.erase("--help");
    EXPECT_FALSE(options.empty());
    EXPECT_EQ(matchesIn(section, std::regex("\n\\.TP\n\\.BI? (--[a-z-]+)")), options) << command;
  }
}

TEST(Documentation, ManualPagesAreWellFormedAndSayTheVersion) {
  for (const std::string page :
       {"veq.1", "veq-xnet.5", "veq-pajek.5", "veq-edges.5", "veq-matrix-market.5", "veq-gml.5",
        "veq-graphml.5", "veq-archive.5"}) {
    const std::string file = VEQ_MAN_PAGES "/" + page;
    EXPECT_NE(contentsOf(file).find("\"veq 0.9.0\""), std::string::npos) << page;
    if (!has("groff")) continue;
    const ProgramRun run = runShell("groff -man -Tutf8 -ww '" + file + "'");
    EXPECT_EQ(run.exitCode, 0) << page;
    EXPECT_EQ(run.errors, "") << page;
  }
}

TEST(Documentation, BashCompletesEveryOptionAndNoOther) {
  if (!has("bash")) GTEST_SKIP() << "this system has no bash";
  for (const std::string command :
       {"info", "check", "walk", "convert", "generate", "components", "page", "ensemble"}) {
    EXPECT_EQ(bashCompletions(command + " x"), optionsOf(command)) << command;
  }
  EXPECT_EQ(bashCompletions(""), (std::set<std::string>{"--help", "--threads", "--version"}));
}

TEST(Documentation, FishCompletesEveryOptionAndNoOther) {
  if (!has("fish")) GTEST_SKIP() << "this system has no fish";
  for (const std::string command :
       {"info", "check", "walk", "convert", "generate", "components", "page", "ensemble"}) {
    EXPECT_EQ(fishCompletions(command + " x --"), optionsOf(command)) << command;
  }
  EXPECT_EQ(fishCompletions(""),
            (std::set<std::string>{"info", "check", "walk", "convert", "generate", "components",
                                   "page", "ensemble", "help"}));
  EXPECT_EQ(
      fishCompletions("generate "),
      (std::set<std::string>{"barabasi", "random", "gnp", "gnm", "barabasi-albert", "configuration",
                             "watts-strogatz", "lattice", "geometric", "blocks", "rewired"}));
  EXPECT_EQ(fishCompletions("walk x --format "), (std::set<std::string>{"table", "csv", "json"}));
}

TEST(Documentation, ZshCompletesEveryOptionAndNoOther) {
  if (!has("zsh")) GTEST_SKIP() << "this system has no zsh";
  for (const std::string command :
       {"info", "check", "walk", "convert", "generate", "components", "page", "ensemble"}) {
    EXPECT_EQ(zshOptions(command), optionsOf(command)) << command;
  }
}

}  // namespace
}  // namespace veq::test::documentation_test
