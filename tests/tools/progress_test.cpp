#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

namespace veq::test {
namespace {

/// A veq that runs on a terminal of its own.
class TerminalRun {
 public:
  explicit TerminalRun(const char* steps) {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = 60;
    pid_ = forkpty(&terminal_, nullptr, nullptr, &size);
    if (pid_ == 0) {
      // Programs inherit it when interrupts are ignored, as by what a shell starts in the
      // background.
      signal(SIGINT, SIG_DFL);
      execl(VEQ_PROGRAM, "veq", "walk", VEQ_DATA "/karate.xnet", "--agents", "2", "--steps", steps,
            "--top", "0", "--seed", "1", static_cast<char*>(nullptr));
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
      const ssize_t count = read(terminal_, buffer, sizeof buffer);
      if (count <= 0) break;  // the program has ended
      shown_.append(buffer, static_cast<std::size_t>(count));
    }
    return shown_;
  }

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

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::vector<std::string> split(const std::string& text, const std::string& separator) {
  std::vector<std::string> pieces;
  std::size_t at = 0;
  for (std::size_t end = 0; end != std::string::npos; at = end + separator.size()) {
    end = text.find(separator, at);
    pieces.push_back(text.substr(at, end - at));
  }
  return pieces;
}

const std::string kErase = "\r\x1b[K";

TEST(ProgressLine, FitsTheTerminalAndIsGoneAfterAnInterrupt) {
  TerminalRun run("1000000000000");  // hours
  const std::string first = run.readUntil("/s, ");
  EXPECT_NE(first.find(kErase + "[-"), std::string::npos);
  EXPECT_NE(first.find(" of 1.0 T steps"), std::string::npos);
  run.type('\x03');
  const std::string all = run.readUntil("nothing more");
  EXPECT_TRUE(endsWith(all, kErase)) << all.substr(all.size() - 80);
  // The terminal is 60 characters wide, and a full line would wrap. It echoes the key as "^C".
  for (const std::string& line : split(all, kErase)) {
    EXPECT_LT(line.substr(0, line.find('^')).size(), 60u) << line;
  }
  const int status = run.status();
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGINT);
}

TEST(ProgressLine, IsGoneBeforeTheResultStands) {
  TerminalRun run("40000000");
  const std::string all = run.readUntil("nothing more");
  EXPECT_EQ(run.status(), 0);
  const std::size_t result = all.find("34 vertices, 78 edges, undirected\r\n");
  ASSERT_NE(result, std::string::npos);
  ASSERT_GE(result, kErase.size());
  EXPECT_EQ(all.substr(result - kErase.size(), kErase.size()), kErase);
  EXPECT_TRUE(endsWith(all, "34 of 34 vertices reached (100.00 %)\r\n"));
}

}  // namespace
}  // namespace veq::test
