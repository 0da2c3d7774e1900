#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test::errors_test {
namespace {

std::string errorOf(const std::vector<std::string>& arguments, int expectedCode) {
  const ProgramRun run = runVeq(arguments);
  EXPECT_EQ(run.exitCode, expectedCode);
  EXPECT_EQ(run.output, "");
  return run.errors;
}

TEST(ProgramErrors, WhyAFileCannotBeReadIsToldInTheSystemsWords) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", "");
  const std::string loop = directory.path("loop.xnet");
  std::filesystem::create_symlink(loop, loop);
  const std::string longName = directory.path(std::string(300, 'n') + ".xnet");
  for (const auto& [path, reason] :
       {std::pair(directory.path("none.xnet"), "No such file or directory"),
        std::pair(directory.path(""), "Is a directory"),
        std::pair(file + "/n.xnet", "Not a directory"),
        std::pair(loop, "Too many levels of symbolic links"),
        std::pair(longName, "File name too long")}) {
    EXPECT_EQ(errorOf({"info", path}, 1), "veq: " + path + ": " + reason + "\n");
  }
}

TEST(ProgramErrors, AFileThatMayNotBeReadIsNamedAsSuch) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", "");
  std::filesystem::permissions(file, std::filesystem::perms::none);
  std::filesystem::permissions(directory.path(""), std::filesystem::perms(0755));
  // Whoever may do everything is refused nothing.
  const std::string somebody =
      geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
  ProgramRun run = runShell(somebody + "'" VEQ_PROGRAM "' info '" + file + "'");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: " + file + ": Permission denied\n");
  run = runShell(somebody + "'" VEQ_PROGRAM "' convert '" VEQ_DATA "/karate.xnet' '" + file + "'");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: " + file + ": Permission denied\n");
}

TEST(ProgramErrors, AFileIsWhatItHoldsWhateverItsSuffix) {
  const TemporaryDirectory directory;
  for (const std::string name : {"list.dat", "list", "list.xnet"}) {
    const ProgramRun run = runVeq({"info", directory.write(name, "a b\nb c\n")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.output.find("\nvertices            3\nedges               2\n"),
              std::string::npos);
  }
  const std::string file = directory.write("word", "word\n");
  EXPECT_EQ(errorOf({"info", file}, 1), "veq: " + file + ":1: no format that is known\n");
}

TEST(ProgramErrors, AnOutputWithoutAKnownSuffixIsRefusedBeforeAnythingIsDone) {
  const TemporaryDirectory directory;
  const std::string file = directory.path("n.unknown");
  const std::string refusal =
      "veq: " + file +
      ": has no suffix that is known (such as .xnet, .net, .edges, .mtx, .gml, .graphml, .veqa and "
      ".csv); --to FORMAT names the format\n";
  const std::string karate = VEQ_DATA "/karate.xnet";
  EXPECT_EQ(errorOf({"convert", karate, file}, 1), refusal);
  EXPECT_EQ(errorOf({"walk", karate, "--agents", "1", "--steps", "1", "--output", file}, 1),
            refusal);
  EXPECT_EQ(errorOf({"components", karate, "--largest", file}, 1), refusal);
  EXPECT_EQ(errorOf({"generate", "random", "--vertices", "2", "--degree", "1", file}, 1), refusal);
  EXPECT_TRUE(directory.names().empty());
}

TEST(ProgramErrors, StandardOutputNeedsAFormat) {
  EXPECT_EQ(errorOf({"convert", VEQ_DATA "/karate.xnet", "-"}, 1),
            "veq: standard output: has no suffix; --to FORMAT names the format\n");
  EXPECT_EQ(errorOf({"info", "-"}, 1), "veq: standard input:1: the file is empty\n");
  EXPECT_EQ(errorOf({"info", "--from", "word", "-"}, 2),
            "veq: --from needs xnet, pajek, list, matrix-market, gml, graphml or archive, not word "
            "(see veq info --help)\n");
}

TEST(ProgramErrors, TextThatIsNotUtf8IsTakenForAnotherEncodingWhichIsSaid) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", "#vertices 1\n\"caf\xe9\"\n");
  const ProgramRun run = runVeq({"info", file});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, file + ":1: not UTF-8: the text is taken for ISO-8859-1\n");
  EXPECT_NE(run.output.find("\nvertex property     Name: text, as caf\xc3\xa9\n"),
            std::string::npos);
  EXPECT_EQ(errorOf({"info", "--strict",
                     directory.write("m.net", "\xef\xbb\xbf*Vertices 1\n1 \"\xe9\"\n")},
                    1),
            "veq: " + directory.path("m.net") +
                ":1: what follows the byte-order mark is not what the mark says: the text is taken "
                "for ISO-8859-1\n");
}

