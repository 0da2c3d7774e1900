#include "veq/base/files.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "tests/support/child_process.hpp"
#include "tests/support/temporary_folder.hpp"

namespace veq::files_test {
namespace {

using test::bytesOf;
using test::statusOfChild;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

/// Whether f, in a child whose descriptor `number` is this file, gives what it should.
template <class F>
bool holdsWith(int number, const std::string& path, int flags, F f) {
  const int status = statusOfChild([&] {
    const int file = ::open(path.c_str(), flags, 0600);
    if (file < 0 || ::dup2(file, number) < 0) return 2;
    return f() ? 0 : 3;
  });
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(WholeFiles, AreReadAndWritten) {
  const TemporaryFolder folder;
  const std::string path = folder.path("a");
  EXPECT_TRUE(writeFile(path, std::string_view("x\0\n", 3)));
  EXPECT_EQ(readFile(path).value(), std::string("x\0\n", 3));
  EXPECT_TRUE(writeFile(path, [](const ByteSink& sink) { return sink("ab") && sink("c"); }));
  EXPECT_EQ(readFile(path).value(), "abc");
}

TEST(WholeFiles, ThatAreNotThereAreAnErrorOfTheSystem) {
  const TemporaryFolder folder;
  const Result<std::string> result = readFile(folder.path("a"));
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().kind(), ErrorKind::kFile);
  EXPECT_EQ(result.error().text(), "No such file or directory");
  EXPECT_EQ(result.error().place(), std::nullopt);
  EXPECT_EQ(writeFile(folder.path("a/b"), "x").error().text(), "No such file or directory");
}

TEST(WholeFiles, OfADashAreTheStandardStreams) {
  const TemporaryFolder folder;
  const std::string long_(200000, 'x');
  const std::string file = folder.write("in", "first " + long_);
  EXPECT_TRUE(holdsWith(STDIN_FILENO, file, O_RDONLY, [&] {
    // What has been read before is gone.
    for (int i = 0; i < 6; ++i) std::getc(stdin);
    return readFile("-").value() == long_ && readFile("-").value().empty();
  }));
  EXPECT_TRUE(holdsWith(STDIN_FILENO, folder.path(""), O_RDONLY,
                        [] { return readFile("-").error().text() == "Is a directory"; }));
  EXPECT_TRUE(holdsWith(STDOUT_FILENO, folder.path("out"), O_WRONLY | O_CREAT, [] {
    std::fputs("before ", stdout);
    const bool isWritten = writeFile("-", "text ").hasValue();
    std::fputs("behind", stdout);
    return isWritten && std::fflush(stdout) == 0;
  }));
  EXPECT_EQ(bytesOf(folder.path("out")), "before text behind");
  EXPECT_TRUE(holdsWith(STDOUT_FILENO, "/dev/full", O_WRONLY, [] {
    return writeFile("-", "text").error().text() == "No space left on device";
  }));
  EXPECT_THAT(folder.names(), ElementsAre("in", "out"));
}

TEST(WholeFiles, OfANameWithADashAreFiles) {
  const TemporaryFolder folder;
  EXPECT_TRUE(writeFile(folder.path("-"), "x"));
  EXPECT_EQ(readFile(folder.path("-")).value(), "x");
}

TEST(WholeFiles, WhoseSourceGivesUpOrThrowsStayAsTheyWere) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a", "old");
  const auto half = [](const ByteSink& sink) { return sink("half") && false; };
  const auto broken = [](const ByteSink& sink) -> bool {
    static_cast<void>(sink("half"));
    throw std::runtime_error("broken");
  };
  EXPECT_EQ(writeFile(path, half).error().text(), "Operation canceled");
  EXPECT_THROW(static_cast<void>(writeFile(path, broken)), std::runtime_error);
  EXPECT_THROW(static_cast<void>(writeFile(folder.path("new"), broken)), std::runtime_error);
  EXPECT_EQ(bytesOf(path), "old");
  EXPECT_THAT(folder.names(), ElementsAre("a"));
}

TEST(WholeFiles, AreCheckedWithoutATrace) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a", "old");
  std::filesystem::create_directory(folder.path("dir"));
  ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
  const auto before = std::filesystem::last_write_time(path);
  EXPECT_TRUE(checkWritable(path));
  EXPECT_TRUE(checkWritable(folder.path("new")));
  EXPECT_TRUE(checkWritable(folder.path("pipe"))) << "It must not be opened.";
  EXPECT_TRUE(checkWritable("/dev/full")) << "That is seen only by writing.";
  EXPECT_TRUE(checkWritable("-"));
  EXPECT_EQ(checkWritable(folder.path("dir")).error().text(), "Is a directory");
  EXPECT_EQ(checkWritable(folder.path("new/")).error().text(), "Is a directory");
  EXPECT_EQ(checkWritable(folder.path("no/new")).error().text(), "No such file or directory");
  EXPECT_EQ(checkWritable(folder.path("a/new")).error().text(), "Not a directory");
  EXPECT_EQ(checkWritable("").error().text(), "No such file or directory");
  EXPECT_EQ(bytesOf(path), "old");
  EXPECT_EQ(std::filesystem::last_write_time(path), before);
  EXPECT_THAT(folder.names(), ElementsAre("a", "dir", "pipe"));
}

}  // namespace
}  // namespace veq::files_test
