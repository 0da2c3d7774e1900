// Every writer on a disk that is full: one of 64 kilobytes that the test mounts for itself.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/child_process.hpp"
#include "tests/support/temporary_folder.hpp"
#include "tests/support/writers.hpp"
#include "veq/base/internal/file_calls.hpp"
#include "veq/base/internal/whole_files.hpp"
#include "veq/network/network.hpp"

namespace veq::test::full_disk_test {
namespace {

using Names = std::vector<std::string>;

bool say(const char* path, const std::string& text) {
  std::ofstream file(path);
  file << text << std::flush;
  return file.good();
}

/// A name space of its own, so that nobody else ever sees what is mounted there: as some user's
/// root, or else as the root that we are, unless the folders are shared with others for good, as in
/// a chroot.
bool leaveNameSpace() {
  const std::string user = std::to_string(::geteuid());
  const std::string group = std::to_string(::getegid());
  if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) {
    say("/proc/self/setgroups", "deny");
    return say("/proc/self/uid_map", "0 " + user + " 1") &&
           say("/proc/self/gid_map", "0 " + group + " 1");
  }
  return ::unshare(CLONE_NEWNS) == 0 &&
         ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// Runs f on a disk with these options, in a child process.
template <class F>
void onDisk(const TemporaryFolder& folder, const char* options, F f) {
  const int status = statusOfChild([&] {
    if (!leaveNameSpace() || ::mount("tmpfs", folder.path("").c_str(), "tmpfs", 0, options) != 0) {
      std::printf("No disk: %s.\n", std::strerror(errno));
      return kCannotTry;
    }
    f();
    return 0;
  });
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == kCannotTry) GTEST_SKIP() << "Here nobody may mount a disk.";
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(folder.names(), Names()) << "The disk was not the child's alone.";
}

/// A network of which every text and archive is longer than the disk.
Owned<VEQNetwork> largeNetwork() {
  const std::vector<std::uint64_t> from(20000, 99999);
  const std::vector<std::uint64_t> to(20000, 100000);
  return VEQNetwork::initWithLinksIndexedFrom_toIndices_directed(
      VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), true);
}

class FullDisk : public testing::TestWithParam<Writer> {};

TEST_P(FullDisk, KeepsTheOldFileAndNothingElse) {
  const Writer& writer = GetParam();
  const TemporaryFolder folder;
  const Owned<VEQNetwork> large = largeNetwork();
  const Owned<VEQNetwork> small = VEQNetwork::initWithLinksIndexedFrom_toIndices(
      VEQNumberArray::ofIndices({0, 1}), VEQNumberArray::ofIndices({1, 2}));
  const std::string file = folder.path("file");
  onDisk(folder, "size=64k", [&] {
    EXPECT_FALSE(writer.write(*large, file, true));
    EXPECT_EQ(folder.names(), Names());
    EXPECT_FALSE(writer.write(*large, file, false));
    EXPECT_EQ(folder.names(), Names());

    EXPECT_TRUE(writer.write(*small, file, true)) << "Something takes the room.";
    const std::string old = bytesOf(file);
    EXPECT_FALSE(writer.write(*large, file, true));
    EXPECT_EQ(folder.names(), Names{"file"});
    EXPECT_EQ(bytesOf(file), old);
    EXPECT_TRUE(writer.write(*small, file, true));
    EXPECT_EQ(bytesOf(file), old);
  });
}

INSTANTIATE_TEST_SUITE_P(Writers, FullDisk, testing::ValuesIn(kWriters), nameOfWriter);

// There is room for one of them, which is enough to write in place.
TEST(SmallDisk, HasNoRoomForTwoFilesSideBySide) {
  const TemporaryFolder folder;
  const std::string old(40000, 'o');
  const std::string next(40000, 'n');
  const std::string file = folder.path("file");
  onDisk(folder, "size=64k", [&] {
    EXPECT_TRUE(internal::writeWholeFile(file, old, true));
    EXPECT_FALSE(internal::writeWholeFile(file, next, true));
    EXPECT_EQ(bytesOf(file), old);
    EXPECT_EQ(folder.names(), Names{"file"});
    EXPECT_TRUE(internal::writeWholeFile(file, next, false));
    EXPECT_EQ(bytesOf(file), next);
  });
}

// The folder and one file are all that such a disk knows.
TEST(SmallDisk, HasNoNameForATemporaryFile) {
  const TemporaryFolder folder;
  const std::string file = folder.path("file");
  onDisk(folder, "size=64k,nr_inodes=2", [&] {
    EXPECT_TRUE(internal::writeWholeFile(file, "old", false));
    EXPECT_FALSE(internal::writeWholeFile(file, "new", true));
    EXPECT_FALSE(internal::writeWholeFile(folder.path("other"), "new", true));
    EXPECT_FALSE(internal::writeWholeFile(folder.path("other"), "new", false));
    EXPECT_EQ(folder.names(), Names{"file"});
    EXPECT_EQ(bytesOf(file), "old");
    EXPECT_TRUE(internal::writeWholeFile(file, "new", false));
    EXPECT_EQ(bytesOf(file), "new");
  });
}

TEST(SmallDisk, HasNoRoomForALargeSpool) {
  const TemporaryFolder folder;
  onDisk(folder, "size=64k", [&] {
    internal::SpoolFile spool(folder.path("."));
    EXPECT_TRUE(spool.write(std::string(40000, 's')));
    EXPECT_FALSE(spool.write(std::string(40000, 's')));
    EXPECT_EQ(spool.error(), std::errc::no_space_on_device);
    EXPECT_EQ(folder.names(), Names());
  });
}

}  // namespace
}  // namespace veq::test::full_disk_test
