#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test {
namespace {

std::string errorOf(const std::vector<std::string>& arguments, int expectedCode) {
  const ProgramRun run = runVeq(arguments);
  EXPECT_EQ(run.exitCode, expectedCode);
  EXPECT_EQ(run.output, "");
  return run.errors;
}

TEST(ProgramErrors, AMissingFileCannotBeOpened) {
  EXPECT_EQ(errorOf({"info", "no/such.xnet"}, 1), "veq: no/such.xnet: cannot be opened\n");
}

TEST(ProgramErrors, ADirectoryIsNoFile) {
  const TemporaryDirectory directory;
  EXPECT_EQ(errorOf({"info", directory.path("")}, 1),
            "veq: " + directory.path("") + ": is a directory\n");
}

TEST(ProgramErrors, TextThatIsNotUtf8IsNamedAsSuch) {
  const TemporaryDirectory directory;
  for (const char* const bytes : {
           "#vertices 1\n\"caf\xe9\"\n",  // ISO-8859-1
           "\xff\xfe#",                   // UTF-16
           "\xc0\xaf",                    // a slash in two bytes
           "\xe0\x9f\xbf",                // three bytes where two are enough
           "\xed\xa0\x80",                // a surrogate
           "\xf0\x8f\xbf\xbf",            // four bytes where three are enough
           "\xf4\x90\x80\x80",            // beyond the last character
           "\xe2\x82",                    // cut short
           "\x80",                        // a continuation that continues nothing
       }) {
    const std::string file = directory.write("bad.xnet", bytes);
    EXPECT_EQ(errorOf({"info", file}, 1), "veq: " + file + ": not UTF-8\n");
  }
}

TEST(ProgramErrors, OtherFilesAreNoValidNetworks) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("bad.xnet", "#vertices x\n\"\xc3\xa9\xe2\x82\xac\"\n");
  EXPECT_EQ(errorOf({"info", file}, 1), "veq: " + file + ": not a valid xnet network\n");
}

TEST(ProgramErrors, AFileNameCannotBreakTheLine) {
  EXPECT_EQ(errorOf({"info", "a\nb\x1b[2J"}, 1), "veq: a?b?[2J: cannot be opened\n");
}

TEST(ProgramErrors, WrongUsageSaysWhatAndWhereToRead) {
  EXPECT_EQ(errorOf({}, 2), "veq: A subcommand is required (see veq --help)\n");
  EXPECT_EQ(errorOf({"dance"}, 2), "veq: there is no command \"dance\" (see veq --help)\n");
  EXPECT_EQ(errorOf({"info"}, 2), "veq: FILE is required (see veq info --help)\n");
  EXPECT_EQ(errorOf({"info", "a", "--loud"}, 2),
            "veq: The following argument was not expected: --loud (see veq info --help)\n");
}

TEST(ProgramErrors, OutputThatCannotBeWrittenIsAFailure) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this system has no /dev/full";
  const ProgramRun run = runShell("'" VEQ_PROGRAM "' info '" VEQ_DATA "/karate.xnet' >/dev/full");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "veq: standard output: cannot be written\n");
}

TEST(ProgramHelp, TeachesEachCommandByExample) {
  for (const std::string command : {"info", "walk", "convert", "generate", "components"}) {
    const ProgramRun run = runVeq({command, "--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_NE(run.output.find("\nExamples:\n  veq " + command + " "), std::string::npos);
  }
}

TEST(ProgramHelp, VersionIsOneLine) {
  const ProgramRun run = runVeq({"--version"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.output, "veq 0.9.0\n");
}

}  // namespace
}  // namespace veq::test
