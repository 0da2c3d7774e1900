#pragma once

#include <string>
#include <vector>

#include "veq/base/diagnostic_log.hpp"

namespace veq::test {

/// Collects the lines of the diagnostic log while it lives.
class LogCapture {
 public:
  LogCapture()
      : previous_(setDiagnosticSink([this](std::string_view line) { lines_.emplace_back(line); })) {
  }
  ~LogCapture() { setDiagnosticSink(std::move(previous_)); }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  const std::vector<std::string>& lines() const { return lines_; }

 private:
  std::vector<std::string> lines_;
  DiagnosticSink previous_;
};

}  // namespace veq::test
