// Processes that are killed while they write a file atomically: the old or the new file stands
// whole, and at most one temporary file is left.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <thread>

#include "tests/support/child_process.hpp"
#include "tests/support/failing_calls.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/base/internal/whole_files.hpp"

namespace veq::test::killed_writers_test {
namespace {

using testing::ElementsAre;
using Mode = FailingCall::Mode;

/// Contents of many sizes, which tell by their first byte how they go on.
std::string contents(unsigned number) {
  const char letter = static_cast<char>('a' + number % 26);
  return std::string(1 + 37991U * (number % 26), letter);
}
bool isWhole(const std::string& bytes) {
  return !bytes.empty() && bytes == contents(static_cast<unsigned>(bytes.front() - 'a'));
}

/// A file of mode 0640 behind a symbolic link, and all that may lie beside it; where files may have
/// no name, or must have one.
class KilledWriter : public testing::TestWithParam<bool> {
 protected:
  KilledWriter() {
    std::filesystem::create_symlink("target", folder_.path("link"));
    EXPECT_TRUE(internal::writeWholeFile(target(), contents(0), true));
    std::filesystem::permissions(target(), std::filesystem::perms{0640});
  }

  [[nodiscard]] std::string target() const { return folder_.path("target"); }
  [[nodiscard]] std::string link() const { return folder_.path("link"); }

  /// Writes it as a process that is killed does.
  [[nodiscard]] bool write(unsigned number) const {
    std::optional<OnlyNamedFiles> onlyNamed;
    if (GetParam()) onlyNamed.emplace();
    return internal::writeWholeFile(link(), contents(number), true).hasValue();
  }

  /// Looks at what a killed process has left beside what others had left before.
  void expectOneWholeFile() {
    EXPECT_TRUE(isWhole(bytesOf(target()))) << bytesOf(target()).size() << " bytes";
    EXPECT_TRUE(std::filesystem::is_symlink(link()));
    struct stat status {};
    EXPECT_EQ(::stat(target().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
    unsigned others = 0;
    for (const std::string& name : folder_.names()) {
      if (name == "link" || name == "target") continue;
      EXPECT_EQ(name.substr(0, 5), ".veq-");
      EXPECT_EQ(name.substr(name.size() - 4), ".tmp");
      ++others;
    }
    EXPECT_LE(others, 1U);
    litter_ += others;
  }

  const TemporaryFolder folder_;
  unsigned litter_ = 0;
};

bool wasKilled(int status) { return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL; }

// Before and after each call of the operating system, and in the middle of the write.
TEST_P(KilledWriter, AtEveryCallLeavesTheOldOrTheNewFile) {
  unsigned kills = 0;
  unsigned old = 0;
  for (const Mode mode : {Mode::kKillBefore, Mode::kKillAfter, Mode::kKillHalfWay}) {
    bool ended = false;
    for (std::uint64_t n = 0; !ended && n < 100; ++n) {
      SCOPED_TRACE("call " + std::to_string(n));
      ASSERT_TRUE(internal::writeWholeFile(target(), contents(1), true));
      EXPECT_THAT(folder_.names(), ElementsAre("link", "target"));
      const int status = statusOfChild([&] {
        const FailingCall killing(n, mode);
        const bool written = write(2);
        return !written ? 2 : FailingCall::calls() > n ? 3 : 0;
      });
      if (wasKilled(status)) {
        ++kills;
        old += bytesOf(target()) == contents(1);
      } else {
        // Either there is no such call any more, or it is none that has a middle.
        ASSERT_TRUE(WIFEXITED(status));
        ASSERT_EQ(WEXITSTATUS(status) == 3, mode == Mode::kKillHalfWay && WEXITSTATUS(status) != 0);
        ended = WEXITSTATUS(status) == 0;
        EXPECT_EQ(bytesOf(target()), contents(2));
      }
      expectOneWholeFile();
      if (HasFailure()) return;
    }
    EXPECT_TRUE(ended);
  }
  // Of some twenty calls only the renaming and what follows it leave the new file, and only those
  // from the first name to the renaming a temporary one.
  EXPECT_GE(kills, 30U);
  EXPECT_GE(old, 20U);
  EXPECT_LT(old, kills);
  EXPECT_GE(litter_, GetParam() ? 8U : 4U);
}

// Wherever it happens to be. What is left does not depend on how far the process came.
TEST_P(KilledWriter, AtRandomMomentsLeavesTheOldOrTheNewFile) {
  std::minstd_rand random(1);
  constexpr unsigned kKills = 300;
  for (unsigned kill = 0; kill < kKills; ++kill) {
    std::fflush(nullptr);
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (unsigned number = kill; ::getppid() == parent; ++number) {
        if (!write(number)) ::_exit(1);
      }
      ::_exit(2);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(wasKilled(status));
    expectOneWholeFile();
    if (HasFailure()) return;
  }
  // The next writer clears away what the dead ones have left.
  EXPECT_TRUE(write(5));
  EXPECT_EQ(bytesOf(target()), contents(5));
  EXPECT_THAT(folder_.names(), ElementsAre("link", "target"));
}

std::string nameOf(const testing::TestParamInfo<bool>& info) {
  return info.param ? "with_names_alone" : "without_names";
}
INSTANTIATE_TEST_SUITE_P(Files, KilledWriter, testing::Bool(), nameOf);

}  // namespace
}  // namespace veq::test::killed_writers_test
