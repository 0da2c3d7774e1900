#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <numeric>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/literal_walk.hpp"
#include "tests/tools/program.hpp"

namespace veq::test::walk_test {
namespace {

const std::string kKarate = VEQ_DATA "/karate.xnet";
const std::string kLesMis = VEQ_DATA "/lesmis.xnet";

/// A file of data/, read by other means than the library's.
struct NamedNetwork {
  LiteralNetwork edges;
  std::vector<std::string> names;

  explicit NamedNetwork(const std::string& path) {
    std::ifstream stream(path);
    std::string line;
    std::getline(stream, line);
    while (std::getline(stream, line) && line[0] == '"') {
      names.push_back(line.substr(1, line.size() - 2));
    }
    edges.n = names.size();
    while (std::getline(stream, line) && line[0] != '#') {
      std::istringstream numbers(line);
      numbers >> edges.from.emplace_back() >> edges.to.emplace_back();
    }
  }
};

/// A walk of a literal group, its starts included in the paths.
struct NamedWalk {
  std::vector<std::vector<std::uint64_t>> paths;
  std::vector<std::int64_t> visits;

  NamedWalk(const NamedNetwork& network, const std::vector<std::uint64_t>& starts,
            std::uint64_t steps, std::uint32_t seed, float untilReach = -1) {
    LiteralGroup group(network.edges, starts);
    LiteralRandom random(seed);
    paths = group.walk(random, steps, untilReach);
    for (std::size_t a = 0; a < starts.size(); ++a) {
      paths[a].insert(paths[a].begin(), starts[a]);
    }
    visits = group.totals;
  }
};

std::vector<std::uint64_t> inOrder(std::uint64_t agents, std::uint64_t vertices) {
  std::vector<std::uint64_t> places(agents);
  for (std::uint64_t i = 0; i < agents; ++i) places[i] = i % vertices;
  return places;
}

std::string csvOf(const NamedNetwork& network, const NamedWalk& walk) {
  std::string text = "agent,step,index,name\n";
  for (std::size_t a = 0; a < walk.paths.size(); ++a) {
    for (std::size_t s = 0; s < walk.paths[a].size(); ++s) {
      const std::uint64_t vertex = walk.paths[a][s];
      text += std::to_string(a) + "," + std::to_string(s) + "," + std::to_string(vertex) + "," +
              network.names[vertex] + "\n";
    }
  }
  return text;
}

/// The rows of the table, each without its padding: "name degree visits share degree/2m".
std::string rowsOf(const NamedNetwork& network, const NamedWalk& walk, std::size_t top) {
  const auto lists = network.edges.lists();
  std::vector<std::size_t> order(walk.visits.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&walk](std::size_t a, std::size_t b) {
    return walk.visits[a] > walk.visits[b];
  });
  const double all = std::accumulate(walk.visits.begin(), walk.visits.end(), 0.0);
  const double ends = 2 * static_cast<double>(network.edges.from.size());
  std::string rows;
  for (std::size_t i = 0; i < top; ++i) {
    const std::size_t vertex = order[i];
    char row[200];
    std::snprintf(row, sizeof row, "%s %zu %lld %.2f %% %.2f %%\n", network.names[vertex].c_str(),
                  lists[vertex].size(), static_cast<long long>(walk.visits[vertex]),
                  100 * static_cast<double>(walk.visits[vertex]) / all,
                  100 * static_cast<double>(lists[vertex].size()) / ends);
    rows += row;
  }
  return rows;
}

std::string withoutPadding(const std::string& text) {
  std::string result;
  for (const char character : text) {
    if (character != ' ' || (!result.empty() && result.back() != ' ')) result += character;
  }
  return result;
}

TEST(WalkCommand, ListsTheVisitsOfTheWalkThatTheSeedStandsFor) {
  const NamedNetwork network(kLesMis);
  ASSERT_EQ(network.names.size(), 77u);
  ASSERT_EQ(network.edges.from.size(), 254u);
  const NamedWalk walk(network, inOrder(100, 77), 50, 7);
  const auto reached = std::count_if(walk.visits.begin(), walk.visits.end(),
                                     [](std::int64_t count) { return count > 0; });
  ASSERT_EQ(reached, 77);

  const ProgramRun run =
      runVeq({"walk", kLesMis, "--agents", "100", "--steps", "50", "--seed", "7", "--top", "77"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "");  // no progress where standard error is no terminal
  EXPECT_EQ(withoutPadding(run.output), "network " + kLesMis +
                                            ": 77 vertices, 254 edges, undirected\n"
                                            "agents 100, agent i starting at vertex i\n"
                                            "memory none\n"
                                            "walk 50 steps each, choice published, seed 7\n"
                                            "reached 77 of 77 vertices (100.00 %)\n"
                                            "\n"
                                            "vertex degree visits share degree/2m\n" +
                                            rowsOf(network, walk, 77));
}

// 600,000 moves, which threads share.
TEST(WalkCommand, PrintsTheSameForAnyNumberOfThreads) {
  const std::vector<std::string> walk = {"walk",   kLesMis, "--agents", "200", "--steps",  "3000",
                                         "--seed", "7",     "--top",    "77",  "--threads"};
  std::vector<std::string> outputs;
  for (const std::string threads : {"1", "2", "5", "0"}) {
    std::vector<std::string> arguments = walk;
    arguments.push_back(threads);
    const ProgramRun run = runVeq(arguments);
    EXPECT_EQ(run.exitCode, 0);
    outputs.push_back(run.output);
  }
  EXPECT_NE(outputs[0].find("reached"), std::string::npos);
  for (const std::string& output : outputs) EXPECT_EQ(output, outputs[0]);
}

TEST(WalkCommand, StopsWithTheStepInWhichTheTargetIsMet) {
  const NamedNetwork network(kKarate);
  // 33 / 34 is below 0.98, and 32 / 34 below 0.95: all but one vertex are needed for the latter.
  for (const auto& [target, value, reached] :
       {std::tuple(std::string("0.98"), 0.98f, "34 of 34 vertices (100.00 %)\n"),
        std::tuple(std::string("0.95"), 0.95f, "33 of 34 vertices (97.06 %)\n")}) {
    const NamedWalk walk(network, {33, 0, 33}, 5000, 1, value);
    const std::string steps = std::to_string(walk.paths[0].size() - 1);
    ASSERT_LT(walk.paths[0].size(), 5000u);
    const ProgramRun run = runVeq({"walk", kKarate, "--agents", "3", "--steps", "5000", "--seed",
                                   "0", "--start", "34,1", "--until-reach", target, "--top", "0"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "network  " + kKarate +
                              ": 34 vertices, 78 edges, undirected\n"
                              "agents   3, starting at 34,1\n"
                              "memory   none\n"
                              "walk     " +
                              steps + " of at most 5000 steps each, until reaching " +
                              target.substr(2) +
                              ".00 %, choice published, seed 0\n"
                              "reached  " +
                              reached);
  }
}

TEST(WalkCommand, SaysWhenTheTargetWasNotMet) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("pair.xnet", "#vertices 3\n#edges\n0 1\n");
  const ProgramRun run = runVeq(
      {"walk", file, "--agents", "1", "--steps", "4", "--until-reach", "0.9", "--seed", "5"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.output,
            "network  " + file +
                ": 3 vertices, 1 edge, undirected\n"
                "agents   1, agent i starting at vertex i\n"
                "memory   none\n"
                "walk     4 of at most 4 steps, until reaching 90.00 %, choice published, seed 5\n"
                "reached  2 of 3 vertices (66.67 %), less than was asked for\n"
                "\n"
                "vertex  degree  visits    share  degree/2m\n"
                "0            1       2  50.00 %    50.00 %\n"
                "1            1       2  50.00 %    50.00 %\n"
                "2            0       0   0.00 %     0.00 %\n");
}

TEST(WalkCommand, DirectedNetworksListBothDegreesAndNoLongRunShare) {
  const TemporaryDirectory directory;
  const std::string file = directory.write(
      "d.xnet", "#vertices 3\n\"\xc3\xa9t\xc3\xa9\"\n\"b\"\n\"c\"\n#edges directed\n0 1\n1 2\n");
  const ProgramRun run =
      runVeq({"walk", file, "--agents", "1", "--steps", "9", "--seed", "1", "--top", "2"});
  EXPECT_EQ(run.output, "network  " + file +
                            ": 3 vertices, 2 edges, directed\n"
                            "agents   1, agent i starting at vertex i\n"
                            "memory   none\n"
                            "walk     9 steps, choice published, seed 1\n"
                            "reached  2 of 3 vertices (66.67 %)\n"
                            "\n"
                            "vertex  out-degree  in-degree  visits    share\n"
                            "b                1          1       1  50.00 %\n"
                            "c                0          1       1  50.00 %\n");
}

TEST(WalkCommand, WithoutEdgesNobodyMovesAndThereAreNoShares) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("one.xnet", "#vertices 1\n");
  const ProgramRun run = runVeq({"walk", file, "--agents", "2", "--steps", "3", "--seed", "1"});
  EXPECT_EQ(run.output, "network  " + file +
                            ": 1 vertex, 0 edges, undirected\n"
                            "agents   2, agent i starting at vertex i\n"
                            "memory   none\n"
                            "walk     3 steps each, choice published, seed 1\n"
                            "reached  0 of 1 vertex (0.00 %)\n"
                            "\n"
                            "vertex  degree  visits  share  degree/2m\n"
                            "0            0       0      -          -\n");
}

TEST(WalkCommand, StartsByNameThenByIndexCyclically) {
  const NamedNetwork network(kLesMis);
  const TemporaryDirectory directory;
  const std::string paths = directory.path("paths.csv");
  // Valjean is vertex 10 and Javert 27; 76 is no name, so it is an index.
  const ProgramRun run = runVeq({"walk", kLesMis, "--agents", "5", "--steps", "20", "--seed", "3",
                                 "--start", "Valjean,76,Javert", "--paths", paths});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(contentsOf(paths), csvOf(network, NamedWalk(network, {10, 76, 27, 10, 76}, 20, 3)));
}

TEST(WalkCommand, NumbersThatAreNamesAreNames) {
  const NamedNetwork network(kKarate);
  const TemporaryDirectory directory;
  const std::string paths = directory.path("paths.csv");
  // The member called 1 is vertex 0; nobody is called 0, so that 0 is an index.
  runVeq({"walk", kKarate, "--agents", "2", "--steps", "10", "--seed", "3", "--start", "1,0",
          "--paths", paths});
  EXPECT_EQ(contentsOf(paths), csvOf(network, NamedWalk(network, {0, 0}, 10, 3)));
}

TEST(WalkCommand, PathsShowWhereAStuckAgentStands) {
  const TemporaryDirectory directory;
  const std::string file = directory.write(
      "d.xnet",
      "#vertices 3\n\"a,b\"\n\"say <quote>x<quote>\"\n\"c\"\n#edges directed\n0 1\n1 2\n");
  const std::string paths = directory.path("paths.csv");
  const ProgramRun run = runVeq({"walk", file, "--agents", "1", "--steps", "4", "--paths", paths});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(contentsOf(paths),
            "agent,step,index,name\n"
            "0,0,0,\"a,b\"\n"
            "0,1,1,\"say \"\"x\"\"\"\n"
            "0,2,2,c\n"
            "0,3,2,c\n"
            "0,4,2,c\n");
}

TEST(WalkCommand, PathsNeedNoNumberOfSteps) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("pair.xnet", "#vertices 2\n\"a\"\n\"b\"\n#edges\n0 1\n");
  const std::string paths = directory.path("paths.csv");
  // There is one way from a, and one back, with which both were arrived at.
  const ProgramRun run =
      runVeq({"walk", file, "--agents", "1", "--until-reach", "1", "--paths", paths});
  EXPECT_EQ(run.exitCode, 0) << run.errors;
  EXPECT_EQ(contentsOf(paths),
            "agent,step,index,name\n"
            "0,0,0,a\n"
            "0,1,1,b\n"
            "0,2,0,a\n");
}

TEST(WalkCommand, OutputIsTheNetworkWithItsVisits) {
  const NamedNetwork network(kKarate);
  const NamedWalk walk(network, inOrder(40, 34), 25, 11);
  const TemporaryDirectory directory;
  const std::string output = directory.path("walked.xnet");
  const ProgramRun run = runVeq(
      {"walk", kKarate, "--agents", "40", "--steps", "25", "--seed", "11", "--output", output});
  EXPECT_EQ(run.exitCode, 0);
  std::string expected = contentsOf(kKarate) + "#v \"Visits\" n\n";
  for (const std::int64_t count : walk.visits) expected += std::to_string(count) + "\n";
  EXPECT_EQ(contentsOf(output), expected);
}

TEST(WalkCommand, StartsMayStandInAFileOrHaveCommasInTheirNames) {
  const TemporaryDirectory directory;
  const std::string file = directory.write(
      "n.xnet", "#vertices 3\n\"a, b\"\n\"c\"\n\"say <quote>d<quote>\"\n#edges\n0 1\n1 2\n");
  const std::string paths = directory.path("paths.csv");
  // The first column of the lines of step 0: agent, 0, index, name.
  const auto startsOf = [&](const std::string& value) {
    const ProgramRun run = runVeq({"walk", file, "--agents", "3", "--steps", "1", "--start", value,
                                   "--paths", paths, "--top", "0"});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    std::string starts;
    std::istringstream lines(contentsOf(paths));
    for (std::string line; std::getline(lines, line);) {
      if (line.substr(1, 3) == ",0,") starts += line[4];
    }
    return starts;
  };
  EXPECT_EQ(startsOf("a, b"), "000");                 // a name alone needs no quotes
  EXPECT_EQ(startsOf("\"a, b\",c"), "010");           // in a list it does
  EXPECT_EQ(startsOf("2,\"say \"\"d\"\"\""), "222");  // quotes inside are doubled
  EXPECT_EQ(startsOf(directory.write("starts", "c\r\na, b\r\nsay \"d\"")), "102");
  directory.write("c", "0\n");  // a vertex of that name counts, not the file
  const ProgramRun run = runShell("cd '" + directory.path("") +
                                  "' && '" VEQ_PROGRAM
                                  "' walk n.xnet --agents 1 --steps 1 --start c --paths p --top 0");
  EXPECT_EQ(contentsOf(directory.path("p")).substr(22, 8), "0,0,1,c\n");
}

TEST(WalkCommand, AVisitsPropertyOfTheUsersIsKeptUnlessForced) {
  const TemporaryDirectory directory;
  const std::string file =
      directory.write("n.xnet", "#vertices 2\n#edges\n0 1\n#v \"Visits\" n\n7\n8\n");
  const std::string output = directory.path("out.xnet");
  std::vector<std::string> arguments{"walk", file,    "--agents", "1",        "--steps",
                                     "4",    "--top", "0",        "--output", output};
  ProgramRun run = runVeq(arguments);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors, "veq: " + file +
                            ": has a vertex property \"Visits\", which --output would replace; "
                            "--force does so\n");
  EXPECT_EQ(directory.names(), std::vector<std::string>{"n.xnet"});
  arguments.emplace_back("--force");
  EXPECT_EQ(runVeq(arguments).exitCode, 0);
  EXPECT_EQ(contentsOf(output),
            "#vertices 2 nonweighted\n#edges nonweighted undirected\n0 1\n#v \"Visits\" n\n2\n2\n");
}

