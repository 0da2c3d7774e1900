#include "veq/base/internal/whole_files.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <thread>

#include "tests/support/child_process.hpp"
#include "veq/base/internal/file_calls.hpp"

namespace veq::internal::whole_files_test {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace std::string_view_literals;

/// Owners and signals are beyond the standard library, on which other systems stand.
constexpr bool kKnowsSystem = VEQ_POSIX_FILES == 1;

/// A fresh directory for each test.
class Files : public testing::Test {
 protected:
  Files() {
    std::string pattern = testing::TempDir() + "veq-files-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no directory for tests");
    directory_ = pattern;
    ::umask(022);
  }
  ~Files() override { fs::remove_all(directory_); }

  std::string path(std::string_view name) const { return (directory_ / name).string(); }
  std::set<std::string> names() const {
    std::set<std::string> found;
    for (const auto& entry : fs::directory_iterator(directory_)) {
      found.insert(entry.path().filename().string());
    }
    return found;
  }
  void make(std::string_view name, std::string_view bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
  }
  std::string contentsOf(std::string_view name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  unsigned modeOf(std::string_view name) const {
    struct stat status {};
    ::stat(path(name).c_str(), &status);
    return status.st_mode & 07777u;
  }

  fs::path directory_;
};

/// Somebody to whom permissions apply, while this lives.
class Nobody {
 public:
  Nobody() : isRoot_(::geteuid() == 0), isNobody_(!isRoot_ || ::seteuid(65534) == 0) {}
  ~Nobody() {
    if (isRoot_ && isNobody_ && ::seteuid(0) != 0) std::abort();
  }
  Nobody(const Nobody&) = delete;
  Nobody& operator=(const Nobody&) = delete;
  explicit operator bool() const { return isNobody_; }

 private:
  bool isRoot_;
  bool isNobody_;
};

/// Limits the size of every file that the process writes, while this lives.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &before_); }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
};

TEST_F(Files, ReadsEveryByte) {
  make("a", "x\0\r\n\xFF"sv);
  EXPECT_EQ(readWholeFile(path("a")).value(), "x\0\r\n\xFF"sv);
}

TEST_F(Files, ReadsAnEmptyFile) {
  make("a", "");
  EXPECT_EQ(readWholeFile(path("a")).value(), "");
}

TEST_F(Files, ReadsFilesAroundTheSizeOfAChunk) {
  for (const std::size_t size : {65535u, 65536u, 65537u, 1000000u}) {
    std::string bytes(size, 'a');
    bytes.back() = 'z';
    make("a", bytes);
    EXPECT_EQ(readWholeFile(path("a")).value(), bytes);
  }
}

TEST_F(Files, ReadsAPipeToItsEnd) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  const std::string bytes(200000, 'p');
  std::thread writer([&] { EXPECT_TRUE(writeWholeFile(path("pipe"), bytes, true)); });
  EXPECT_EQ(readWholeFile(path("pipe")).value(), bytes);
  writer.join();
  EXPECT_EQ(names(), std::set<std::string>{"pipe"});
  EXPECT_TRUE(fs::is_fifo(path("pipe")));
}

TEST_F(Files, ReadsFilesWithoutASize) {
  EXPECT_EQ(readWholeFile("/dev/null").value(), "");
  EXPECT_FALSE(readWholeFile("/proc/self/comm").value().empty());
}

std::string whyUnread(std::string_view path) { return readWholeFile(path).error().text(); }
std::string whyUnwritten(std::string_view path, bool atomically) {
  return writeWholeFile(path, "x", atomically).error().text();
}

TEST_F(Files, SaysInTheSystemsWordsWhyNothingWasRead) {
  make("a", "x");
  fs::create_symlink("circle", path("circle"));
  EXPECT_EQ(readWholeFile(path("missing")).error().kind(), ErrorKind::kFile);
  EXPECT_EQ(whyUnread(path("missing")), "No such file or directory");
  EXPECT_EQ(whyUnread(""), "No such file or directory");
  EXPECT_EQ(whyUnread(directory_.string()), "Is a directory");
  EXPECT_EQ(whyUnread(path("a") + "\0b"s), "Invalid argument");
  EXPECT_EQ(whyUnread(path("a/b")), "Not a directory");
  EXPECT_EQ(whyUnread(path("circle")), "Too many levels of symbolic links");
  EXPECT_EQ(whyUnread(path(std::string(300, 'n'))), "File name too long");
  // Reading one's own memory from address 0 is an input/output error.
  EXPECT_EQ(whyUnread("/proc/self/mem"), "Input/output error");
}

