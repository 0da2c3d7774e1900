#include "format.hpp"

#include <array>

#include "failure.hpp"
#include "streams.hpp"
#include "suggestions.hpp"

namespace veq::tool {
namespace {

/// In the order of FileFormat; what is written as CSV is read as a list.
constexpr std::array<std::string_view, 8> kSuffixes{".xnet", ".net",     ".edges", ".mtx",
                                                    ".gml",  ".graphml", ".veqa",  ".csv"};
constexpr std::size_t kReadFormats = 7;

std::vector<std::string> words(std::size_t count) {
  std::vector<std::string> all;
  for (std::size_t i = 0; i < count; ++i) all.emplace_back(nameOf(static_cast<FileFormat>(i)));
  return all;
}

}  // namespace

const std::vector<std::string>& wordsForReading() {
  static const std::vector<std::string> all = words(kReadFormats);
  return all;
}

const std::vector<std::string>& wordsForWriting() {
  static const std::vector<std::string> all = words(kSuffixes.size());
  return all;
}

FileFormat formatToWrite(std::string_view file, std::optional<std::size_t> word) {
  if (word) return static_cast<FileFormat>(*word);
  if (isStandardStream(file)) {
    throw Failure(kStandardOutput, "has no suffix; --to FORMAT names the format");
  }
  if (const auto format = fileFormatOfSuffix(file)) return *format;
  const std::vector<std::string> known(kSuffixes.begin(), kSuffixes.end());
  throw Failure(file, "has no suffix that is known (such as " + wordList(known) +
                          "); --to FORMAT names the format");
}

std::string_view suffixOf(FileFormat format) { return kSuffixes[static_cast<std::size_t>(format)]; }

}  // namespace veq::tool
