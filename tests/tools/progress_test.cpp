#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test::progress_test {
namespace {

/// Variables of the environment, as "NAME=value".
using Variables = std::vector<const char*>;

/// A veq that runs on a terminal of its own.
class TerminalRun {
 public:
  TerminalRun(std::vector<std::string> arguments, unsigned short columns,
              Variables variables = {}) {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = columns;
    arguments.insert(arguments.begin(), "veq");
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    variables.insert(variables.begin(), "TERM=xterm");
    pid_ = forkpty(&terminal_, nullptr, nullptr, &size);
    if (pid_ == 0) {
      // Programs inherit it when interrupts are ignored, as by what a shell starts in the
      // background.
      signal(SIGINT, SIG_DFL);
      for (const char* variable : variables) putenv(const_cast<char*>(variable));
      execv(VEQ_PROGRAM, argv.data());
      _exit(127);
    }
  }
  ~TerminalRun() { close(terminal_); }
  TerminalRun(const TerminalRun&) = delete;
  TerminalRun& operator=(const TerminalRun&) = delete;

  /// What the program has shown when this text appears, or at its end.
  std::string readUntil(const std::string& text) {
    char buffer[256];
    while (shown_.find(text) == std::string::npos) {
      const ssize_t count = ::read(terminal_, buffer, sizeof buffer);
      if (count <= 0) break;  // the program has ended
      shown_.append(buffer, static_cast<std::size_t>(count));
    }
    return shown_;
  }

  /// What readUntil() has returned last.
  [[nodiscard]] const std::string& shown() const { return shown_; }

  void type(char key) { ASSERT_EQ(write(terminal_, &key, 1), 1); }

  int status() {
    int status = 0;
    waitpid(pid_, &status, 0);
    return status;
  }

 private:
  int terminal_ = -1;
  pid_t pid_ = -1;
  std::string shown_;
};

std::vector<std::string> split(const std::string& text, const std::string& separator) {
  std::vector<std::string> pieces;
  std::size_t at = 0;
  for (std::size_t end = 0; end != std::string::npos; at = end + separator.size()) {
    end = text.find(separator, at);
    pieces.push_back(text.substr(at, end - at));
  }
  return pieces;
}

/// A walk of hours.
const std::vector<std::string> kLongWalk{"walk",     VEQ_DATA "/karate.xnet",
                                         "--agents", "2",
                                         "--steps",  "1000000000000",
                                         "--top",    "0",
                                         "--seed",   "1"};

/// Runs the long walk on a terminal until it has drawn its progress, interrupts it, and returns
/// what it had shown before.
std::string progressIn(unsigned short columns) {
  TerminalRun run(kLongWalk, columns);
  run.readUntil(" left");
  run.readUntil(" left\r");
  const std::string shown = run.shown();
  run.type('\x03');
  run.readUntil("nothing more");
  run.status();
  return shown;
}

TEST(ProgressLine, FitsTheTerminal) {
  for (const unsigned short columns : std::vector<unsigned short>{100, 60, 40}) {
    // A full line would wrap.
    for (const std::string& line : split(progressIn(columns), "\r")) {
      EXPECT_LT(line.size(), columns) << line;
    }
  }
}

TEST(ProgressLine, ShowsABarWhereThereIsRoomAndElseWholeNumbersAlone) {
  const std::string time = "[0-9a-z: ]+ left";
  const std::string steps = "[0-9.]+( [kM])? of 1\\.0 T steps";
  EXPECT_TRUE(std::regex_search(
      progressIn(100), std::regex("\r\\[-{24}\\] " + steps + ", [0-9.]+( [kMG])?/s, " + time)));
  EXPECT_TRUE(std::regex_search(progressIn(60), std::regex("\r\\[-{12}\\] " + steps)));
  const std::string narrow = progressIn(40);
  EXPECT_TRUE(std::regex_search(narrow, std::regex("\r" + steps + ", " + time))) << narrow;
  EXPECT_EQ(narrow.find('['), std::string::npos);
}

TEST(ProgressLine, GivesWayToWhatWasWalkedAfterAnInterrupt) {
  const TemporaryDirectory directory;
  const std::string old = directory.write("old.xnet", "old");
  std::vector<std::string> arguments = kLongWalk;
  arguments.insert(arguments.end(), {"--output", old});
  TerminalRun run(arguments, 60);
  run.readUntil(" left");
  run.type('\x03');
  const std::string all = run.readUntil("nothing more");
  EXPECT_TRUE(std::regex_search(
      all,
      std::regex("\r {30,59}\r(\\^C)?network  [^\r]*\r\n"
                 "agents   2, agent i starting at vertex i\r\n"
                 "memory   none\r\n"
                 "walk     [1-9][0-9]* of at most 1000000000000 steps each, interrupted, choice "
                 "published, seed 1\r\n"
                 "reached  34 of 34 vertices \\(100.00 %\\)\r\n"
                 "veq: [^\r]*old.xnet: not written, as the walk was interrupted\r\n$")))
      << all.substr(all.size() - std::min<std::size_t>(all.size(), 600));
  EXPECT_EQ(contentsOf(old), "old");
  const int status = run.status();
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGINT);
}

