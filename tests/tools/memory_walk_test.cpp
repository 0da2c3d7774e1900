#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test::memory_walk_test {
namespace {

const std::string kKarate = VEQ_DATA "/karate.xnet";
const std::string kRing = "#vertices 5\n#edges\n0 1\n1 2\n2 3\n3 4\n4 0\n";

/// The vertices in the paths file, agent by agent.
std::vector<int> verticesIn(const std::string& csv) {
  std::vector<int> vertices;
  for (std::size_t line = csv.find('\n') + 1; line < csv.size(); line = csv.find('\n', line) + 1) {
    const std::size_t index = csv.find(',', csv.find(',', line) + 1) + 1;
    vertices.push_back(std::stoi(csv.substr(index)));
  }
  return vertices;
}

std::vector<int> walkOnRing(const std::string& seed, const std::vector<std::string>& more) {
  const TemporaryDirectory directory;
  const std::string paths = directory.path("paths.csv");
  std::vector<std::string> arguments{"walk",     directory.write("ring.xnet", kRing),
                                     "--agents", "1",
                                     "--steps",  "20",
                                     "--seed",   seed,
                                     "--paths",  paths};
  arguments.insert(arguments.end(), more.begin(), more.end());
  EXPECT_EQ(runVeq(arguments).exitCode, 0);
  return verticesIn(contentsOf(paths));
}

int countTurns(const std::vector<int>& path) {
  int turns = 0;
  for (std::size_t i = 2; i < path.size(); ++i) turns += path[i] == path[i - 2];
  return turns;
}

TEST(MemoryWalk, AnAgentThatRemembersItsLastTwoVisitsGoesRoundARing) {
  // The start is not remembered, so that the second step alone may turn back.
  int turnsWithout = 0;
  for (const std::string seed : {"1", "2", "3", "4", "5"}) {
    const std::vector<int> path = walkOnRing(seed, {"--memory", "2"});
    ASSERT_EQ(path.size(), 21u);
    EXPECT_EQ(countTurns({path.begin() + 1, path.end()}), 0) << seed;
    turnsWithout += countTurns(walkOnRing(seed, {}));
  }
  EXPECT_GT(turnsWithout, 0);
}

TEST(MemoryWalk, AnAgentWhoseMemoryIsAlwaysWrongTurnsBackAgain) {
  int turns = 0;
  for (const std::string seed : {"1", "2", "3", "4", "5"}) {
    const std::vector<int> path = walkOnRing(seed, {"--memory", "2", "--errors", "1"});
    turns += countTurns({path.begin() + 1, path.end()});
  }
  EXPECT_GT(turns, 0);
}

TEST(MemoryWalk, SharedMemoriesChangeTheWalk) {
  const std::vector<std::string> walk{"walk", kKarate,  "--agents", "34",       "--steps",
                                      "50",   "--seed", "1",        "--memory", "5"};
  std::vector<std::string> shared = walk;
  shared.insert(shared.end(), {"--agents-network", kKarate});
  const ProgramRun alone = runVeq(walk);
  const ProgramRun together = runVeq(shared);
  EXPECT_EQ(alone.exitCode, 0);
  EXPECT_EQ(together.exitCode, 0);
  EXPECT_NE(alone.output, together.output);
  EXPECT_EQ(together.output, runVeq(shared).output);
}

TEST(MemoryWalk, AnAgentsNetworkNeedsAVertexForEachAgent) {
  const ProgramRun run = runVeq({"walk", kKarate, "--agents", "35", "--steps", "5", "--memory", "5",
                                 "--agents-network", kKarate});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors, "veq: " + kKarate + ": has 34 vertices for 35 agents\n");
}

TEST(MemoryWalk, BadOptionsAreWrongUsage) {
  const auto errorOf = [](const std::string& option, const std::string& value) {
    const ProgramRun run =
        runVeq({"walk", kKarate, "--agents", "1", "--steps", "1", option, value});
    EXPECT_EQ(run.exitCode, 2);
    return run.errors;
  };
  EXPECT_EQ(errorOf("--errors", "0.5"), "veq: --errors needs --memory (see veq walk --help)\n");
  EXPECT_EQ(errorOf("--agents-network", kKarate),
            "veq: --agents-network needs --memory (see veq walk --help)\n");
  EXPECT_EQ(errorOf("--memory", "0"),
            "veq: --memory needs a whole number from 1 on, not 0 (see veq walk --help)\n");
  EXPECT_EQ(errorOf("--errors", "1.5"),
            "veq: --errors needs a number from 0 to 1, not 1.5 (see veq walk --help)\n");
}

TEST(MemoryWalk, RingsThatMemoryCannotHoldAreAFailure) {
  const ProgramRun run =
      runVeq({"walk", kKarate, "--agents", "1", "--steps", "1", "--memory", "9223372036854775807"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: not enough memory\n");
}

}  // namespace
}  // namespace veq::test::memory_walk_test
