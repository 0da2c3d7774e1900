#include "veq/base/diagnostic_log.hpp"

#include <gtest/gtest.h>

#include "tests/support/log_capture.hpp"

namespace veq {
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

}  // namespace
}  // namespace veq
