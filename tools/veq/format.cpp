#include "format.hpp"

#include <cstddef>

#include "failure.hpp"
#include "streams.hpp"
#include "suggestions.hpp"

namespace veq::tool {
namespace {

/// Without the last ones, of which so many are only written: CSV is read as a list.
std::vector<std::string> words(std::size_t last) {
  std::vector<std::string> all;
  for (const FileFormat format : fileFormats().first(fileFormats().size() - last)) {
    all.emplace_back(nameOf(format));
  }
  return all;
}

}  // namespace

const std::vector<std::string>& wordsForReading() {
  static const std::vector<std::string> all = words(1);
  return all;
}

const std::vector<std::string>& wordsForWriting() {
  static const std::vector<std::string> all = words(0);
  return all;
}

FileFormat formatToWrite(std::string_view file, std::optional<std::size_t> word) {
  if (word) return fileFormats()[*word];
  if (isStandardStream(file)) {
    throw Failure(kStandardOutput, "has no suffix; --to FORMAT names the format");
  }
  if (const auto format = fileFormatOfSuffix(file)) return *format;
  std::vector<std::string> known;
  for (const FileFormat format : fileFormats()) known.emplace_back(suffixOf(format));
  throw Failure(file, "has no suffix that is known (such as " + wordList(known) +
                          "); --to FORMAT names the format");
}

}  // namespace veq::tool
