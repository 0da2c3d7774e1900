// veq page, and veq walk --page.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/page_reader.hpp"
#include "tests/tools/program.hpp"

namespace veq::test::page_test {
namespace {

const std::string kKarate = VEQ_DATA "/karate.xnet";
const std::string kLesmis = VEQ_DATA "/lesmis.xnet";

std::string metaOf(const std::string& file) {
  return PageSections(blockOf(contentsOf(file))).of.at(1)[0];
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(PageCommand, WritesAPage) {
  const TemporaryDirectory directory;
  const std::string file = directory.path("it's.html");
  const ProgramRun run = runVeq({"page", kLesmis, file, "--title", "<b>", "--layout", "circle",
                                 "--color", "degree", "--size", "strength"});
  EXPECT_EQ(run.exitCode, 0) << run.errors;
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors, "");
  EXPECT_TRUE(contains(contentsOf(file), "<title>&lt;b&gt;</title>"));
  const std::string meta = metaOf(file);
  EXPECT_TRUE(contains(meta, R"("title":"<b>")"));
  EXPECT_TRUE(contains(meta, R"("n":77,"m":254,"directed":false,"edgeWeighted":true)"));
  EXPECT_TRUE(contains(meta, R"("layout":"circle","columns":[])"));
  EXPECT_TRUE(contains(meta, R"("color":{"by":"degree"},"size":{"by":"strength"})"));
  EXPECT_TRUE(contains(meta, R"it(it'\\''s.html' --title '<b>' --layout circle --color degree)it"));
}

TEST(PageCommand, IsCalledAsItsFile) {
  const TemporaryDirectory directory;
  EXPECT_EQ(runVeq({"page", kKarate, directory.path("a.html")}).exitCode, 0);
  EXPECT_TRUE(contains(metaOf(directory.path("a.html")), R"("title":"karate.xnet")"));
  const ProgramRun piped = runShell("'" VEQ_PROGRAM "' page - - < '" + kKarate + "'");
  EXPECT_EQ(piped.exitCode, 0);
  EXPECT_TRUE(contains(piped.output, "<title>A network</title>"));
}

TEST(PageCommand, WritesAPictureInsteadOrAsWell) {
  const TemporaryDirectory directory;
  EXPECT_EQ(runVeq({"page", kKarate, "--svg", directory.path("a.svg")}).exitCode, 0);
  EXPECT_EQ(directory.names(), (std::vector<std::string>{"a.svg"}));
  EXPECT_EQ(contentsOf(directory.path("a.svg")).substr(0, 5), "<svg ");
  EXPECT_EQ(runVeq({"page", kKarate, directory.path("b.html"), "--svg", directory.path("b.svg")})
                .exitCode,
            0);
  EXPECT_EQ(directory.names(), (std::vector<std::string>{"a.svg", "b.html", "b.svg"}));
}

TEST(PageCommand, RefusesWhatCannotBe) {
  const TemporaryDirectory directory;
  const std::string file = directory.path("a.html");
  const auto failing = [&](const std::vector<std::string>& more, int code) {
    std::vector<std::string> arguments{"page", kKarate};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const ProgramRun run = runVeq(arguments);
    EXPECT_EQ(run.exitCode, code);
    EXPECT_EQ(run.output, "");
    return run.errors;
  };
  EXPECT_EQ(failing({}, 2), "veq: OUT or --svg is missing (see veq page --help)\n");
  EXPECT_EQ(failing({file, "--color", "Age"}, 1), "veq: " + kKarate + ": no column Age\n");
  EXPECT_EQ(failing({file, "--columns", "a,,b"}, 2),
            "veq: --columns lists an empty name (see veq page --help)\n");
  EXPECT_EQ(failing({file, "--layout", "given"}, 1), "veq: " + kKarate + ": no column Position\n");
  EXPECT_EQ(failing({file, "--layout", "round"}, 2),
            "veq: --layout needs force, given or circle, not round (see veq page --help)\n");
  EXPECT_EQ(failing({file, "--svg", file}, 2),
            "veq: OUT and --svg are one file (see veq page --help)\n");
  EXPECT_EQ(failing({directory.path("none/a.html")}, 1),
            "veq: " + directory.path("none/a.html") + ": No such file or directory\n");
  EXPECT_EQ(directory.names(), std::vector<std::string>());
}

TEST(PageCommand, RefusesWhatIsTooLarge) {
  const TemporaryDirectory directory;
  const std::string large = directory.write("large.xnet", "#vertices 200001\n#edges\n0 1\n");
  const ProgramRun page = runVeq({"page", large, directory.path("a.html")});
  EXPECT_EQ(page.exitCode, 1);
  EXPECT_EQ(page.errors, "veq: " + large +
                             ": 200001 vertices are more than a page can draw (200000): choose "
                             "some, as a component\n");
  const ProgramRun picture = runVeq({"page", large, "--svg", directory.path("a.svg")});
  EXPECT_EQ(picture.exitCode, 1);
  EXPECT_EQ(picture.errors, "veq: " + large +
                                ": 200001 vertices and 1 edges are more than a picture shows "
                                "(20000): write a page, or choose some\n");
  EXPECT_EQ(directory.names(), (std::vector<std::string>{"large.xnet"}));
}

// The page walks again what the program has told.
TEST(WalkCommand, WritesAPageThatWalksAgain) {
  for (const std::vector<std::string>& how :
       {std::vector<std::string>{"--steps", "200"},
        std::vector<std::string>{"--steps", "100", "--choice", "weighted", "--restart", "0.1"},
        std::vector<std::string>{"--until-reach", "0.9", "--start", "degree"},
        std::vector<std::string>{"--steps", "100", "--substream", "3"},
        std::vector<std::string>{"--steps", "100", "--memory", "4", "--errors", "0.2",
                                 "--agents-network", kKarate}}) {
    const TemporaryDirectory directory;
    const std::string file = directory.path("walk.html");
    std::vector<std::string> arguments{"walk",   kLesmis, "--agents", "5",   "--seed",  "7",
                                       "--page", file,    "--format", "csv", "--title", "A walk"};
    arguments.insert(arguments.end(), how.begin(), how.end());
    const ProgramRun run = runVeq(arguments);
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    const PageSections sections(blockOf(contentsOf(file)));
    const PageWalk again(sections, 77, 254, false);
    PageBytes counted = sections.at(9);
    EXPECT_EQ(again.arrivals, counted.varints(77));
    // Each line of the table is a vertex with its name and how often it was arrived at.
    PageBytes names = sections.at(4);
    for (std::uint64_t v = 0; v < 77; ++v) {
      const std::string row = "\n" + std::to_string(v) + "," + names.text() + ",";
      const std::size_t degree = run.output.find(row) + row.size();
      const std::size_t visits = run.output.find(',', degree) + 1;
      EXPECT_EQ(run.output.substr(visits, run.output.find(',', visits) - visits),
                std::to_string(again.arrivals[v]))
          << row;
    }
    EXPECT_TRUE(contains(sections.of.at(1)[0], R"("walk":{"seed":7,"substream":)"));
  }
}

TEST(WalkCommand, WritesNoPageOfTooManyMoves) {
  const TemporaryDirectory directory;
  const std::string file = directory.path("walk.html");
  const ProgramRun run = runVeq(
      {"walk", kKarate, "--agents", "5", "--steps", "1000000", "--memory", "3", "--page", file});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors, "veq: " + kKarate +
                            ": 5000000 moves of agents with memory are more than a record holds "
                            "(4000000): take fewer steps or agents\n");
  EXPECT_EQ(directory.names(), std::vector<std::string>());
}

TEST(WalkCommand, WritesNoPageThatIsTooLarge) {
  const TemporaryDirectory directory;
  const std::string large = directory.write("large.xnet", "#vertices 200001\n#edges\n0 1\n");
  const ProgramRun run = runVeq(
      {"walk", large, "--agents", "1", "--steps", "1", "--page", directory.path("walk.html")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(directory.names(), (std::vector<std::string>{"large.xnet"}));
}

TEST(WalkCommand, ShowsNothingWithoutAPage) {
  const ProgramRun run =
      runVeq({"walk", kKarate, "--agents", "1", "--steps", "1", "--layout", "circle"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.errors, "veq: --layout needs --page (see veq walk --help)\n");
}

}  // namespace
}  // namespace veq::test::page_test
