#include "streams.hpp"

#include <algorithm>
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

std::vector<std::string> linesIn(const std::string& file) {
  const std::string bytes = bytesIn(file);
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin < bytes.size();) {
    const std::size_t end = std::min(bytes.find('\n', begin), bytes.size());
    const bool returns = end > begin && bytes[end - 1] == '\r';
    lines.push_back(bytes.substr(begin, end - begin - (returns ? 1 : 0)));
    begin = end + 1;
  }
  return lines;
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