TEST(ProgramErrors, WhatIsWrongInAFileIsToldWithItsLine) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("bad.xnet", "#edges\n0 1\n#vertices x\n");
  EXPECT_EQ(errorOf({"info", file}, 1),
            "veq: " + file + ":3: no number of vertices, or an empty name or key\n");
}

TEST(ProgramErrors, AFileNameCannotBreakTheLine) {
  EXPECT_EQ(errorOf({"info", "a\nb\x1b[2J"}, 1), "veq: a?b?[2J: No such file or directory\n");
}

TEST(ProgramErrors, WrongUsageSaysWhatAndWhereToRead) {
  EXPECT_EQ(errorOf({}, 2),
            "veq: a command is missing: info, check, walk, convert, generate, components, page or "
            "ensemble (see veq --help)\n");
  EXPECT_EQ(errorOf({"dance"}, 2),
            "veq: there is no command \"dance\": there are info, check, walk, convert, generate, "
            "components, page and ensemble (see veq --help)\n");
  EXPECT_EQ(errorOf({"info"}, 2), "veq: FILE is missing (see veq info --help)\n");
  EXPECT_EQ(errorOf({"info", ""}, 2), "veq: FILE is empty (see veq info --help)\n");
  EXPECT_EQ(errorOf({"info", "a", "b"}, 2),
            "veq: \"b\" is one argument too many (see veq info --help)\n");
  EXPECT_EQ(errorOf({"info", "a", "--loud"}, 2),
            "veq: there is no option --loud (see veq info --help)\n");
  EXPECT_EQ(errorOf({"info", "--raw=yes", "a"}, 2),
            "veq: --raw takes no value (see veq info --help)\n");
  EXPECT_EQ(
      errorOf({"generate", "foo"}, 2),
      "veq: there is no model \"foo\": there are barabasi, random, gnp, gnm, barabasi-albert, "
      "configuration, watts-strogatz, lattice, geometric, blocks and rewired (see veq generate "
      "--help)\n");
  EXPECT_EQ(errorOf({"help", "dance"}, 2),
            "veq: there is no command \"dance\": there are info, check, walk, convert, generate, "
            "components, page and ensemble (see veq --help)\n");
}

TEST(ProgramErrors, EverythingThatIsMissingIsToldAtOnce) {
  EXPECT_EQ(
      errorOf({"walk"}, 2),
      "veq: FILE is missing; --agents needs a number; --steps or --until-reach needs a number "
      "(see veq walk --help)\n");
  EXPECT_EQ(errorOf({"walk", "a", "--until-reach", "1"}, 2),
            "veq: --agents needs a number (see veq walk --help)\n");
  EXPECT_EQ(errorOf({"walk", "a", "--steps", "none"}, 2),
            "veq: --agents needs a number (see veq walk --help)\n");
  EXPECT_EQ(errorOf({"generate", "random", "--degree", "2"}, 2),
            "veq: --vertices needs a number; OUT is missing (see veq generate random --help)\n");
}

TEST(ProgramErrors, AnOptionWithoutItsValueSaysWhatItNeeds) {
  EXPECT_EQ(errorOf({"walk", "a", "--agents"}, 2),
            "veq: --agents needs a number (see veq walk --help)\n");
  EXPECT_EQ(errorOf({"walk", "a", "--paths"}, 2),
            "veq: --paths needs a file (see veq walk --help)\n");
  EXPECT_EQ(errorOf({"info", "a", "--format"}, 2),
            "veq: --format needs table, csv or json (see veq info --help)\n");
  EXPECT_EQ(errorOf({"walk", "a", "--start=", "--agents", "2", "--steps", "1"}, 2),
            "veq: --start has no value (see veq --help)\n");
  EXPECT_EQ(errorOf({"walk", "a", "--agents", "2", "--agents", "3", "--steps", "1"}, 2),
            "veq: --agents is given twice (see veq walk --help)\n");
}

