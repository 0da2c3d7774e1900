#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "veq/base/internal/memory_limit.hpp"
#include "veq/base/internal/processors.hpp"

namespace veq::internal::control_groups_test {
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
  [[nodiscard]] unsigned processors() const {
    return controlGroupProcessors((folder_ / "list").string(), (folder_ / "mount").string());
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

// Half a processor is one, and two and a half are three.
TEST_F(ControlGroups, HaveAQuotaOfProcessors) {
  write("list", "0::/jobs/one\n");
  EXPECT_EQ(processors(), UINT_MAX);
  write("mount/jobs/one/cpu.max", "max 100000\n");
  EXPECT_EQ(processors(), UINT_MAX);
  write("mount/jobs/cpu.max", "250000 100000\n");
  EXPECT_EQ(processors(), 3U);
  write("mount/jobs/one/cpu.max", "200000 100000\n");
  EXPECT_EQ(processors(), 2U);
  write("mount/jobs/one/cpu.max", "50000 100000\n");
  EXPECT_EQ(processors(), 1U);
  write("mount/jobs/one/cpu.max", "nonsense\n");
  EXPECT_EQ(processors(), 3U);
}

TEST_F(ControlGroups, OfTheFirstVersionTellTheQuotaInTwoFiles) {
  write("list", "4:cpu,cpuacct:/jobs\n5:memory:/\n");
  write("mount/cpu/jobs/cpu.cfs_quota_us", "-1\n");
  write("mount/cpu/jobs/cpu.cfs_period_us", "100000\n");
  EXPECT_EQ(processors(), UINT_MAX);
  write("mount/cpu/jobs/cpu.cfs_quota_us", "400000\n");
  EXPECT_EQ(processors(), 4U);
  write("mount/cpu/jobs/cpu.cfs_period_us", "0\n");
  EXPECT_EQ(processors(), UINT_MAX);
}

// Less than no object is large, and what this machine has is asked for once.
TEST(MemoryLimit, IsWhatAnObjectCanHaveAtMost) {
  EXPECT_GT(memoryLimit(), std::uint64_t{1} << 20);
  EXPECT_LE(memoryLimit(), static_cast<std::uint64_t>(PTRDIFF_MAX));
}

}  // namespace
}  // namespace veq::internal::control_groups_test
