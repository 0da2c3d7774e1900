// Every writer where the system does not let it write.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/child_process.hpp"
#include "tests/support/network_drawing.hpp"
#include "tests/support/temporary_folder.hpp"
#include "tests/support/writers.hpp"
#include "veq/base/internal/whole_files.hpp"

namespace veq::test::refused_writes_test {
namespace {

using Names = std::vector<std::string>;
namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;

/// From now on permissions apply to this process, as they do not to root.
bool becomeNobody() {
  if (::geteuid() != 0) return true;
  return ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
}

class RefusedWrite : public testing::TestWithParam<Writer> {
 protected:
  bool write(const std::string& path, bool atomically) const {
    return GetParam().write(*network_, path, atomically);
  }

  const Owned<VEQNetwork> network_ = drawDirected("0-1 1-2 2-0");
  const TemporaryFolder folder_;
};

TEST_P(RefusedWrite, IntoAFolderWithoutPermission) {
  fs::permissions(folder_.path(""), fs::perms{0755});
  fs::create_directory(folder_.path("open"));
  fs::create_directory(folder_.path("closed"));
  const std::string file = folder_.write("closed/file", "old");
  fs::permissions(file, fs::perms{0666});
  fs::permissions(folder_.path("open"), fs::perms{0777});
  fs::permissions(folder_.path("closed"), fs::perms{0555});
  const int status = statusOfChild([&] {
    // Whether anything can be written as that user where the system allows it.
    if (!becomeNobody() || !write(folder_.path("open/file"), true)) return kCannotTry;
    EXPECT_FALSE(write(file, true));
    EXPECT_FALSE(write(folder_.path("closed/new"), true));
    EXPECT_FALSE(write(folder_.path("closed/new"), false));
    return 0;
  });
  fs::permissions(folder_.path("closed"), fs::perms{0755});
  EXPECT_EQ(bytesOf(file), "old");
  fs::remove(file);
  EXPECT_TRUE(fs::is_empty(folder_.path("closed")));
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == kCannotTry) GTEST_SKIP() << "Here nobody can be an ordinary user.";
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_P(RefusedWrite, WhereThereCanBeNoFile) {
  fs::create_directory(folder_.path("folder"));
  static_cast<void>(folder_.write("file", "old"));
  fs::create_symlink("circle", folder_.path("circle"));
  fs::create_symlink("folder", folder_.path("link"));
  const Names before = folder_.names();
  for (const bool atomically : {false, true}) {
    EXPECT_FALSE(write(folder_.path("folder"), atomically));
    EXPECT_FALSE(write(folder_.path("link"), atomically));
    EXPECT_FALSE(write(folder_.path("missing/file"), atomically));
    EXPECT_FALSE(write(folder_.path("file/file"), atomically));
    EXPECT_FALSE(write(folder_.path("circle"), atomically));
    EXPECT_FALSE(write("", atomically));
  }
  EXPECT_EQ(folder_.names(), before);
  EXPECT_TRUE(fs::is_empty(folder_.path("folder")));
  EXPECT_EQ(bytesOf(folder_.path("file")), "old");
}

TEST_P(RefusedWrite, OfMoreThanAFileMayHold) {
  const std::string file = folder_.write("file", "old");
  // In a process of its own, lest a limit stop what else is written: coverage, reports.
  const int status = statusOfChild([&] {
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{8, before.rlim_max};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 2;
    const bool atomic = write(file, true);
    const bool atomicNew = write(folder_.path("new"), true);
    const bool inPlace = write(folder_.path("new"), false);
    ::setrlimit(RLIMIT_FSIZE, &before);
    return atomic || atomicNew || inPlace ? 1 : 0;
  });
  ASSERT_TRUE(WIFEXITED(status)) << "A signal has ended it.";
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(folder_.names(), Names{"file"});
  EXPECT_EQ(bytesOf(file), "old");
}

TEST_P(RefusedWrite, ToADeviceThatIsFull) {
  if (!fs::is_character_file("/dev/full")) GTEST_SKIP() << "Here is no such device.";
  for (const bool atomically : {false, true}) {
    EXPECT_FALSE(write("/dev/full", atomically));
    EXPECT_TRUE(write("/dev/null", atomically));
  }
}

INSTANTIATE_TEST_SUITE_P(Writers, RefusedWrite, testing::ValuesIn(kWriters), nameOfWriter);

// Where somebody moves the folder away and back while it is written into.
TEST(VanishingFolder, ThatIsMovedHoldsTheFileAndNothingElse) {
  const TemporaryFolder folder;
  const std::string here = folder.path("here");
  const std::string there = folder.path("there");
  fs::create_directory(here);
  std::atomic<bool> done{false};
  std::thread mover([&] {
    while (!done) {
      fs::rename(here, there);
      fs::rename(there, here);
    }
  });
  for (unsigned i = 0; i < 100; ++i) {
    const std::string& at = i % 2 == 0 ? here : there;
    static_cast<void>(internal::writeWholeFile(at + "/file", std::string(3000, 'x'), true));
  }
  done = true;
  mover.join();
  EXPECT_TRUE(internal::writeWholeFile(here + "/file", std::string(3000, 'x'), true));
  EXPECT_EQ(bytesOf(here + "/file"), std::string(3000, 'x'));
  EXPECT_EQ(folder.names(), Names{"here"});
  EXPECT_EQ(std::distance(fs::directory_iterator(here), fs::directory_iterator()), 1);
}

// Where somebody clears the folder away with all that is in it, the temporary file included.
TEST(VanishingFolder, ThatIsRemovedLeavesNothing) {
  const TemporaryFolder folder;
  const std::string here = folder.path("here");
  std::atomic<bool> done{false};
  std::thread remover([&] {
    std::error_code ignored;
    while (!done) {
      fs::create_directory(here, ignored);
      fs::remove_all(here, ignored);
    }
    fs::remove_all(here);
  });
  for (unsigned i = 0; i < 100; ++i) {
    static_cast<void>(internal::writeWholeFile(here + "/file", std::string(3000, 'x'), true));
  }
  done = true;
  remover.join();
  EXPECT_EQ(folder.names(), Names());
}

}  // namespace
}  // namespace veq::test::refused_writes_test
