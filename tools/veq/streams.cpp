#include "streams.hpp"

#include <cerrno>
#include <iostream>
#include <system_error>

#include "failure.hpp"

namespace veq::tool {
namespace {

void require(const Outcome& outcome, const std::string& name) {
  if (!outcome) throw Failure(name, outcome.error().text());
}

}  // namespace

bool isStandardStream(std::string_view file) { return file == "-"; }

std::string inputName(const std::string& file) {
  return isStandardStream(file) ? std::string(kStandardInput) : file;
}

std::string outputName(const std::string& file) {
  return isStandardStream(file) ? std::string(kStandardOutput) : file;
}

std::string bytesIn(const std::string& file) {
  Result<std::string> bytes = readFile(file);
  if (!bytes) throw Failure(inputName(file), bytes.error().text());
  return std::move(bytes).value();
}

void writeTo(const std::string& file, const ByteSource& source) {
  require(writeFile(file, source), outputName(file));
}

void writeTo(const std::string& file, std::string_view bytes) {
  require(writeFile(file, bytes), outputName(file));
}

void requireWritable(const std::string& file) { require(checkWritable(file), outputName(file)); }

void flushStandardOutput() {
  errno = 0;
  if (std::cout.flush()) return;
  throw Failure(kStandardOutput,
                errno == 0 ? "cannot be written" : std::generic_category().message(errno));
}

}  // namespace veq::tool