TEST(WalkCommand, SaysEverythingThatIsNeededToRepeatIt) {
  const ProgramRun run =
      runVeq({"walk", kKarate, "--agents", "2", "--steps", "30", "--seed", "9", "--memory", "5",
              "--errors", "0.25", "--agents-network", kLesMis, "--start", "1,34", "--top", "0"});
  const std::string beforeReach = run.output.substr(0, run.output.find("reached"));
  EXPECT_EQ(beforeReach, "network  " + kKarate +
                             ": 34 vertices, 78 edges, undirected\n"
                             "agents   2, starting at 1,34\n"
                             "memory   5 visits, errors 0.25, agents linked as in " +
                             kLesMis + "\nwalk     30 steps each, choice published, seed 9\n");
}

TEST(WalkCommand, AnswersOtherPrograms) {
  const TemporaryDirectory directory;
  // One way only: from 0 to 1 and from there to 0.
  const std::string file = directory.write("n.xnet", "#vertices 2\n#edges directed\n0 1\n1 0\n");
  const std::vector<std::string> walk{"walk", file,     "--agents", "1",       "--steps",
                                      "3",    "--seed", "1",        "--format"};
  std::vector<std::string> csv = walk;
  csv.emplace_back("csv");
  ProgramRun run = runVeq(csv);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.output,
            "index,name,outDegree,inDegree,visits,share\n"
            "1,1,1,1,2,0.6666666666666666\n"
            "0,0,1,1,1,0.3333333333333333\n");
  EXPECT_EQ(run.errors, "network  " + file +
                            ": 2 vertices, 2 edges, directed\n"
                            "agents   1, agent i starting at vertex i\n"
                            "memory   none\n"
                            "walk     3 steps, choice published, seed 1\n"
                            "reached  2 of 2 vertices (100.00 %)\n");
  std::vector<std::string> json = walk;
  json.insert(json.end(), {"json", "--top", "1"});
  run = runVeq(json);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output,
            "{\n"
            "  \"network\": \"" +
                file +
                "\",\n"
                "  \"vertices\": 2,\n"
                "  \"edges\": 2,\n"
                "  \"directed\": true,\n"
                "  \"agents\": 1,\n"
                "  \"starts\": null,\n"
                "  \"memory\": null,\n"
                "  \"errors\": 0,\n"
                "  \"agentsNetwork\": null,\n"
                "  \"stepsAsked\": 3,\n"
                "  \"steps\": 3,\n"
                "  \"untilReach\": null,\n"
                "  \"interrupted\": false,\n"
                "  \"choice\": \"published\",\n"
                "  \"restart\": 0,\n"
                "  \"seed\": 1,\n"
                "  \"substream\": null,\n"
                "  \"reached\": 2,\n"
                "  \"visits\": [\n"
                "    {\n"
                "      \"index\": 1,\n"
                "      \"name\": \"1\",\n"
                "      \"outDegree\": 1,\n"
                "      \"inDegree\": 1,\n"
                "      \"visits\": 2,\n"
                "      \"share\": 0.6666666666666666\n"
                "    }\n"
                "  ]\n"
                "}\n");
}

