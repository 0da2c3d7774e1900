// What happens to the files that the program writes, as somebody sees it who watches their folder.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <string>

#include "tests/tools/program.hpp"

namespace veq::test::output_files_test {
namespace {

/// How often names have appeared in a folder and vanished from it.
struct Changes {
  int made = 0;
  int removed = 0;
};

class Watch {
 public:
  explicit Watch(const std::string& folder) : queue_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    inotify_add_watch(queue_, folder.c_str(), IN_CREATE | IN_MOVED_TO | IN_DELETE | IN_MOVED_FROM);
  }
  ~Watch() { close(queue_); }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  /// Since it was asked last.
  [[nodiscard]] Changes changesOf(const std::string& name) const {
    Changes changes;
    alignas(inotify_event) char events[4096];
    for (ssize_t size = 0; (size = ::read(queue_, events, sizeof events)) > 0;) {
      for (const char* at = events; at < events + size;) {
        const auto* const event = reinterpret_cast<const inotify_event*>(at);
        if (event->len > 0 && name == event->name) {
          const bool isMade = (event->mask & (IN_CREATE | IN_MOVED_TO)) != 0;
          ++(isMade ? changes.made : changes.removed);
        }
        at += sizeof(inotify_event) + event->len;
      }
    }
    return changes;
  }

 private:
  int queue_;
};

// Between a look whether it can be written and the writing somebody else may have made it.
TEST(OutputFiles, AreNeverRemoved) {
  const TemporaryDirectory directory;
  const Watch watch(directory.path(""));
  const auto write = [&] {
    return runVeq({"walk", VEQ_DATA "/karate.xnet", "--agents", "1", "--steps", "1", "--output",
                   directory.path("out.xnet")})
        .exitCode;
  };
  for (int i = 0; i < 2; ++i) {
    ASSERT_EQ(write(), 0);
    const Changes changes = watch.changesOf("out.xnet");
    EXPECT_EQ(changes.made, 1);
    EXPECT_EQ(changes.removed, 0);
  }
}

/// How a veq that waits for its input ends by a signal, after being started with it ignored or not.
int statusAfter(int number, bool ignored) {
  const TemporaryDirectory directory;
  const std::string pipe = directory.path("pipe.net");
  if (mkfifo(pipe.c_str(), 0600) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    std::signal(number, ignored ? SIG_IGN : SIG_DFL);
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
    execl(VEQ_PROGRAM, "veq", "info", pipe.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  // Opened as soon as the program opens it, which has installed its handlers by then.
  std::FILE* const input = std::fopen(pipe.c_str(), "w");
  kill(child, number);
  if (ignored) std::fputs("*Vertices 1\n", input);
  if (ignored) std::fclose(input);
  int status = 0;
  waitpid(child, &status, 0);
  if (!ignored) std::fclose(input);
  return status;
}

// After the files in the making are gone.
TEST(Signals, EndTheProgramUnlessItWasStartedToIgnoreThem) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    const int status = statusAfter(number, false);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), number);
    const int ignoring = statusAfter(number, true);
    ASSERT_TRUE(WIFEXITED(ignoring));
    EXPECT_EQ(WEXITSTATUS(ignoring), 0);
  }
}

}  // namespace
}  // namespace veq::test::output_files_test
