#include "veq/base/diagnostic_log.hpp"

#include <cstdio>
#include <memory>
#include <mutex>
#include <utility>

namespace veq {
namespace {

void writeToStandardError(std::string_view line) {
  std::string text(line);
  text += '\n';
  std::fwrite(text.data(), 1, text.size(), stderr);
}

// The sink is shared with the calls that are using it, so that it can be replaced meanwhile and a
// sink may itself write to the log.
struct Log {
  std::mutex lock;
  std::shared_ptr<const DiagnosticSink> sink =
      std::make_shared<const DiagnosticSink>(writeToStandardError);
};

Log& sharedLog() {
  static Log log;
  return log;
}

std::shared_ptr<const DiagnosticSink> currentSink() {
  Log& log = sharedLog();
  const std::lock_guard guard(log.lock);
  return log.sink;
}

}  // namespace

DiagnosticSink setDiagnosticSink(DiagnosticSink sink) {
  auto next = std::make_shared<const DiagnosticSink>(std::move(sink));
  Log& log = sharedLog();
  const std::lock_guard guard(log.lock);
  return *std::exchange(log.sink, std::move(next));
}

bool diagnosticLogListens() { return static_cast<bool>(*currentSink()); }

void logDiagnostic(std::string_view line) {
  if (const auto sink = currentSink(); *sink) (*sink)(line);
}

}  // namespace veq