TEST(WalkCommand, PathsToStandardOutputPutTheTableAside) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", "#vertices 2\n#edges\n0 1\n");
  const ProgramRun run = runVeq(
      {"walk", file, "--agents", "1", "--steps", "2", "--seed", "1", "--paths", "-", "--top", "0"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.output, "agent,step,index,name\n0,0,0,0\n0,1,1,1\n0,2,0,0\n");
  EXPECT_EQ(run.errors.substr(0, 9), "network  ");
}

/// The lines behind the first one of a walk that needs no luck, on a directed ring of three.
std::string onRing(const std::vector<std::string>& more) {
  const TemporaryDirectory directory;
  std::vector<std::string> arguments{
      "walk",     directory.write("ring.xnet", "#vertices 3\n#edges directed\n0 1\n1 2\n2 0\n"),
      "--agents", "1",
      "--seed",   "5"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const ProgramRun run = runVeq(arguments);
  EXPECT_EQ(run.exitCode, 0) << run.errors;
  return run.output.substr(run.output.find('\n') + 1);
}

TEST(WalkCommand, NeedsNoNumberOfStepsWhereItHasATarget) {
  // Arrivals at 1, 2 and 0.
  EXPECT_EQ(onRing({"--until-reach", "1", "--top", "0"}),
            "agents   1, agent i starting at vertex i\n"
            "memory   none\n"
            "walk     3 steps, until reaching 100.00 %, choice published, seed 5\n"
            "reached  3 of 3 vertices (100.00 %)\n");
}

TEST(WalkCommand, WritesHowManyVerticesWereReachedByWhen) {
  const TemporaryDirectory directory;
  const std::string coverage = directory.path("coverage.csv");
  onRing({"--steps", "9", "--coverage", coverage});
  EXPECT_EQ(contentsOf(coverage), "step,vertices\n1,1\n2,2\n3,3\n");
}

TEST(WalkCommand, GoesBackToTheStartByChance) {
  // Always: each step is an arrival at vertex 1.
  EXPECT_EQ(onRing({"--steps", "4", "--start", "1", "--restart", "1", "--top", "1"}),
            "agents   1, starting at 1\n"
            "memory   none\n"
            "walk     4 steps, choice published, restart 1, seed 5\n"
            "reached  1 of 3 vertices (33.33 %)\n"
            "\n"
            "vertex  out-degree  in-degree  visits     share\n"
            "1                1          1       4  100.00 %\n");
}

TEST(WalkCommand, ChoosesByWeightsWhereAsked) {
  const TemporaryDirectory directory;
  // Of three ways from vertex 0 one alone has a weight.
  const std::string file = directory.write("n.xnet",
                                           "#vertices 4\n#edges weighted directed\n0 1 0\n0 2 7\n"
                                           "0 3 0\n1 0 1\n2 0 1\n3 0 1\n");
  const ProgramRun run = runVeq({"walk", file, "--agents", "1", "--steps", "100", "--seed", "3",
                                 "--choice", "weighted", "--format", "csv"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.output,
            "index,name,outDegree,inDegree,visits,share\n"
            "0,0,3,3,50,0.5\n"
            "2,2,1,1,50,0.5\n"
            "1,1,1,1,0,0\n"
            "3,3,1,1,0,0\n");
  EXPECT_NE(run.errors.find(", choice weighted, seed 3\n"), std::string::npos);

  const std::string bad = directory.write("bad.xnet", "#vertices 2\n#edges weighted\n0 1 -1\n");
  const ProgramRun refused =
      runVeq({"walk", bad, "--agents", "1", "--steps", "1", "--choice", "weighted"});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.errors, "veq: " + bad + ": edge 0: weight -1\n");
}

TEST(WalkCommand, DrawsStartsWhereAsked) {
  const TemporaryDirectory directory;
  // Vertex 2 has no edge, so that nobody starts there by degree; each alike somebody does, but for
  // a chance of (2 / 3)^200.
  const std::string file = directory.write("n.xnet", "#vertices 3\n#edges\n0 1\n");
  const auto startsAt2 = [&](const std::string& start) {
    const ProgramRun run = runVeq({"walk", file, "--agents", "200", "--steps", "1", "--seed", "1",
                                   "--start", start, "--paths", "-", "--top", "0"});
    EXPECT_EQ(run.exitCode, 0);
    return run.output.find(",0,2,2\n") != std::string::npos;
  };
  EXPECT_FALSE(startsAt2("degree"));
  EXPECT_TRUE(startsAt2("uniform"));
}

TEST(WalkCommand, SubstreamsOfOneSeedAreWalksOfTheirOwn) {
  const auto visitsWith = [](const std::vector<std::string>& more) {
    std::vector<std::string> arguments{"walk", kLesMis,  "--agents", "20",       "--steps",
                                       "50",   "--seed", "4",        "--format", "csv"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runVeq(arguments).output;
  };
  const std::string plain = visitsWith({});
  EXPECT_EQ(visitsWith({"--substream", "0"}), plain);
  const std::string third = visitsWith({"--substream", "3"});
  EXPECT_NE(third, plain);
  EXPECT_EQ(visitsWith({"--substream", "3"}), third);
}

TEST(WalkCommand, TellsTheSeedThatItChoseSoThatTheWalkCanBeRepeated) {
  const ProgramRun first = runVeq({"walk", kKarate, "--agents", "2", "--steps", "30"});
  const std::string before = "seed ";
  const std::size_t at = first.output.find(before) + before.size();
  const std::string seed = first.output.substr(at, first.output.find('\n', at) - at);
  const ProgramRun second =
      runVeq({"walk", kKarate, "--agents", "2", "--steps", "30", "--seed", seed});
  EXPECT_EQ(second.exitCode, 0);
  EXPECT_EQ(first.output, second.output);
}

}  // namespace
}  // namespace veq::test::walk_test
