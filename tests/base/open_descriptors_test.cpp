// Paths that name an open file of this very process, such as /dev/stdout.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "tests/support/child_process.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/base/internal/whole_files.hpp"

namespace veq::test::open_descriptors_test {
namespace {

namespace fs = std::filesystem;
using internal::writeWholeFile;

class OpenDescriptors : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists("/proc/self/fd")) GTEST_SKIP() << "no links to open files";
  }

  /// What the file holds after f has run in a child that has it as its standard output.
  template <class F>
  std::string printedBy(int mode, F f) const {
    const std::string path = folder_.path("out");
    EXPECT_EQ(statusOfChild([&] {
                const int file = ::open(path.c_str(), O_WRONLY | mode);
                if (file < 0 || ::dup2(file, STDOUT_FILENO) < 0) return 2;
                return f() ? 0 : 3;
              }),
              0);
    return bytesOf(path);
  }

  const TemporaryFolder folder_;
};

TEST_F(OpenDescriptors, StandardOutputKeepsWhatIsPrintedBeforeAndBehind) {
  fs::create_symlink("/dev/stdout", folder_.path("link"));
  for (const std::string& path : {std::string("/dev/stdout"), std::string("/dev/fd/1"),
                                  std::string("/proc/self/fd/1"), folder_.path("link")}) {
    for (const bool atomically : {false, true}) {
      static_cast<void>(folder_.write("out", ""));
      EXPECT_EQ(printedBy(0,
                          [&] {
                            std::fputs("before ", stdout);
                            const bool isWritten =
                                writeWholeFile(path, "text ", atomically).hasValue();
                            std::fputs("behind", stdout);
                            return isWritten && std::fflush(stdout) == 0;
                          }),
                "before text behind")
          << path;
      EXPECT_EQ(folder_.names(), (std::vector<std::string>{"link", "out"}));
    }
  }
}

TEST_F(OpenDescriptors, AreWrittenInTheirPlaceAndMode) {
  for (const bool atomically : {false, true}) {
    const auto write = [atomically] {
      return writeWholeFile("/dev/stdout", "XY", atomically).hasValue();
    };
    static_cast<void>(folder_.write("out", "abcdef"));
    EXPECT_EQ(printedBy(0, [&] { return ::lseek(STDOUT_FILENO, 1, SEEK_SET) == 1 && write(); }),
              "aXYdef");
    EXPECT_EQ(printedBy(O_APPEND, write), "aXYdefXY");
  }
}

TEST_F(OpenDescriptors, WithoutANameAreWrittenInTheirPlace) {
  const int file = ::open(folder_.write("f", "old and longer").c_str(), O_RDWR);
  ASSERT_GE(file, 0);
  fs::remove(folder_.path("f"));
  const std::string link = "/proc/self/fd/" + std::to_string(file);
  EXPECT_TRUE(writeWholeFile(link, "first", true));
  EXPECT_EQ(internal::readWholeFile(link).value(), "firstnd longer");
  EXPECT_TRUE(writeWholeFile(link, "second", true));
  EXPECT_EQ(internal::readWholeFile(link).value(), "firstsecondger");
  EXPECT_EQ(folder_.countFiles(), 0U);
  ::close(file);
}

TEST_F(OpenDescriptors, ThatCannotBeWrittenAreRefused) {
  const int file = ::open(folder_.write("f", "old").c_str(), O_RDONLY);
  const std::string path = "/dev/fd/" + std::to_string(file);
  for (const bool atomically : {false, true}) {
    EXPECT_EQ(writeWholeFile(path, "new", atomically).error().text(), "Bad file descriptor");
  }
  EXPECT_EQ(checkWritable(path).error().text(), "Bad file descriptor");
  ::close(file);
  EXPECT_EQ(writeWholeFile(path, "new", true).error().text(), "Bad file descriptor");
  EXPECT_EQ(checkWritable(path).error().text(), "Bad file descriptor");
  EXPECT_EQ(writeWholeFile("/dev/fd/01", "new", true).error().text(), "No such file or directory");
  EXPECT_EQ(bytesOf(folder_.path("f")), "old");
}

TEST_F(OpenDescriptors, AreNotMeantByFilesWhoseNameIsANumber) {
  EXPECT_TRUE(writeWholeFile(folder_.path("1"), "text", true));
  EXPECT_EQ(bytesOf(folder_.path("1")), "text");
}

}  // namespace
}  // namespace veq::test::open_descriptors_test
