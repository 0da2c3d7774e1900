#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test::walk_arguments_test {
namespace {

const std::string kKarate = VEQ_DATA "/karate.xnet";

/// Runs a walk of one agent and one step with further arguments, later ones for the same option
/// replacing these.
ProgramRun walkWith(std::vector<std::string> more) {
  std::vector<std::string> arguments{"walk", kKarate};
  for (const auto& [option, value] : {std::pair("--agents", "1"), std::pair("--steps", "1")}) {
    if (more.empty() || more[0] != option) {
      arguments.emplace_back(option);
      arguments.emplace_back(value);
    }
  }
  arguments.insert(arguments.end(), more.begin(), more.end());
  return runVeq(arguments);
}

void expectWrongUsage(const std::string& option, const std::string& value,
                      const std::string& message) {
  const ProgramRun run = walkWith({option, value});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors, "veq: " + option + " " + message + " (see veq walk --help)\n");
}

TEST(WalkArguments, CountsMustBePositiveDecimalNumbersThatTheLibraryCanHold) {
  for (const std::string value : {"0", "-1", "+1", "1.5", "1e3", "0x10", "1x", " 1", "", "many"}) {
    expectWrongUsage("--agents", value, "needs a whole number from 1 on, not " + value);
  }
  for (const std::string value : {"18446744073709551616", "99999999999999999999999"}) {
    expectWrongUsage("--agents", value,
                     "needs a whole number from 1 on, and " + value + " is too large");
  }
  for (const std::string value : {"0", "-5"}) {
    expectWrongUsage("--steps", value, "needs a whole number from 1 on, not " + value);
  }
  for (const std::string value :
       {"9223372036854775808", "18446744073709551615", "18446744073709551616"}) {
    expectWrongUsage("--steps", value,
                     "needs a whole number from 1 on, and " + value + " is too large");
  }
}

TEST(WalkArguments, ALeadingZeroIsNoOctalNumber) {
  const ProgramRun run = walkWith({"--steps", "010", "--top", "0", "--seed", "1"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.output.find("\nwalk     10 steps, choice published, seed 1\n"), std::string::npos);
}

TEST(WalkArguments, SeedsAre32BitNumbers) {
  EXPECT_EQ(walkWith({"--seed", "4294967295"}).exitCode, 0);
  expectWrongUsage("--seed", "4294967296",
                   "needs a whole number from 0 to 4294967295, not 4294967296");
}

TEST(WalkArguments, ThreadsAreCountedBeforeOrAfterTheCommand) {
  expectWrongUsage("--threads", "1025", "needs a whole number from 0 to 1024, not 1025");
  expectWrongUsage("--threads", "-1", "needs a whole number from 0 to 1024, not -1");
  EXPECT_EQ(walkWith({"--threads", "0"}).exitCode, 0);
  EXPECT_EQ(runVeq({"--threads", "2", "info", VEQ_DATA "/karate.xnet"}).exitCode, 0);
  EXPECT_EQ(runVeq({"--threads", "two", "info", VEQ_DATA "/karate.xnet"}).errors,
            "veq: --threads needs a whole number from 0 to 1024, not two (see veq info --help)\n");
}

TEST(WalkArguments, TheTargetIsAShareAbove0) {
  EXPECT_EQ(walkWith({"--until-reach", "1"}).exitCode, 0);
  for (const std::string value :
       {"nan", "inf", "-0.5", "1.5", "99%", "0x1p-1", "1e-400", "", "0", "-0", "0.0"}) {
    expectWrongUsage("--until-reach", value, "needs a number above 0 and up to 1, not " + value);
  }
}

TEST(WalkArguments, StartsMustBeVerticesOfTheNetwork) {
  for (const auto& [list, unknown] :
       {std::pair("Nobody", "Nobody"), std::pair("35", "35"), std::pair("1,-1", "-1"),
        std::pair("18446744073709551616", "18446744073709551616")}) {
    const ProgramRun run = walkWith({"--start", list});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "veq: " + kKarate + ": has no vertex \"" + unknown + "\"\n");
  }
}

TEST(WalkArguments, EmptyAndSurplusStartsAreWrongUsage) {
  for (const std::string list : {"1,", ",1", "1,,2"}) {
    expectWrongUsage("--start", list, "lists an empty vertex");
  }
  expectWrongUsage("--start", "", "needs vertices or a file");
  expectWrongUsage("--start", "1,2", "has 2 vertices for 1 agent");
}

TEST(WalkArguments, AFileOfStartsSaysWhereItIsWrong) {
  const TemporaryDirectory directory;
  const std::string file = directory.path("starts");
  for (const auto& [bytes, reason] :
       {std::pair("", std::string("has no vertices to start at")),
        std::pair("1\n\n2\n", std::string("line 2 is empty where a vertex is needed")),
        std::pair("1\r\nx\r\n", "line 2: " + kKarate + " has no vertex \"x\"")}) {
    directory.write("starts", bytes);
    const ProgramRun run = walkWith({"--start", file});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "veq: " + file + ": " + reason + "\n");
  }
  directory.write("starts", "1\n2\n");
  expectWrongUsage("--start", file, "has 2 vertices for 1 agent");
}

