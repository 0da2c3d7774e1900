#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test {
namespace {

const std::vector<std::vector<std::string>> kCommands = {{"info"},
                                                         {"walk"},
                                                         {"convert"},
                                                         {"generate"},
                                                         {"generate", "barabasi"},
                                                         {"generate", "random"},
                                                         {"components"}};

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
  for (const auto& command : kCommands) {
    const std::vector<std::string> examples = examplesIn(helpOf(command));
    EXPECT_FALSE(examples.empty()) << command.back();
    for (const std::string& example : examples) {
      EXPECT_EQ(example.substr(0, command[0].size()), command[0]);
      const ProgramRun run =
          runShell("cd '" + directory.path("") + "' && '" VEQ_PROGRAM "' " + example);
      EXPECT_EQ(run.exitCode, 0) << example << "\n" << run.errors;
    }
  }
}

TEST(Documentation, CompletionsAndManualPageKnowEveryOption) {
  const std::string completion = contentsOf(VEQ_DATA "/../tools/veq/completion.bash");
  const std::string page = contentsOf(VEQ_DATA "/../tools/veq/veq.1.in");
  const std::string plainPage = std::regex_replace(page, std::regex("\\\\-"), "-");
  const std::regex option("\n  (?:-h,)?(--[a-z-]+)");
  std::set<std::string> options;
  for (const auto& command : kCommands) {
    const std::string help = helpOf(command);
    EXPECT_NE(completion.find(command.back()), std::string::npos);
    EXPECT_NE(page.find(command.back()), std::string::npos);
    for (std::sregex_iterator at(help.begin(), help.end(), option), end; at != end; ++at) {
      options.insert((*at)[1]);
    }
  }
  EXPECT_EQ(options.size(), 18u);
  for (const std::string& name : options) {
    EXPECT_TRUE(std::regex_search(completion, std::regex(name + "\\b"))) << name;
    if (name == "--help") continue;
    EXPECT_TRUE(std::regex_search(plainPage, std::regex(name + "\\b"))) << name;
  }
}

}  // namespace
}  // namespace veq::test