TEST(ProgressLine, ShowsTheReachWhereThatIsTheTarget) {
  const TemporaryDirectory directory;
  // Nobody ever comes to vertex 2.
  const std::string file = directory.write("n.xnet", "#vertices 3\n#edges\n0 1\n");
  TerminalRun run({"walk", file, "--agents", "1", "--until-reach", "0.9", "--top", "0"}, 100);
  run.readUntil("/s");
  run.type('\x03');
  const std::string all = run.readUntil("nothing more");
  // 2/3 of 9/10 are 17 of 24 places in the bar.
  EXPECT_TRUE(std::regex_search(all, std::regex("\r\\[#{17}-{7}\\] 66\\.7 % of 90 % reached, "
                                                "[0-9.]+( [kMG])? steps, [0-9.]+( [kMG])?/s")))
      << all;
  EXPECT_EQ(all.find(" left"), std::string::npos);
  EXPECT_NE(all.find("\r\nreached  2 of 3 vertices (66.67 %), less than was asked for\r\n"),
            std::string::npos);
  EXPECT_TRUE(WIFSIGNALED(run.status()));
}

TEST(ProgressLine, TellsWhatTakesLongBeforeTheResultStandsInItsPlace) {
  const TemporaryDirectory directory;
  const std::string pipe = directory.path("n.xnet");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  TerminalRun run({"info", pipe}, 200);
  const std::string before = run.readUntil(", 0:0");
  EXPECT_NE(before.find("\rreading " + pipe + ", 0:0"), std::string::npos);
  std::ofstream(pipe) << "#vertices 2\n#edges\n0 1\n";
  const std::string all = run.readUntil("nothing more");
  EXPECT_EQ(run.status(), 0);
  const std::string blanks(("reading " + pipe + ", 0:01").size(), ' ');
  EXPECT_NE(all.find("\r" + blanks + "\rdirection           undirected\r\n"), std::string::npos)
      << all;
}

TEST(ProgressLine, IsPlainTextAndOnDumbTerminalsNothing) {
  const TemporaryDirectory directory;
  for (const char* const variable : {"NO_COLOR=1", "TERM=dumb", "TERM="}) {
    const std::string pipe = directory.path("n.xnet");
    std::filesystem::remove(pipe);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    TerminalRun run({"info", pipe}, 200, {variable});
    const bool draws = std::string(variable) == "NO_COLOR=1";
    if (draws) run.readUntil("reading");
    // Longer than the second after which a line is drawn.
    if (!draws) std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    std::ofstream(pipe) << "#vertices 2\n#edges\n0 1\n";
    const std::string all = run.readUntil("nothing more");
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(all.find('\x1b'), std::string::npos);
    if (!draws) {
      EXPECT_EQ(all.substr(0, 34), "direction           undirected\r\nwe");
    }
  }
}

}  // namespace
}  // namespace veq::test::progress_test
