#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test {
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
  EXPECT_EQ(run.errors, "veq: " + option + ": " + message + " (see veq walk --help)\n");
}

TEST(WalkArguments, CountsMustBePositiveDecimalNumbersThatTheLibraryCanHold) {
  for (const std::string value : {"0", "-1", "+1", "1.5", "1e3", "0x10", "1x", " 1", "", "many",
                                  "18446744073709551616", "99999999999999999999999"}) {
    expectWrongUsage("--agents", value,
                     "must be a whole number from 1 to 18446744073709551615, not " + value);
  }
  for (const std::string value :
       {"0", "-5", "9223372036854775808", "18446744073709551615", "18446744073709551616"}) {
    expectWrongUsage("--steps", value,
                     "must be a whole number from 1 to 9223372036854775807, not " + value);
  }
}

TEST(WalkArguments, ALeadingZeroIsNoOctalNumber) {
  const ProgramRun run = walkWith({"--steps", "010", "--top", "0", "--seed", "1"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.output.find("\n1 agent, 10 steps each, seed 1\n"), std::string::npos);
}

TEST(WalkArguments, SeedsAre32BitNumbers) {
  EXPECT_EQ(walkWith({"--seed", "4294967295"}).exitCode, 0);
  expectWrongUsage("--seed", "4294967296",
                   "must be a whole number from 0 to 4294967295, not 4294967296");
}

TEST(WalkArguments, TheTargetIsAShareAbove0) {
  EXPECT_EQ(walkWith({"--until-reach", "1"}).exitCode, 0);
  for (const std::string value : {"nan", "inf", "-0.5", "1.5", "99%", "0x1p-1", "1e-60", ""}) {
    expectWrongUsage("--until-reach", value, "must be a number from 0 to 1, not " + value);
  }
  for (const std::string value : {"0", "-0", "0.0"}) {
    expectWrongUsage("--until-reach", value, "must be above 0");
  }
}

TEST(WalkArguments, StartsMustBeVerticesOfTheNetwork) {
  for (const auto& [list, unknown] :
       {std::pair("Nobody", "Nobody"), std::pair("1,", ""), std::pair(",1", ""),
        std::pair("35", "35"), std::pair("1,-1", "-1"),
        std::pair("18446744073709551616", "18446744073709551616")}) {
    const ProgramRun run = walkWith({"--start", list});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "veq: " + kKarate + ": has no vertex \"" + unknown + "\"\n");
  }
}

TEST(WalkArguments, OutputsThatCannotBeWrittenAreRefusedBeforeTheWalk) {
  const TemporaryDirectory directory;
  const std::string nowhere = directory.path("no/such/file");
  for (const std::string option : {"--paths", "--output"}) {
    ProgramRun run = walkWith({option, nowhere});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "veq: " + nowhere + ": No such file or directory\n");
    run = walkWith({option, directory.path("")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "veq: " + directory.path("") + ": Is a directory\n");
  }
  EXPECT_TRUE(directory.names().empty());
}

TEST(WalkArguments, AFullDeviceIsAFailure) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this system has no /dev/full";
  for (const std::string option : {"--paths", "--output"}) {
    const ProgramRun run = walkWith({option, "/dev/full", "--top", "0"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "veq: /dev/full: cannot be written\n");
  }
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
}  // namespace veq::test
