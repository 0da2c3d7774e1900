#include "veq/base/diagnostic_log.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "tests/support/child_process.hpp"
#include "tests/support/log_capture.hpp"

namespace veq::diagnostic_log_test {
namespace {

TEST(DiagnosticLog, GivesEveryLineToTheSink) {
  const test::LogCapture capture;
  logDiagnostic("one");
  logDiagnostic("");
  EXPECT_EQ(capture.lines(), (std::vector<std::string>{"one", ""}));
}

TEST(DiagnosticLog, AnEmptySinkSilencesIt) {
  DiagnosticSink previous = setDiagnosticSink({});
  EXPECT_FALSE(diagnosticLogListens());
  logDiagnostic("nobody hears this");
  setDiagnosticSink(std::move(previous));
  EXPECT_TRUE(diagnosticLogListens());
}

TEST(DiagnosticLog, ASinkMayWriteToTheLogItself) {
  const test::LogCapture capture;
  DiagnosticSink outer = setDiagnosticSink({});
  setDiagnosticSink([&](std::string_view line) {
    if (line == "first") logDiagnostic("second");
    outer(line);
  });
  logDiagnostic("first");
  setDiagnosticSink(outer);
  EXPECT_EQ(capture.lines(), (std::vector<std::string>{"second", "first"}));
}

/// A static object of a user's, made before anything was logged and so destroyed behind every
/// static object of the log's own.
struct LogsAtTheEnd {
  ~LogsAtTheEnd() {
    logDiagnostic("the end");
    ::_exit(sinkLives.expired() ? 2 : linesHeard == 1 ? 0 : 3);
  }
  std::weak_ptr<int> sinkLives;
  int linesHeard = 0;
};

TEST(DiagnosticLog, OutlivesTheStaticObjectsThatWriteToIt) {
  const int status = test::statusOfChild([] {
    static LogsAtTheEnd last;
    {
      const auto held = std::make_shared<int>(0);
      last.sinkLives = held;
      setDiagnosticSink([held](std::string_view line) { last.linesHeard += line == "the end"; });
    }
    std::exit(1);
    return 1;
  });
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
}  // namespace veq::diagnostic_log_test