TEST_F(Files, SaysInTheSystemsWordsWhyNothingWasWritten) {
  make("file", "old");
  fs::create_directory(path("dir"));
  fs::create_symlink("circle", path("circle"));
  for (const bool atomically : {false, true}) {
    EXPECT_EQ(writeWholeFile("", "x", atomically).error().kind(), ErrorKind::kFile);
    EXPECT_EQ(whyUnwritten("", atomically), "No such file or directory");
    EXPECT_EQ(whyUnwritten(path("dir"), atomically), "Is a directory");
    EXPECT_EQ(whyUnwritten(path("new/"), atomically), "Is a directory");
    EXPECT_EQ(whyUnwritten(path("missing/a"), atomically), "No such file or directory");
    EXPECT_EQ(whyUnwritten(path("file/a"), atomically), "Not a directory");
    EXPECT_EQ(whyUnwritten(path("circle"), atomically), "Too many levels of symbolic links");
    EXPECT_EQ(whyUnwritten(path("file") + "\0z"s, atomically), "Invalid argument");
    EXPECT_EQ(whyUnwritten(path(std::string(300, 'n')), atomically), "File name too long");
    EXPECT_EQ(whyUnwritten("/dev/full", atomically), "No space left on device");
  }
}

TEST_F(Files, AFileWithoutReadPermissionCannotBeOpened) {
  make("a", "secret");
  fs::permissions(directory_, fs::perms{0777});
  fs::permissions(path("a"), fs::perms{0200});
  const Nobody nobody;
  if (!nobody) GTEST_SKIP() << "cannot become an ordinary user";
  EXPECT_EQ(whyUnread(path("a")), "Permission denied");
}

TEST_F(Files, WritesNewAndOldFilesEitherWay) {
  for (const bool atomically : {false, true}) {
    const std::string name = atomically ? "atomic" : "plain";
    EXPECT_TRUE(writeWholeFile(path(name), "first and longer", atomically));
    EXPECT_EQ(contentsOf(name), "first and longer");
    EXPECT_EQ(modeOf(name), 0644u);
    EXPECT_TRUE(writeWholeFile(path(name), "x\0y"sv, atomically));
    EXPECT_EQ(contentsOf(name), "x\0y"sv);
    EXPECT_TRUE(writeWholeFile(path(name), "", atomically));
    EXPECT_EQ(contentsOf(name), "");
  }
  EXPECT_EQ(names(), (std::set<std::string>{"atomic", "plain"}));
}

TEST_F(Files, WritesBesideARelativePath) {
  const fs::path before = fs::current_path();
  fs::current_path(directory_);
  EXPECT_TRUE(writeWholeFile("a", "1", true));
  EXPECT_TRUE(writeWholeFile("a", "2", true));
  fs::current_path(before);
  EXPECT_EQ(contentsOf("a"), "2");
}

TEST_F(Files, NewFilesObeyTheUmask) {
  ::umask(027);
  EXPECT_TRUE(writeWholeFile(path("atomic"), "x", true));
  EXPECT_TRUE(writeWholeFile(path("plain"), "x", false));
  ::umask(022);
  EXPECT_EQ(modeOf("atomic"), 0640u);
  EXPECT_EQ(modeOf("plain"), 0640u);
}

TEST_F(Files, PermissionsAreKept) {
  for (const bool atomically : {false, true}) {
    make("a", "old");
    fs::permissions(path("a"), fs::perms{0660});
    EXPECT_TRUE(writeWholeFile(path("a"), "new", atomically));
    EXPECT_EQ(modeOf("a"), 0660u);
    fs::permissions(path("a"), fs::perms{0600});
    EXPECT_TRUE(writeWholeFile(path("a"), "new", atomically));
    EXPECT_EQ(modeOf("a"), 0600u);
  }
}

