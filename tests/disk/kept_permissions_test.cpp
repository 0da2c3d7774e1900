// Who may read a file that somebody has replaced: users and groups of their own, which only root
// can try.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/child_process.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/base/internal/whole_files.hpp"

namespace veq::test::kept_permissions_test {
namespace {

struct User {
  uid_t user;
  gid_t group;
  std::vector<gid_t> groups;
};

/// The two users: the owner of the file, in whose name group 2345 may use it, and another.
constexpr uid_t kOwner = 61000;
constexpr uid_t kOther = 61001;
constexpr gid_t kTeam = 62345;
const User kOwnerInTeam{kOwner, kOwner, {kTeam}};
const User kOwnerAlone{kOwner, kOwner, {}};
const User kOtherInTeam{kOther, kOther, {kTeam}};
const User kOtherAlone{kOther, kOther, {}};

/// From now on this process is the user's.
bool become(const User& user) {
  return ::setgroups(user.groups.size(), user.groups.data()) == 0 && ::setgid(user.group) == 0 &&
         ::setuid(user.user) == 0;
}

class KeptPermissions : public testing::Test {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "Only root can be several users.";
    std::filesystem::permissions(folder_.path(""), std::filesystem::perms{0777});
    // In some containers there is but one user.
    if (statusOfChild([] { return become(kOtherInTeam) ? 0 : kCannotTry; }) != 0) {
      GTEST_SKIP() << "Here root cannot be another user.";
    }
  }

  [[nodiscard]] std::string path() const { return folder_.path("file"); }

  /// A file of the owner and the team, replaced by the user.
  struct stat replacedBy(const User& user, mode_t mode) const {
    std::filesystem::remove(path());
    static_cast<void>(folder_.write("file", "old"));
    EXPECT_EQ(::chown(path().c_str(), kOwner, kTeam), 0);
    EXPECT_EQ(::chmod(path().c_str(), mode), 0);
    EXPECT_EQ(statusOfChild([&] {
                return become(user) && internal::writeWholeFile(path(), "new", true) ? 0 : 1;
              }),
              0);
    EXPECT_EQ(bytesOf(path()), "new");
    struct stat status {};
    EXPECT_EQ(::stat(path().c_str(), &status), 0);
    return status;
  }
  static unsigned modeOf(const struct stat& status) { return status.st_mode & 07777U; }

  [[nodiscard]] bool isReadableTo(const User& user) const {
    return statusOfChild(
               [&] { return become(user) && ::open(path().c_str(), O_RDONLY) >= 0 ? 0 : 1; }) == 0;
  }

  const TemporaryFolder folder_;
};

TEST_F(KeptPermissions, AnotherUserOfTheGroupKeepsTheGroup) {
  const struct stat now = replacedBy(kOtherInTeam, 0660);
  EXPECT_EQ(now.st_uid, kOther);
  EXPECT_EQ(now.st_gid, kTeam);
  EXPECT_EQ(modeOf(now), 0660U);
  EXPECT_TRUE(isReadableTo(kOwnerInTeam));
  EXPECT_FALSE(isReadableTo({61003, kOther, {}})) << "Of the writer's own group.";
}

TEST_F(KeptPermissions, TheOwnerInTheGroupKeepsEverything) {
  const struct stat now = replacedBy(kOwnerInTeam, 04770);
  EXPECT_EQ(now.st_uid, kOwner);
  EXPECT_EQ(now.st_gid, kTeam);
  EXPECT_EQ(modeOf(now), 04770U);
}

TEST_F(KeptPermissions, AnotherGroupGetsNothingThatTheOldOneAloneHad) {
  const struct stat now = replacedBy(kOwnerAlone, 0660);
  EXPECT_EQ(now.st_uid, kOwner);
  EXPECT_EQ(now.st_gid, kOwner);
  EXPECT_EQ(modeOf(now), 0600U);
  EXPECT_FALSE(isReadableTo({61003, kOwner, {}})) << "Of the writer's own group.";
}

TEST_F(KeptPermissions, AnotherGroupGetsWhatOthersHadToo) {
  EXPECT_EQ(modeOf(replacedBy(kOwnerAlone, 0644)), 0644U);
  EXPECT_EQ(modeOf(replacedBy(kOwnerAlone, 0664)), 0644U);
  EXPECT_EQ(modeOf(replacedBy(kOtherAlone, 0666)), 0666U);
  EXPECT_EQ(modeOf(replacedBy(kOtherAlone, 0662)), 0622U);
}

// Its members are others afterwards.
TEST_F(KeptPermissions, WhatTheOldGroupAloneDidNotHaveOthersLose) {
  EXPECT_EQ(modeOf(replacedBy(kOwnerAlone, 0604)), 0600U);
  EXPECT_EQ(modeOf(replacedBy(kOtherAlone, 0616)), 0600U);
}

TEST_F(KeptPermissions, WhoeverRunsItDoesNotBorrowTheNewOwnersRights) {
  EXPECT_EQ(modeOf(replacedBy(kOtherInTeam, 06770)), 0770U);
  EXPECT_EQ(modeOf(replacedBy(kOtherAlone, 06777)), 0777U);
  EXPECT_EQ(modeOf(replacedBy(kOwnerAlone, 06755)), 0755U);
}

TEST_F(KeptPermissions, RootKeepsEverything) {
  const struct stat now = replacedBy({0, 0, {}}, 06750);
  EXPECT_EQ(now.st_uid, kOwner);
  EXPECT_EQ(now.st_gid, kTeam);
  EXPECT_EQ(modeOf(now), 06750U);
}

// Not readable, so that nothing can be listed there.
TEST_F(KeptPermissions, AFolderThatMayOnlyBeWrittenTakesFiles) {
  const std::string folder = folder_.path("drop");
  std::filesystem::create_directory(folder);
  ASSERT_EQ(::chown(folder.c_str(), kOwner, kOwner), 0);
  ASSERT_EQ(::chmod(folder.c_str(), 0300), 0);
  EXPECT_EQ(statusOfChild([&] {
              const auto write = [&](const char* bytes) {
                return internal::writeWholeFile(folder + "/file", bytes, true).hasValue();
              };
              return become(kOwnerAlone) && write("first") && write("second") ? 0 : 1;
            }),
            0);
  EXPECT_EQ(bytesOf(folder + "/file"), "second");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
}

}  // namespace
}  // namespace veq::test::kept_permissions_test
