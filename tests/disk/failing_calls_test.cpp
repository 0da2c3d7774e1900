// Each call of the operating system that writing a file makes goes wrong once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/failing_calls.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/base/internal/whole_files.hpp"

namespace veq::test::failing_calls_test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using Mode = FailingCall::Mode;

const std::string kOld = "old\n";
const std::string kNew(5000, 'n');

/// A file to write: there already or not, by its name or by a symbolic link, and where files may
/// have no name or must have one.
struct WritePlace {
  const char* name;
  bool exists;
  bool byLink;
  bool named;
};

void PrintTo(const WritePlace& place, std::ostream* out) { *out << place.name; }

class FailingCalls : public testing::TestWithParam<WritePlace> {
 protected:
  void SetUp() override {
    if (GetParam().byLink) std::filesystem::create_symlink("target", folder_.path("link"));
    if (GetParam().named) onlyNamed_.emplace();
    reset();
  }

  void reset() const {
    std::filesystem::remove(target());
    if (!GetParam().exists) return;
    static_cast<void>(folder_.write("target", kOld));
    std::filesystem::permissions(target(), std::filesystem::perms{0640});
  }

  [[nodiscard]] std::string target() const { return folder_.path("target"); }
  [[nodiscard]] bool write(bool atomically) const {
    const std::string path = folder_.path(GetParam().byLink ? "link" : "target");
    return internal::writeWholeFile(path, kNew, atomically).hasValue();
  }

  void expectNew() const {
    EXPECT_EQ(bytesOf(target()), kNew);
    expectNothingElse(true);
  }
  void expectOld() const {
    EXPECT_EQ(bytesOf(target()), GetParam().exists ? kOld : "");
    expectNothingElse(GetParam().exists);
  }
  void expectNothingElse(bool hasTarget) const {
    std::vector<std::string> names;
    if (GetParam().byLink) names.push_back("link");
    if (hasTarget) names.push_back("target");
    EXPECT_EQ(folder_.names(), names);
    if (!hasTarget) return;
    struct stat status {};
    EXPECT_EQ(::stat(target().c_str(), &status), 0);
    if (GetParam().exists) {
      EXPECT_EQ(status.st_mode & 07777U, 0640U);
    }
    EXPECT_TRUE(!GetParam().byLink || std::filesystem::is_symlink(folder_.path("link")));
  }

  const TemporaryFolder folder_;
  std::optional<OnlyNamedFiles> onlyNamed_;
};

TEST_P(FailingCalls, LeaveTheOldFileWholeAndNothingElse) {
  for (const int error : {EIO, ENOSPC, EDQUOT, EROFS, EACCES}) {
    for (const Mode mode : {Mode::kFail, Mode::kFailFrom}) {
      std::uint64_t refused = 0;
      bool happened = true;
      for (std::uint64_t n = 0; happened; ++n) {
        SCOPED_TRACE("call " + std::to_string(n));
        reset();
        bool written = false;
        {
          const FailingCall failing(n, mode, error);
          written = write(true);
          happened = FailingCall::happened();
        }
        EXPECT_TRUE(written || happened);
        refused += !written;
        written ? expectNew() : expectOld();
        if (HasFailure()) return;
      }
      // At least writing, syncing, closing, and linking or renaming; over a file also looking at it
      // and at the new one, and its permissions.
      EXPECT_GE(refused, GetParam().exists ? 8U : 4U);
    }
  }
}

// In place an old file is emptied first, so all that is promised is no new file.
TEST_P(FailingCalls, InPlaceLeaveNoNewFile) {
  std::uint64_t refused = 0;
  bool happened = true;
  for (std::uint64_t n = 0; happened; ++n) {
    SCOPED_TRACE("call " + std::to_string(n));
    reset();
    bool written = false;
    {
      const FailingCall failing(n, Mode::kFail, ENOSPC);
      written = write(false);
      happened = FailingCall::happened();
    }
    EXPECT_TRUE(written || happened);
    refused += !written;
    if (written) expectNew();
    expectNothingElse(written || GetParam().exists);
    if (HasFailure()) return;
  }
  EXPECT_GE(refused, 3U);
}

TEST_P(FailingCalls, OnesThatASignalInterruptsAreMadeAgain) {
  for (const bool atomically : {false, true}) {
    std::uint64_t interrupted = 0;
    std::uint64_t calls = 0;
    for (std::uint64_t n = 0; n == 0 || n < calls; ++n) {
      reset();
      const FailingCall failing(n, Mode::kInterrupt);
      EXPECT_TRUE(write(atomically));
      interrupted += FailingCall::happened();
      calls = FailingCall::calls();
      expectNew();
    }
    EXPECT_GE(interrupted, atomically ? 6U : 3U);
  }
}

TEST_P(FailingCalls, WritesThatFallShortAreContinued) {
  for (const bool atomically : {false, true}) {
    reset();
    const FailingCall failing(0, Mode::kShortWrites);
    EXPECT_TRUE(write(atomically));
    EXPECT_GE(FailingCall::calls(), 5000U);
    expectNew();
  }
}

// Whether its name survives a power cut is up to the file system only then.
TEST_P(FailingCalls, TheFolderIsSyncedOnceTheFileIsInItsPlace) {
  const FailingCall none(0, Mode::kInterrupt);
  EXPECT_TRUE(write(true));
  const char* const last = GetParam().exists || GetParam().named ? "renameat" : "linkat";
  EXPECT_THAT(FailingCall::trace(), HasSubstr(std::string(last) + " fsync_directory "));
  EXPECT_THAT(FailingCall::trace(), ContainsRegex("write .*fsync .*close .*" + std::string(last)));
}

const WritePlace kPlaces[] = {{"over_a_file", true, false, false},
                              {"where_nothing_is", false, false, false},
                              {"over_a_file_by_a_link", true, true, false},
                              {"by_a_link_to_nothing", false, true, false},
                              {"over_a_file_with_names_alone", true, false, true},
                              {"where_nothing_is_with_names_alone", false, false, true}};
std::string nameOf(const testing::TestParamInfo<WritePlace>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Places, FailingCalls, testing::ValuesIn(kPlaces), nameOf);

}  // namespace
}  // namespace veq::test::failing_calls_test