TEST_F(Files, TheOwnerIsKept) {
  if (!kKnowsSystem) GTEST_SKIP() << "the portable file layer";
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  make("a", "old");
  ASSERT_EQ(::chown(path("a").c_str(), 65534, 65533), 0);
  EXPECT_TRUE(writeWholeFile(path("a"), "new", true));
  struct stat status {};
  ASSERT_EQ(::stat(path("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, 65534u);
  EXPECT_EQ(status.st_gid, 65533u);
}

TEST_F(Files, SymbolicLinksStayAndTheirTargetsAreWritten) {
  fs::create_directory(path("sub"));
  for (const bool atomically : {false, true}) {
    make("sub/target", "old");
    fs::create_symlink("sub/hop", path("link"));
    fs::create_symlink("target", path("sub/hop"));
    EXPECT_TRUE(writeWholeFile(path("link"), "new", atomically));
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_TRUE(fs::is_symlink(path("sub/hop")));
    EXPECT_EQ(contentsOf("sub/target"), "new");
    fs::remove(path("link"));
    fs::remove(path("sub/hop"));
  }
}

TEST_F(Files, ALinkToNothingMakesItsTarget) {
  for (const bool atomically : {false, true}) {
    fs::create_symlink("target", path("link"));
    EXPECT_TRUE(writeWholeFile(path("link"), "new", atomically));
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_FALSE(fs::is_symlink(path("target")));
    EXPECT_EQ(contentsOf("target"), "new");
    fs::remove(path("link"));
    fs::remove(path("target"));
  }
}

TEST_F(Files, TargetsThatCannotBeWrittenAreRefused) {
  fs::create_directory(path("dir"));
  make("file", "old");
  fs::create_symlink("circle", path("circle"));
  const std::set<std::string> before = names();
  for (const bool atomically : {false, true}) {
    EXPECT_FALSE(writeWholeFile("", "x", atomically));
    EXPECT_FALSE(writeWholeFile(path("dir"), "x", atomically));
    EXPECT_FALSE(writeWholeFile(path("dir/"), "x", atomically));
    EXPECT_FALSE(writeWholeFile(path("new/"), "x", atomically));
    EXPECT_FALSE(writeWholeFile(path("missing/a"), "x", atomically));
    EXPECT_FALSE(writeWholeFile(path("file/a"), "x", atomically));
    EXPECT_FALSE(writeWholeFile(path("circle"), "x", atomically));
    EXPECT_FALSE(writeWholeFile(path("file") + "\0z"s, "x", atomically));
    EXPECT_FALSE(writeWholeFile(path(std::string(300, 'n')), "x", atomically));
  }
  EXPECT_EQ(names(), before);
  EXPECT_TRUE(fs::is_empty(path("dir")));
  EXPECT_EQ(contentsOf("file"), "old");
}

TEST_F(Files, ANameAsLongAsNamesMayBeIsWrittenAtomically) {
  const std::string name(255, 'n');
  EXPECT_TRUE(writeWholeFile(path(name), "1", true));
  EXPECT_TRUE(writeWholeFile(path(name), "2", true));
  EXPECT_EQ(contentsOf(name), "2");
}

TEST_F(Files, ADirectoryWithoutWritePermissionStaysAsItIs) {
  make("file", "old");
  fs::permissions(path("file"), fs::perms{0666});
  fs::permissions(directory_, fs::perms{0555});
  {
    const Nobody nobody;
    if (!nobody) GTEST_SKIP() << "cannot become an ordinary user";
    EXPECT_FALSE(writeWholeFile(path("file"), "new", true));
    EXPECT_FALSE(writeWholeFile(path("other"), "new", true));
    EXPECT_FALSE(writeWholeFile(path("other"), "new", false));
  }
  fs::permissions(directory_, fs::perms{0755});
  EXPECT_EQ(contentsOf("file"), "old");
  EXPECT_EQ(names(), std::set<std::string>{"file"});
}

TEST_F(Files, AWriteProtectedFileIsNotReplaced) {
  make("file", "old");
  fs::permissions(path("file"), fs::perms{0444});
  fs::permissions(directory_, fs::perms{0777});
  {
    const Nobody nobody;
    if (!nobody) GTEST_SKIP() << "cannot become an ordinary user";
    EXPECT_FALSE(writeWholeFile(path("file"), "new", true));
    EXPECT_FALSE(writeWholeFile(path("file"), "new", false));
  }
  EXPECT_EQ(contentsOf("file"), "old");
  EXPECT_EQ(names(), std::set<std::string>{"file"});
}

TEST_F(Files, APieceMayBeEmpty) {
  for (const bool atomically : {false, true}) {
    EXPECT_TRUE(writeWholeFile(
        path("a"),
        [](const ByteSink& sink) { return sink("ab") && sink("") && sink("\0c"sv) && sink(""); },
        atomically));
    EXPECT_EQ(contentsOf("a"), "ab\0c"sv);
  }
}

// Not as if what came before it were all.
TEST_F(Files, AFileWhosePiecesEndInAFailureDoesNotArrive) {
  make("old", "old");
  const ByteSource half = [](const ByteSink& sink) { return sink("half") && false; };
  EXPECT_FALSE(writeWholeFile(path("old"), half, true));
  EXPECT_FALSE(writeWholeFile(path("new"), half, true));
  EXPECT_FALSE(writeWholeFile(path("new"), half, false));
  EXPECT_EQ(contentsOf("old"), "old");
  EXPECT_EQ(names(), std::set<std::string>{"old"});
}

TEST_F(Files, DevicesAreWrittenInPlaceAndAFullOneFails) {
  for (const bool atomically : {false, true}) {
    EXPECT_TRUE(writeWholeFile("/dev/null", "x", atomically));
    EXPECT_FALSE(writeWholeFile("/dev/full", "x", atomically));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
    EXPECT_TRUE(writeWholeFile("/dev/full", "", atomically)) << "nothing to write always fits";
  }
}

TEST_F(Files, AFileSizeLimitIsAFailureAndNoSignal) {
  if (!kKnowsSystem) GTEST_SKIP() << "the portable file layer";
  make("old", "old");
  const std::string bytes(100000, 'x');
  {
    const FileSizeLimit limit(4096);
    EXPECT_FALSE(writeWholeFile(path("old"), bytes, true));
    EXPECT_FALSE(writeWholeFile(path("new"), bytes, true));
    EXPECT_FALSE(writeWholeFile(path("new"), bytes, false));
  }
  EXPECT_EQ(contentsOf("old"), "old");
  EXPECT_EQ(names(), std::set<std::string>{"old"});
}

TEST_F(Files, ABrokenPipeIsAFailureAndNoSignal) {
  if (!kKnowsSystem) GTEST_SKIP() << "the portable file layer";
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  std::thread reader([&] { ::close(::open(path("pipe").c_str(), O_RDONLY)); });
  // More than a pipe holds, so that the write is still going on when its reader leaves.
  EXPECT_FALSE(writeWholeFile(path("pipe"), std::string(1 << 21, 'x'), false));
  reader.join();
  sigset_t pending;
  sigpending(&pending);
  EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
  sigset_t blocked;
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  EXPECT_EQ(sigismember(&blocked, SIGPIPE), 0);
  EXPECT_EQ(sigismember(&blocked, SIGXFSZ), 0);
}

// The system's link to the open file of another process names where it was, with " (deleted)"
// behind it.
TEST_F(Files, AFileThatNoPathNamesIsWrittenInPlace) {
  if (!kKnowsSystem) GTEST_SKIP() << "the portable file layer";
  if (!fs::exists("/proc/self/fd")) GTEST_SKIP() << "no links to open files";
  make("f", "old and longer");
  const int file = ::open(path("f").c_str(), O_RDWR);
  ASSERT_GE(file, 0);
  fs::remove(path("f"));
  const std::string link = "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(file);
  const auto writeInAChild = [&link](std::string_view bytes) {
    return test::statusOfChild([&] { return writeWholeFile(link, bytes, true) ? 0 : 1; });
  };
  EXPECT_EQ(writeInAChild("first"), 0);
  EXPECT_EQ(readWholeFile(link).value(), "first");
  EXPECT_EQ(names(), std::set<std::string>{});
  // Somebody else's file under that very name is not the one that the link leads to.
  make("f (deleted)", "another");
  EXPECT_EQ(writeInAChild("second"), 0);
  EXPECT_EQ(readWholeFile(link).value(), "second");
  EXPECT_EQ(contentsOf("f (deleted)"), "another");
  EXPECT_EQ(names(), std::set<std::string>{"f (deleted)"});
  ::close(file);
}

TEST_F(Files, ManyWritersOfOneFileLeaveOneOfTheirFiles) {
  const std::string a(50000, 'a');
  const std::string b(70000, 'b');
  std::filesystem::create_symlink("f", path("link"));
  ASSERT_TRUE(writeWholeFile(path("f"), b, true));
  // By its name and by a link, while the other replaces it between any two looks at it.
  std::thread other([&] {
    for (int i = 0; i < 300; ++i) EXPECT_TRUE(writeWholeFile(path("f"), b, true));
  });
  for (int i = 0; i < 300; ++i) {
    EXPECT_TRUE(writeWholeFile(path(i % 2 == 0 ? "f" : "link"), a, true));
    const std::string seen = readWholeFile(path("f")).value();
    EXPECT_TRUE(seen == a || seen == b) << seen.size() << " bytes";
  }
  other.join();
  EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
  EXPECT_EQ(names(), (std::set<std::string>{"f", "link"}));
}

}  // namespace
}  // namespace veq::internal::whole_files_test
