// veq walk --walk-only, beside the same walk on the whole network.
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test::walk_only_test {
namespace {

// Each vertex from 0 on first stands where it would be counted, so that ids and indices are one.
const std::string kEdges = "0 1\n2 1\n2 0\n3 2\n0 3\n4 4\n4 0\n";

std::vector<std::string> walkOn(const std::string& file, const std::vector<std::string>& further) {
  std::vector<std::string> arguments{"walk", file,     "--agents", "3",     "--steps",
                                     "200",  "--seed", "7",        "--top", "9"};
  arguments.insert(arguments.end(), further.begin(), further.end());
  return arguments;
}

TEST(WalkOnlyProgram, WalksAsOnTheWholeNetwork) {
  const TemporaryDirectory folder;
  const std::string file = folder.write("edges", kEdges);
  for (const std::vector<std::string>& how : {std::vector<std::string>{},
                                              {"--choice", "even", "--restart", "0.1"},
                                              {"--start", "uniform", "--until-reach", "0.9"},
                                              {"--start", "degree", "--substream", "3"},
                                              {"--format", "json"},
                                              {"--format", "csv"},
                                              {"--start", "2,1"}}) {
    std::vector<std::string> rowsOnly = how;
    rowsOnly.push_back("--walk-only");
    const ProgramRun rows = runVeq(walkOn(file, rowsOnly));
    const ProgramRun whole = runVeq(walkOn(file, how));
    EXPECT_EQ(rows.exitCode, 0) << rows.errors;
    EXPECT_EQ(rows.output, whole.output);
    EXPECT_EQ(rows.errors, "veq: " + file + ": rows and neighbours take 104 bytes, the walk " +
                               (how.size() == 4 && how[2] == "--until-reach" ? "125" : "120") +
                               " bytes\n" + whole.errors);
  }
}

TEST(WalkOnlyProgram, KnowsNoInDegrees) {
  const TemporaryDirectory folder;
  const ProgramRun run =
      runVeq(walkOn(folder.write("edges", "0 1\n1 0\n"), {"--directed", "--walk-only", "--quiet"}));
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output.substr(run.output.find("\n\n")),
            "\n\n"
            "vertex  out-degree  visits    share\n"
            "0                1     300  50.00 %\n"
            "1                1     300  50.00 %\n");
}

TEST(WalkOnlyProgram, WritesWhenVerticesWereReached) {
  const TemporaryDirectory folder;
  const std::string file = folder.write("edges", kEdges);
  EXPECT_EQ(runVeq(walkOn(file, {"--walk-only", "--coverage", folder.path("rows.csv")})).exitCode,
            0);
  EXPECT_EQ(runVeq(walkOn(file, {"--coverage", folder.path("whole.csv")})).exitCode, 0);
  EXPECT_EQ(contentsOf(folder.path("rows.csv")), contentsOf(folder.path("whole.csv")));
}

TEST(WalkOnlyProgram, SpoolsStandardInput) {
  const TemporaryDirectory folder;
  const std::string file = folder.write("edges", kEdges);
  const ProgramRun run =
      runShell("TMPDIR=" + folder.path(".") + " " + VEQ_PROGRAM +
               " walk - --walk-only --agents 1 --steps 5 --seed 1 --top 0 < " + file);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors,
            "veq: standard input: rows and neighbours take 104 bytes, the walk 120 bytes\n"
            "standard input: 28 bytes of a pipe are spooled to a file without a name in " +
                folder.path(".") + "\n");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"edges"});
}

TEST(WalkOnlyProgram, SaysWhatItLacks) {
  const TemporaryDirectory folder;
  const std::string file = folder.write("edges", kEdges);
  const auto error = [&](const std::vector<std::string>& further) {
    std::vector<std::string> how{"--walk-only"};
    how.insert(how.end(), further.begin(), further.end());
    const ProgramRun run = runVeq(walkOn(file, how));
    EXPECT_NE(run.exitCode, 0);
    return run.errors.substr(0, run.errors.find('\n'));
  };
  const std::string lacks =
      " needs a whole network, and --walk-only keeps rows and neighbours alone (see veq walk "
      "--help)";
  EXPECT_EQ(error({"--choice", "weighted"}), "veq: --choice weighted" + lacks);
  EXPECT_EQ(error({"--memory", "3"}), "veq: --memory" + lacks);
  EXPECT_EQ(error({"--paths", folder.path("p.csv")}), "veq: --paths" + lacks);
  EXPECT_EQ(error({"--page", folder.path("p.html")}), "veq: --page" + lacks);
  EXPECT_EQ(error({"--output", folder.path("o.xnet")}), "veq: --output" + lacks);
  EXPECT_EQ(error({"--start", "5"}),
            "veq: " + file + ": rows and neighbours take 104 bytes, the walk 120 bytes");
  const ProgramRun names =
      runVeq(walkOn(folder.write("named", "Ada Bob\nBob Eve\n"), {"--walk-only"}));
  EXPECT_EQ(names.exitCode, 1);
  EXPECT_EQ(names.errors, "veq: " + folder.path("named") +
                              ":1: \"Ada Bob\" is not two integers, with or without a weight: a "
                              "walk-only network has neither names nor columns\n");
  EXPECT_EQ(
      runVeq(walkOn(folder.write("far", "0 3999999999\n"), {"--walk-only"})).errors,
      "veq: " + folder.path("far") +
          ":1: 4000000000 vertices, more than the 1000832 that a text of 13 bytes may have\n");
}

}  // namespace
}  // namespace veq::test::walk_only_test
