// The file in the making beside a target: who sees it, and who removes it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/child_process.hpp"
#include "tests/support/failing_calls.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/base/files.hpp"

namespace veq::test::temporary_files_test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

/// The permissions of all files that this process has open in a folder, or had before they lost
/// their names.
std::vector<unsigned> modesOfOpenFilesIn(const std::string& folder) {
  std::vector<unsigned> modes;
  for (int file = 3; file < 100; ++file) {
    std::error_code error;
    const fs::path name = fs::read_symlink("/proc/self/fd/" + std::to_string(file), error);
    struct stat status {};
    if (!error && name.string().starts_with(folder) && ::fstat(file, &status) == 0 &&
        S_ISREG(status.st_mode)) {
      modes.push_back(status.st_mode & 07777U);
    }
  }
  return modes;
}

/// Where files may have no name, or must have one.
class TemporaryFile : public testing::TestWithParam<bool> {
 protected:
  TemporaryFile() {
    if (GetParam()) onlyNamed_.emplace();
  }

  [[nodiscard]] std::string path() const { return folder_.path("file"); }
  /// Writes the file, and does something half way.
  template <class F>
  [[nodiscard]] bool writeMeanwhile(F f) const {
    return writeFile(path(),
                     [&f](const ByteSink& sink) {
                       if (!sink("ne")) return false;
                       f();
                       return sink("w");
                     })
        .hasValue();
  }
  [[nodiscard]] std::string temporaryName() const {
    std::string name;
    const OnlyNamedFiles onlyNamed;
    EXPECT_TRUE(writeMeanwhile([&] {
      for (const std::string& each : folder_.names()) {
        if (each != "file") name = each;
      }
    }));
    return name;
  }

  const TemporaryFolder folder_;
  std::optional<OnlyNamedFiles> onlyNamed_;
};

TEST_P(TemporaryFile, OfAPrivateFileIsPrivateAllTheTime) {
  static_cast<void>(folder_.write("file", "old"));
  ASSERT_EQ(::chmod(path().c_str(), 0600), 0);
  std::vector<unsigned> modes;
  ::umask(0);
  EXPECT_TRUE(writeMeanwhile([&] { modes = modesOfOpenFilesIn(folder_.path("")); }));
  ::umask(022);
  EXPECT_THAT(modes, ElementsAre(0600U));
}

// What is public in the end need not be so earlier.
TEST_P(TemporaryFile, OfAPublicFileIsPrivateUntilItIsComplete) {
  static_cast<void>(folder_.write("file", "old"));
  ASSERT_EQ(::chmod(path().c_str(), 0666), 0);
  std::vector<unsigned> modes;
  EXPECT_TRUE(writeMeanwhile([&] { modes = modesOfOpenFilesIn(folder_.path("")); }));
  EXPECT_THAT(modes, ElementsAre(0600U));
  struct stat status {};
  ASSERT_EQ(::stat(path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0666U);
}

TEST_P(TemporaryFile, HasANameOnlyWhereItMustHaveOne) {
  std::vector<std::string> names;
  EXPECT_TRUE(writeMeanwhile([&] { names = folder_.names(); }));
  EXPECT_THAT(names, SizeIs(GetParam() ? 1 : 0));
  EXPECT_THAT(folder_.names(), ElementsAre("file"));
}

TEST_P(TemporaryFile, OfADeadWriterIsRemovedByTheNext) {
  const std::string name = temporaryName();
  ASSERT_THAT(name, StartsWith(".veq-"));
  // Under every one of the names.
  for (char number = '0'; number < '8'; ++number) {
    std::string orphan = name;
    orphan[orphan.find_last_of('-') + 1] = number;
    static_cast<void>(folder_.write(orphan, "half"));
  }
  EXPECT_THAT(folder_.names(), SizeIs(9));
  EXPECT_TRUE(writeFile(path(), "next"));
  EXPECT_THAT(folder_.names(), ElementsAre("file"));
}

TEST_P(TemporaryFile, OfALivingWriterStays) {
  const std::string name = folder_.write(temporaryName(), "half");
  const int living = ::open(name.c_str(), O_RDWR);
  ASSERT_EQ(::flock(living, LOCK_EX), 0);
  EXPECT_TRUE(writeFile(path(), "next"));
  EXPECT_EQ(bytesOf(path()), "next");
  EXPECT_EQ(bytesOf(name), "half");
  ::close(living);
  EXPECT_TRUE(writeFile(path(), "next"));
  EXPECT_THAT(folder_.names(), ElementsAre("file"));
}

TEST_P(TemporaryFile, FindsANameWhereAllAreTaken) {
  const std::string name = temporaryName();
  static_cast<void>(folder_.write("elsewhere", "untouched"));
  for (char number = '0'; number < '8'; ++number) {
    std::string taken = name;
    taken[taken.find_last_of('-') + 1] = number;
    if (number % 2 == 0) {
      fs::create_symlink("elsewhere", folder_.path(taken));
    } else {
      ASSERT_EQ(::mkfifo(folder_.path(taken).c_str(), 0600), 0);
    }
  }
  EXPECT_TRUE(writeFile(path(), "new"));
  EXPECT_EQ(bytesOf(path()), "new");
  EXPECT_EQ(bytesOf(folder_.path("elsewhere")), "untouched");
  EXPECT_THAT(folder_.names(), SizeIs(10)) << "Eight names, elsewhere, and the file.";
}

TEST_P(TemporaryFile, IsRemovedByTheHandlerOfASignal) {
  static_cast<void>(folder_.write("file", "old"));
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const int status = statusOfChild([&] {
      std::signal(signal, [](int number) {
        removeTemporaryFiles();
        std::signal(number, SIG_DFL);
        static_cast<void>(std::raise(number));
      });
      return writeMeanwhile([signal] { static_cast<void>(std::raise(signal)); }) ? 0 : 1;
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), signal);
    EXPECT_THAT(folder_.names(), ElementsAre("file"));
    EXPECT_EQ(bytesOf(path()), "old");
  }
}

// A child that ends by a signal must not take away what its parent is writing.
TEST_P(TemporaryFile, IsLeftAloneByAChild) {
  EXPECT_TRUE(writeMeanwhile([] {
    EXPECT_EQ(statusOfChild([] {
                removeTemporaryFiles();
                return 0;
              }),
              0);
  }));
  EXPECT_EQ(bytesOf(path()), "new");
  removeTemporaryFiles();
  EXPECT_EQ(bytesOf(path()), "new") << "It is no temporary one any more.";
}

TEST_P(TemporaryFile, OfACheckLeavesNothing) {
  EXPECT_TRUE(checkWritable(path()));
  EXPECT_THAT(folder_.names(), IsEmpty());
}

std::string nameOf(const testing::TestParamInfo<bool>& info) {
  return info.param ? "with_names_alone" : "without_names";
}
INSTANTIATE_TEST_SUITE_P(Files, TemporaryFile, testing::Bool(), nameOf);

}  // namespace
}  // namespace veq::test::temporary_files_test
