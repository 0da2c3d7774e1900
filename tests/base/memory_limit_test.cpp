#include "veq/base/internal/memory_limit.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace veq::internal {
namespace {

namespace fs = std::filesystem;

// What the system tells of control groups, in a folder of its own.
class ControlGroups : public testing::Test {
 protected:
  ControlGroups()
      : folder_(fs::path(testing::TempDir()) /
                (std::string("groups_") +
                 testing::UnitTest::GetInstance()->current_test_info()->name())) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  ~ControlGroups() override { fs::remove_all(folder_); }

  void write(const std::string& file, const std::string& text) const {
    fs::create_directories((folder_ / file).parent_path());
    std::ofstream(folder_ / file) << text;
  }
  [[nodiscard]] std::uint64_t limit() const {
    return controlGroupLimit((folder_ / "list").string(), (folder_ / "mount").string());
  }

 private:
  fs::path folder_;
};

TEST_F(ControlGroups, OfTheSecondVersionTellTheirOwnLimitOrThatOfOneAbove) {
  write("list", "0::/user/shell\n");
  write("mount/user/shell/memory.max", "300000\n");
  EXPECT_EQ(limit(), 300000U);
  write("mount/user/memory.max", "200000\n");
  EXPECT_EQ(limit(), 200000U);
  write("mount/user/shell/memory.max", "max\n");
  EXPECT_EQ(limit(), 200000U);
  write("mount/memory.max", "100000\n");
  EXPECT_EQ(limit(), 100000U);
}

TEST_F(ControlGroups, OfTheFirstVersionHaveAFolderForMemory) {
  write("list", "9:cpu,cpuacct:/jobs\n4:hugetlb,memory:/jobs/one\n0::/\n");
  write("mount/memory/jobs/one/memory.limit_in_bytes", "9223372036854771712\n");
  write("mount/memory/jobs/memory.limit_in_bytes", "50000\n");
  write("mount/jobs/memory.max", "1\n");
  EXPECT_EQ(limit(), 50000U);
}

TEST_F(ControlGroups, ThatCannotBeSeenSayNothing) {
  EXPECT_EQ(limit(), UINT64_MAX);
  write("list", "0::/../elsewhere\nnonsense\n4:cpu\n:memory:\n");
  EXPECT_EQ(limit(), UINT64_MAX);
  write("mount/memory.max", "max\n");
  EXPECT_EQ(limit(), UINT64_MAX);
}

// Less than no object is large, and what this machine has is asked for once.
TEST(MemoryLimit, IsWhatAnObjectCanHaveAtMost) {
  EXPECT_GT(memoryLimit(), std::uint64_t{1} << 20);
  EXPECT_LE(memoryLimit(), static_cast<std::uint64_t>(PTRDIFF_MAX));
}

}  // namespace
}  // namespace veq::internal
