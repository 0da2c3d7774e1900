#include "veq/base/diagnostic_log.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

namespace veq {
namespace {

// Takes no memory, so that a line is no reason for an operation to fail, and reaches the stream in
// one piece.
void writeToStandardError(std::string_view line) {
  const auto length = std::min<std::size_t>(line.size(), std::numeric_limits<int>::max());
  static_cast<void>(std::fprintf(stderr, "%.*s\n", static_cast<int>(length), line.data()));
}

// Never destroyed: static objects of the host may log while they die, in whatever order that is.
// The sink is shared with the calls that are using it, so that it can be replaced meanwhile and a
// sink may itself write to the log. None has been set while the pointer is null.
struct Log {
  std::mutex lock;
  std::shared_ptr<const DiagnosticSink> sink;
};

Log& sharedLog() {
  // In memory of its own, so that the first line takes none.
  alignas(Log) static std::byte memory[sizeof(Log)];
  static Log& log = *new (memory) Log;
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
  DiagnosticSink previous = log.sink ? *log.sink : DiagnosticSink(writeToStandardError);
  log.sink = std::move(next);
  return previous;
}

bool diagnosticLogListens() {
  const auto sink = currentSink();
  return !sink || *sink;
}

void logDiagnostic(std::string_view line) {
  const auto sink = currentSink();
  if (!sink) return writeToStandardError(line);
  if (*sink) (*sink)(line);
}

}  // namespace veq
