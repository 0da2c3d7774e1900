#include <gtest/gtest.h>

#include "veq/base/internal/file_url.hpp"

namespace veq::internal::file_url_test {
namespace {

using namespace std::string_view_literals;

TEST(FileUrls, FileUrlsNameAbsolutePaths) {
  EXPECT_EQ(pathFromUrl("file:///tmp/a.xnet"), "/tmp/a.xnet");
  EXPECT_EQ(pathFromUrl("file:/tmp/a.xnet"), "/tmp/a.xnet");
  EXPECT_EQ(pathFromUrl("file://localhost/tmp/a.xnet"), "/tmp/a.xnet");
  EXPECT_EQ(pathFromUrl("FILE://LocalHost/tmp/a"), "/tmp/a");
  EXPECT_EQ(pathFromUrl("file:///a?query#fragment"), "/a");
  EXPECT_EQ(pathFromUrl("file:///a#fragment?query"), "/a");
}

TEST(FileUrls, EscapesAreDecodedInUrlsOnly) {
  EXPECT_EQ(pathFromUrl("file:///a%20b%2Fc%c3%A9"), "/a b/c\xC3\xA9");
  EXPECT_EQ(pathFromUrl("file:///100%25%3F"), "/100%?");
  EXPECT_EQ(pathFromUrl("/a%20b"), "/a%20b");
}

TEST(FileUrls, BrokenEscapesAndNulsFail) {
  for (const std::string_view url : {"file:///a%", "file:///a%2", "file:///a%zz", "file:///a%2g",
                                     "file:///%+1", "file:///a%00b"}) {
    EXPECT_EQ(pathFromUrl(url), std::nullopt) << url;
  }
  EXPECT_EQ(pathFromUrl("a\0b"sv), std::nullopt);
  EXPECT_EQ(pathFromUrl("file:///a\0b"sv), std::nullopt);
}

TEST(FileUrls, OtherHostsAndSchemesFail) {
  for (const std::string_view url :
       {"file://example.org/a", "file://localhostess/a", "file://", "file:", "file:a",
        "file://localhost", "http://example.org/a", "https:a", "ftp:", "a+b-c.1:x"}) {
    EXPECT_EQ(pathFromUrl(url), std::nullopt) << url;
  }
}

TEST(FileUrls, AnythingWithoutASchemeIsAPath) {
  for (const std::string_view path : {"", "a.xnet", "/tmp/a", "./a:b", "dir/x:y", "1a:b", ":x",
                                      "a b:c", "file", "_a:b", "{a:b", "[a:b"}) {
    EXPECT_EQ(pathFromUrl(path), path);
  }
}

}  // namespace
}  // namespace veq::internal::file_url_test