TEST(ProgramErrors, ASlipOfTheKeyboardIsGuessed) {
  const auto guess = [](const std::vector<std::string>& arguments) {
    const std::string error = errorOf(arguments, 2);
    const std::size_t at = error.find("did you mean ");
    return at == std::string::npos ? std::string() : error.substr(at, error.find('?') - at);
  };
  EXPECT_EQ(errorOf({"wlak"}, 2),
            "veq: there is no command \"wlak\", did you mean walk? (see veq --help)\n");
  EXPECT_EQ(guess({"comp"}), "did you mean components");
  EXPECT_EQ(guess({"generate", "barabassi"}), "did you mean barabasi");
  EXPECT_EQ(errorOf({"walk", "a", "--agent", "5"}, 2),
            "veq: there is no option --agent, did you mean --agents? (see veq walk --help)\n");
  EXPECT_EQ(guess({"walk", "a", "--until=0.5"}), "did you mean --until-reach");
  EXPECT_EQ(guess({"walk", "a", "--sede", "1"}), "did you mean --seed");
  EXPECT_EQ(guess({"--versoin"}), "did you mean --version");
  EXPECT_EQ(guess({"info", "a", "--" + std::string(100000, 'x')}), "");
}

TEST(ProgramErrors, WithoutPythonOrItsPackageAnEnsembleSaysWhatToInstall) {
  const ProgramRun without = runShell("VEQ_PYTHON=/no/python '" VEQ_PROGRAM "' ensemble a.toml");
  EXPECT_EQ(without.exitCode, 1);
  EXPECT_EQ(without.output, "");
  EXPECT_EQ(without.errors,
            "veq: /no/python: No such file or directory, and ensembles are run by Python and its "
            "package veq: install it with \"pip install .\" in the source tree of veq\n");
  if (runShell("command -v python3").exitCode != 0) GTEST_SKIP() << "this system has no python3";
  // Without its packages, wherever they are.
  const TemporaryDirectory directory;
  const std::string bare = directory.write("python", "#!/bin/sh\nexec python3 -I -S \"$@\"\n");
  std::filesystem::permissions(bare, std::filesystem::perms::owner_all);
  const ProgramRun run = runShell("VEQ_PYTHON='" + bare + "' '" VEQ_PROGRAM "' ensemble a.toml");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.output, "");
  const std::string begin = "veq: ensembles are run by the Python package veq, which /";
  EXPECT_EQ(run.errors.substr(0, begin.size()), begin);
  EXPECT_NE(run.errors.find("does not have (No module named 'veq'): install it with \""),
            std::string::npos)
      << run.errors;
}

TEST(ProgramErrors, AnEnsembleIsHandedToPythonWithItsOptions) {
  const TemporaryDirectory directory;
  const std::string python = directory.write("python", "#!/bin/sh\nshift 2; echo \"$@\"\nexit 7\n");
  std::filesystem::permissions(python, std::filesystem::perms::owner_all);
  const ProgramRun run = runShell("VEQ_PYTHON='" + python +
                                  "' '" VEQ_PROGRAM
                                  "' ensemble --quiet --workers 0 a.toml --engine processes "
                                  "--output b.csv --checkpoint kept");
  EXPECT_EQ(run.exitCode, 7);
  EXPECT_EQ(run.output,
            "a.toml --engine processes --checkpoint kept --output b.csv --workers 0 --quiet\n");
}

TEST(ProgramErrors, OutputThatCannotBeWrittenIsAFailure) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this system has no /dev/full";
  const ProgramRun run = runShell("'" VEQ_PROGRAM "' info '" VEQ_DATA "/karate.xnet' >/dev/full");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: standard output: No space left on device\n");
}

TEST(ProgramHelp, TeachesEachCommandByExample) {
  for (const std::string command :
       {"info", "walk", "convert", "generate", "components", "ensemble"}) {
    const ProgramRun run = runVeq({command, "--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_NE(run.output.find("\nExamples:\n  veq " + command + " "), std::string::npos);
  }
}

TEST(ProgramHelp, IsAlsoACommand) {
  EXPECT_EQ(runVeq({"help"}).output, runVeq({"--help"}).output);
  EXPECT_EQ(runVeq({"help", "walk"}).output, runVeq({"walk", "--help"}).output);
  const ProgramRun run = runVeq({"help", "generate", "random"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output, runVeq({"generate", "random", "--help"}).output);
}

TEST(ProgramHelp, VersionIsOneLine) {
  for (const std::string option : {"--version", "-V"}) {
    const ProgramRun run = runVeq({option});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "veq 0.9.0\n");
  }
}

}  // namespace
}  // namespace veq::test::errors_test