TEST(WalkArguments, OutputsMustBeFilesOfTheirOwn) {
  const TemporaryDirectory directory;
  const std::string input = directory.write("n.xnet", "#vertices 2\n#edges\n0 1\n");
  const std::string starts = directory.write("starts.csv", "0\n");
  const auto errorOf = [&](const std::vector<std::string>& more) {
    std::vector<std::string> arguments{"walk", input, "--agents", "1", "--steps", "1"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const ProgramRun run = runVeq(arguments);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.output, "");
    return run.errors;
  };
  const std::string help = " (see veq walk --help)\n";
  EXPECT_EQ(errorOf({"--output", input}),
            "veq: --output would overwrite " + input + ", which is read" + help);
  EXPECT_EQ(errorOf({"--paths", starts, "--start", starts}),
            "veq: --paths would overwrite " + starts + ", which is read" + help);
  const std::string both = directory.path("both.xnet");
  EXPECT_EQ(errorOf({"--paths", both, "--output", both}),
            "veq: --paths and --output are one file" + help);
  EXPECT_EQ(errorOf({"--paths", "-", "--output", "-", "--to", "xnet"}),
            "veq: --paths and --output are one file" + help);
  EXPECT_EQ(errorOf({"--to", "xnet"}), "veq: --to needs --output" + help);
  EXPECT_EQ(errorOf({"--force"}), "veq: --force needs --output" + help);
  EXPECT_EQ(runVeq({"walk", "-", "--agents", "1", "--steps", "1", "--start", "-"}).errors,
            "veq: --start and FILE are both standard input" + help);
  EXPECT_EQ(directory.names(), (std::vector<std::string>{"n.xnet", "starts.csv"}));
}

TEST(WalkArguments, WrongChoicesAreToldWithWhatIsNeeded) {
  expectWrongUsage("--choice", "odd", "needs published, even or weighted, not odd");
  expectWrongUsage("--restart", "1.5", "needs a number from 0 to 1, not 1.5");
  expectWrongUsage("--substream", "4194304", "needs a whole number from 0 to 4194303, not 4194304");
}

TEST(WalkArguments, OutputsThatCannotBeWrittenAreRefusedBeforeTheWalk) {
  const TemporaryDirectory directory;
  const std::string nowhere = directory.path("no/such/file.xnet");
  for (const std::string option : {"--paths", "--output"}) {
    ProgramRun run = walkWith({option, nowhere});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "veq: " + nowhere + ": No such file or directory\n");
    std::vector<std::string> atDirectory{option, directory.path("")};
    if (option == "--output") atDirectory.insert(atDirectory.end(), {"--to", "xnet"});
    run = walkWith(atDirectory);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "veq: " + directory.path("") + ": Is a directory\n");
  }
  EXPECT_TRUE(directory.names().empty());
}

TEST(WalkArguments, AFullDeviceIsAFailure) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this system has no /dev/full";
  for (const std::string option : {"--paths", "--output"}) {
    std::vector<std::string> arguments{option, "/dev/full", "--top", "0"};
    if (option == "--output") arguments.insert(arguments.end(), {"--to", "xnet"});
    const ProgramRun run = walkWith(arguments);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "veq: /dev/full: No space left on device\n");
  }
}

TEST(WalkArguments, AFileThatCannotBeWrittenWholeLeavesTheOldOne) {
  const TemporaryDirectory directory;
  // A path of 2000 steps takes more than 20,000 bytes, the network with its visits 1,000 and the
  // limit is 4 or 8 blocks of 512 or 1024 bytes, as the shell has them.
  const std::string old = directory.write("paths.csv", "old");
  const auto limited = [&](const std::string& blocks, const std::string& option,
                           const std::string& file) {
    return runShell("ulimit -f " + blocks + "; '" VEQ_PROGRAM "' walk '" + kKarate +
                    "' --agents 1 --steps 2000 --top 0 " + option + " '" + file + "'");
  };
  ProgramRun run = limited("8", "--paths", old);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: " + old + ": File too large\n");
  EXPECT_EQ(contentsOf(old), "old");
  run = limited("8", "--paths", directory.path("new.csv"));
  EXPECT_EQ(run.exitCode, 1);
  run = limited("1", "--output", directory.path("new.xnet"));
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: " + directory.path("new.xnet") + ": File too large\n");
  EXPECT_EQ(directory.names(), std::vector<std::string>{"paths.csv"});
}

TEST(WalkArguments, MoreThanMemoryCanHoldIsAFailureThatLeavesNothingBehind) {
  const TemporaryDirectory directory;
  ProgramRun run = walkWith({"--agents", "18446744073709551615"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: not enough memory\n");
  run = walkWith({"--steps", "9223372036854775807", "--paths", directory.path("paths.csv")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: not enough memory\n");
  EXPECT_TRUE(directory.names().empty());
}

}  // namespace
}  // namespace veq::test::walk_arguments_test
